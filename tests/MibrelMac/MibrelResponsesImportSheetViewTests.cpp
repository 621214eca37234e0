#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <gtest/gtest.h>

#include "MibrelCore/Storage/TeskProjectArchive.h"
#include "MibrelMac/State/MibrelScriptedPanels.h"
#include "MibrelMac/Views/MibrelResponsesImportSheetView.h"
#include "tests/support/TestSupport.h"

namespace mibrel {
namespace {

QPushButton* button(const QWidget& view, const QString& prefix) {
    for (QPushButton* candidate : view.findChildren<QPushButton*>()) {
        if (candidate->text().startsWith(prefix)) return candidate;
    }
    return nullptr;
}

TEST(MibrelResponsesImportSheetViewTest, ChoosingColumnsUpdatesTheCountAndImportCloses) {
    testing::TemporaryDirectory folder;
    TeskProjectArchive::createEmpty(folder / "S.mvibrl", "S", false);
    testing::writeText(folder / "answers.csv", "id,answer,name\n1,Workload,Ann\n2,,Bob\n3,Pay,\n");
    MibrelScriptedPanels panels;
    MibrelSourcesState sources(panels);
    sources.bind(folder / "S.mvibrl");
    sources.openResponsesTable(folder / "answers.csv");

    MibrelResponsesImportSheetView view(sources);
    const auto combos = view.findChildren<QComboBox*>();
    ASSERT_EQ(combos.size(), 2);
    EXPECT_EQ(combos[0]->currentText(), QStringLiteral("answer"));
    EXPECT_EQ(combos[1]->itemText(0), QStringLiteral("Use row numbers"));
    QStringList labels;
    for (const QLabel* label : view.findChildren<QLabel*>()) labels << label->text();
    EXPECT_TRUE(labels.contains(QStringLiteral("answers.csv: 3 rows. Each row becomes one source.")));
    EXPECT_TRUE(labels.contains(QStringLiteral("2 rows have response text")));
    ASSERT_TRUE(button(view, QStringLiteral("Import 2 Sources")));

    combos[0]->setCurrentIndex(0);
    EXPECT_TRUE(button(view, QStringLiteral("Import 3 Sources")));
    combos[0]->setCurrentIndex(1);
    combos[1]->setCurrentIndex(3);
    button(view, QStringLiteral("Import"))->click();
    EXPECT_FALSE(sources.pendingResponsesImport());
    ASSERT_EQ(sources.sources().size(), 2u);
    EXPECT_EQ(sources.sources()[0].label, "Ann");
    EXPECT_EQ(sources.sources()[1].label, "Row 3");
}

} // namespace
} // namespace mibrel
