#include "MibrelMac/Views/Shell/MibrelPendingToolPage.h"

#include <QLabel>
#include <QVBoxLayout>

#include "MibrelMac/Views/Kit/MibrelDesign.h"
#include "MibrelMac/Views/Kit/MibrelKitEmptyState.h"
#include "MibrelMac/Views/Kit/MibrelKitText.h"
#include "MibrelMac/Views/Kit/MibrelTypography.h"

namespace mibrel {

MibrelPendingToolPage::MibrelPendingToolPage(MibrelTool tool, std::string_view summary, QWidget* parent)
    : QWidget(parent) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(design::pageMarginX, design::pageMarginTop, design::pageMarginX,
                               design::pageMarginBottom);
    layout->setSpacing(6);
    QLabel* heading = MibrelTypography::pageTitle(kit::qtText(title(tool)), this);
    heading->setObjectName(QStringLiteral("shellToolPageTitle"));
    layout->addWidget(heading);
    layout->addWidget(MibrelTypography::makeLabel(kit::qtText(summary),
                                                  MibrelTypography::scaledFont(font(), 1.1), true, this));
    layout->addSpacing(design::sectionSpacing);
    layout->addWidget(new MibrelKitEmptyState(
        QStringLiteral("This tool's page comes in a later version"),
        QStringLiteral("Your project keeps everything this tool works on. Until the page arrives, mibrel-cli reaches "
                       "the same work on the same project."),
        this));
    layout->addStretch();
}

MibrelPendingInspectorPanel::MibrelPendingInspectorPanel(MibrelTool tool, std::string_view promise, QWidget* parent)
    : QWidget(parent) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(design::panelMargin, design::panelMargin, design::panelMargin, design::panelMargin);
    layout->setSpacing(design::itemSpacing);
    layout->addWidget(MibrelTypography::sectionHeader(QStringLiteral("Inspector"), this));
    layout->addWidget(new MibrelKitEmptyState(kit::qtText(title(tool)), kit::qtText(promise), this));
    layout->addStretch();
}

} // namespace mibrel
