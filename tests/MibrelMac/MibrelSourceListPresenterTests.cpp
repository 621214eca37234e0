#include "MibrelMac/State/Tools/Shell/MibrelSourceListPresenter.h"

#include <string>
#include <vector>

#include <QSettings>
#include <gtest/gtest.h>

#include "MibrelCore/Storage/TeskProjectArchive.h"
#include "MibrelCore/Storage/TeskSourceStore.h"
#include "MibrelMac/State/MibrelScriptedPanels.h"
#include "MibrelMac/State/MibrelShellUIState.h"
#include "MibrelMac/State/MibrelSourcesState.h"
#include "tests/support/TestSupport.h"

namespace mibrel {
namespace {

using Empty = MibrelSourceListPresenter::EmptyText;
using testing::writeText;

class MibrelSourceListPresenterTest : public ::testing::Test {
protected:
    MibrelSourceListPresenterTest() {
        TeskProjectArchive::createEmpty(project, "Study", false);
        sources.bind(project);
    }

    // Documents in this order; each import selects the newest.
    void importDocuments(const std::vector<std::string>& names) {
        for (const auto& name : names) {
            writeText(folder / (name + ".txt"), "Text of " + name);
            sources.importTranscript(folder / (name + ".txt"));
        }
    }

    std::vector<std::string> listed() const {
        std::vector<std::string> labels;
        for (const TeskSource* source : presenter.otherSources()) labels.push_back(source->label);
        return labels;
    }

    const platform::Uuid& idOf(const std::string& label) const {
        for (const TeskSource& source : sources.sources()) {
            if (source.label == label) return source.id;
        }
        throw std::runtime_error("no source " + label);
    }

    testing::TemporaryDirectory folder;
    std::filesystem::path project = folder / "Study.mvibrl";
    QSettings settings{QString::fromStdString((folder / "settings.ini").string()), QSettings::IniFormat};
    MibrelScriptedPanels panels;
    MibrelSourcesState sources{panels, &settings};
    MibrelShellUIState shellUI;
    MibrelSourceListPresenter presenter{sources, shellUI};
};

TEST_F(MibrelSourceListPresenterTest, TheCurrentSourceStandsApartAndTheFilterPicksTheRest) {
    EXPECT_EQ(presenter.emptyText(), (Empty{"No sources yet", "Import transcripts, audio, documents, or open-ended responses."}));
    importDocuments({"Interview Ana", "Interview Ben", "Focus group", "interview Cleo"});
    ASSERT_NE(presenter.currentSource(), nullptr);
    EXPECT_EQ(presenter.currentSource()->label, "interview Cleo");
    EXPECT_EQ(listed(), (std::vector<std::string>{"Interview Ana", "Interview Ben", "Focus group"}));

    presenter.setFilter("  INTERVIEW ");
    EXPECT_EQ(listed(), (std::vector<std::string>{"Interview Ana", "Interview Ben"}));
    EXPECT_EQ(presenter.currentSource()->label, "interview Cleo"); // the strip ignores the filter
    EXPECT_TRUE(presenter.showsClearButton());
    presenter.setFilter("  ");
    EXPECT_EQ(listed().size(), 3u);
    EXPECT_EQ(presenter.emptyText(), std::nullopt);

    presenter.setFilter("survey");
    EXPECT_EQ(presenter.emptyText(), (Empty{"No sources match “survey”", ""}));
    presenter.setFilter("");
    EXPECT_FALSE(presenter.showsClearButton());
}

TEST_F(MibrelSourceListPresenterTest, AProjectOfOneSourceSaysThereAreNoOthers) {
    importDocuments({"Only"});
    EXPECT_TRUE(listed().empty());
    EXPECT_EQ(presenter.emptyText(), (Empty{"No other sources", ""}));
    sources.select(std::nullopt);
    EXPECT_EQ(presenter.currentSource(), nullptr);
    EXPECT_EQ(listed(), (std::vector<std::string>{"Only"}));
}

TEST_F(MibrelSourceListPresenterTest, TheRowMenuReviewsAndDeletesOnlyAfterConfirmation) {
    importDocuments({"A", "B"});
    shellUI.setSelectedTool(MibrelTool::codebook);
    shellUI.setInspectorVisible(false);
    presenter.reviewTranscript(idOf("A"));
    EXPECT_EQ(sources.selectedSourceID(), idOf("A"));
    EXPECT_EQ(shellUI.selectedTool(), MibrelTool::sources);
    EXPECT_TRUE(shellUI.isInspectorVisible());
    EXPECT_FALSE(presenter.rowMenu(idOf("A")).canTranscribeAgain); // a document has no recording

    presenter.requestDelete(idOf("B"));
    EXPECT_EQ(presenter.deleteTitle(), "Delete “B”?");
    presenter.cancelDelete();
    EXPECT_FALSE(presenter.sourcePendingDelete());
    EXPECT_EQ(sources.sources().size(), 2u);

    const platform::Uuid b = idOf("B");
    presenter.requestDelete(b);
    presenter.confirmDelete();
    EXPECT_FALSE(presenter.sourcePendingDelete());
    EXPECT_EQ(sources.sources().size(), 1u);
    EXPECT_EQ(TeskSourceStore::loadIndex(project).size(), 1u);
    EXPECT_FALSE(std::filesystem::exists(project / "sources" / b.uuidString()));
}

} // namespace
} // namespace mibrel
