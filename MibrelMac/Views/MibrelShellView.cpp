#include "MibrelMac/Views/MibrelShellView.h"

#include <algorithm>
#include <string_view>

#include <QFont>
#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QSplitter>
#include <QStackedWidget>
#include <QVBoxLayout>

#include "MibrelMac/State/MibrelShellUIState.h"
#include "MibrelMac/State/MibrelSourcesState.h"
#include "MibrelMac/State/MibrelTool.h"
#include "MibrelMac/State/Tools/Shell/MibrelShellPresenter.h"
#include "MibrelMac/State/Tools/Shell/MibrelSourceListPresenter.h"
#include "MibrelMac/Views/Kit/MibrelKitText.h"
#include "MibrelMac/Views/MibrelToolIcons.h"
#include "MibrelMac/Views/Sources/MibrelSourceInspectorPanel.h"
#include "MibrelMac/Views/Sources/MibrelTranscriptView.h"
#include "MibrelMac/Views/MibrelTypography.h"
#include "Platform/Foundation/EnumRawValues.h"

namespace mibrel {
namespace {

constexpr auto tools = platform::allCases<MibrelTool>();

// Colours come from the palette so the shell follows light, dark and high-contrast
// styles; the sheet only rounds and spaces the rows and thins the column dividers.
const char* const shellStyleSheet = R"(
QSplitter#shellSplitter::handle { background: palette(mid); }
QListWidget#shellToolList, QListWidget#shellSourceList { background: transparent; border: none; outline: 0; }
QListWidget#shellToolList::item, QListWidget#shellSourceList::item { padding: 0 8px; border-radius: 6px; }
QListWidget#shellToolList::item:selected { background: palette(highlight); color: palette(highlighted-text); }
)";

// Rows are sized here rather than by the style sheet, whose padding the list measures
// inconsistently; the row height also gives the workflow list its exact height.
int rowHeight(const QWidget* list) { return std::max(list->fontMetrics().height(), 18) + 10; }

const char* toolSummary(MibrelTool tool) {
    switch (tool) {
    case MibrelTool::sources: return "Your transcripts, recordings and responses.";
    case MibrelTool::firstRead: return "Frame the study and note first impressions.";
    case MibrelTool::contextualLens: return "Read each source in the light of its setting and circumstances.";
    case MibrelTool::coding: return "Read closely and mark passages with codes.";
    case MibrelTool::codebook: return "Define, group and refine your codes.";
    case MibrelTool::analysis: return "Look across sources and codes for patterns.";
    case MibrelTool::themes: return "Build themes from the codes that belong together.";
    case MibrelTool::evidence: return "Gather the quotes that support each theme.";
    case MibrelTool::assist: return "Suggestions to weigh against your own reading.";
    case MibrelTool::trustworthiness: return "Keep the audit trail and check the work holds up.";
    case MibrelTool::report: return "Draft and export the account of your findings.";
    }
    return "";
}

QLabel* makeLabel(const QString& text, QWidget* parent, qreal scale = 1.0, QFont::Weight weight = QFont::Normal) {
    return MibrelTypography::makeLabel(text, MibrelTypography::scaledFont(parent->font(), scale, weight), false, parent);
}

QLabel* makeSecondaryLabel(const QString& text, QWidget* parent, qreal scale = 1.0,
                           QFont::Weight weight = QFont::Normal) {
    return MibrelTypography::makeLabel(text, MibrelTypography::scaledFont(parent->font(), scale, weight), true, parent);
}

QLabel* makeSectionHeader(const QString& text, QWidget* parent) {
    QLabel* header = makeSecondaryLabel(text, parent, 0.9, QFont::DemiBold);
    header->setContentsMargins(8, 0, 0, 2);
    return header;
}

QListWidget* makeToolList(QWidget* parent) {
    auto* list = new QListWidget(parent);
    list->setObjectName(QStringLiteral("shellToolList"));
    list->setAccessibleName(QStringLiteral("Workflow"));
    list->setIconSize(QSize(18, 18));
    list->setFrameShape(QFrame::NoFrame);
    list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    // The whole workflow stays in view: the list is as tall as its rows, and the sources
    // below take whatever height is left.
    for (MibrelTool tool : tools) {
        auto* item = new QListWidgetItem(iconForSymbol(symbol(tool)), kit::qtText(title(tool)), list);
        item->setSizeHint(QSize(0, rowHeight(list)));
    }
    list->setFixedHeight(rowHeight(list) * list->count() + 2 * list->frameWidth());
    return list;
}

// The title and detail are set from the presenter's empty text.
QWidget* makeSourcesEmptyState(QWidget* parent) {
    auto* empty = new QWidget(parent);
    empty->setObjectName(QStringLiteral("shellSourcesEmpty"));
    auto* layout = new QVBoxLayout(empty);
    layout->setContentsMargins(8, 4, 8, 4);
    layout->setSpacing(4);
    QLabel* title = makeLabel(QString(), empty, 1.0, QFont::DemiBold);
    title->setObjectName(QStringLiteral("shellSourcesEmptyTitle"));
    title->setWordWrap(true);
    layout->addWidget(title);
    QLabel* detail = makeSecondaryLabel(QString(), empty, 0.95);
    detail->setObjectName(QStringLiteral("shellSourcesEmptyDetail"));
    detail->setWordWrap(true);
    layout->addWidget(detail);
    return empty;
}

QLineEdit* makeSourceFilter(QWidget* parent) {
    auto* filter = new QLineEdit(parent);
    filter->setObjectName(QStringLiteral("shellSourceFilter"));
    filter->setPlaceholderText(QStringLiteral("Filter sources"));
    filter->setAccessibleName(QStringLiteral("Filter sources"));
    filter->setClearButtonEnabled(true);
    // Qt's clear button is an action without words; give it the ones a screen reader reads.
    for (QAction* action : filter->findChildren<QAction*>()) {
        action->setText(QStringLiteral("Clear source filter"));
        action->setToolTip(QStringLiteral("Clear source filter"));
    }
    return filter;
}

// The strip above the list: the current source, whatever the filter, one click from its transcript.
QPushButton* makeCurrentSourceStrip(QWidget* parent) {
    auto* strip = new QPushButton(parent);
    strip->setObjectName(QStringLiteral("shellCurrentSource"));
    strip->setFlat(true);
    strip->setAccessibleName(QStringLiteral("Review selected source transcript"));
    strip->setStyleSheet(QStringLiteral("text-align: left; padding: 4px 6px;"));
    strip->setIcon(iconForSymbol("doc.text"));
    strip->setIconSize(QSize(16, 16));
    strip->setFont(MibrelTypography::scaledFont(parent->font(), 1.0, QFont::DemiBold));
    return strip;
}

// The import toast under the tool's page: the notice's title over its detail.
QFrame* makeImportToast(QWidget* parent) {
    auto* toast = new QFrame(parent);
    toast->setObjectName(QStringLiteral("shellImportToast"));
    toast->setFrameShape(QFrame::StyledPanel);
    toast->setBackgroundRole(QPalette::AlternateBase);
    toast->setAutoFillBackground(true);
    auto* layout = new QVBoxLayout(toast);
    layout->setContentsMargins(16, 10, 16, 10);
    layout->setSpacing(2);
    QLabel* title = makeLabel(QString(), toast, 1.0, QFont::DemiBold);
    title->setObjectName(QStringLiteral("shellImportToastTitle"));
    layout->addWidget(title);
    QLabel* detail = makeSecondaryLabel(QString(), toast);
    detail->setObjectName(QStringLiteral("shellImportToastDetail"));
    detail->setWordWrap(true);
    layout->addWidget(detail);
    toast->hide();
    return toast;
}

QString displayLabel(const TeskSource& source) {
    // A label erased by hand in the file would otherwise leave an invisible row.
    const bool unnamed = source.label.find_first_not_of(" \t\r\n") == std::string::npos;
    return unnamed ? QStringLiteral("Untitled source") : kit::qtText(source.label);
}

// A tool whose page is built stands in place of its placeholder.
void replacePage(QStackedWidget* stack, MibrelTool tool, QWidget* page) {
    const int index = static_cast<int>(tool);
    QWidget* placeholder = stack->widget(index);
    stack->insertWidget(index, page);
    stack->removeWidget(placeholder);
    placeholder->deleteLater();
}

void fillSources(QListWidget* list, const MibrelSourceListPresenter& presenter) {
    list->clear();
    for (const TeskSource* source : presenter.otherSources()) {
        auto* item = new QListWidgetItem(iconForSymbol("doc.text"), displayLabel(*source), list);
        item->setData(Qt::UserRole, kit::qtText(source->id.uuidString()));
        item->setSizeHint(QSize(0, rowHeight(list)));
    }
}

QWidget* makeToolPage(MibrelTool tool, QWidget* parent) {
    auto* page = new QWidget(parent);
    auto* layout = new QVBoxLayout(page);
    layout->setContentsMargins(40, 32, 40, 32);
    layout->setSpacing(6);
    QLabel* heading = makeLabel(kit::qtText(title(tool)), page, 1.7, QFont::DemiBold);
    heading->setObjectName(QStringLiteral("shellToolPageTitle"));
    layout->addWidget(heading);
    layout->addWidget(makeSecondaryLabel(QString::fromUtf8(toolSummary(tool)), page, 1.1));
    layout->addStretch();
    return page;
}

QWidget* makeInspectorPanel(MibrelTool tool, QWidget* parent) {
    auto* panel = new QWidget(parent);
    auto* layout = new QVBoxLayout(panel);
    layout->setContentsMargins(16, 16, 16, 16);
    layout->setSpacing(4);
    QLabel* header = makeSecondaryLabel(QStringLiteral("Inspector"), panel, 0.9, QFont::DemiBold);
    layout->addWidget(header);
    QLabel* heading = makeLabel(kit::qtText(title(tool)), panel, 1.15, QFont::DemiBold);
    heading->setObjectName(QStringLiteral("shellInspectorTitle"));
    layout->addWidget(heading);
    layout->addSpacing(8);
    layout->addWidget(makeSecondaryLabel(QStringLiteral("Details of what you select appear here."), panel));
    layout->addStretch();
    return panel;
}

QStackedWidget* makeStack(const QString& name, QPalette::ColorRole background,
                          QWidget* (*makePage)(MibrelTool, QWidget*), QWidget* parent) {
    auto* stack = new QStackedWidget(parent);
    stack->setObjectName(name);
    stack->setBackgroundRole(background);
    stack->setAutoFillBackground(true);
    for (MibrelTool tool : tools) stack->addWidget(makePage(tool, stack));
    return stack;
}

void fillSources(QListWidget* list, QWidget* emptyState, const MibrelSourcesState& state) {
    list->clear();
    for (const TeskSource& source : state.sources()) {
        // A label erased by hand in the file would otherwise leave an invisible row.
        const bool unnamed = source.label.find_first_not_of(" \t\r\n") == std::string::npos;
        auto* item = new QListWidgetItem(iconForSymbol("doc.text"),
                                         unnamed ? QStringLiteral("Untitled source") : kit::qtText(source.label), list);
        item->setSizeHint(QSize(0, rowHeight(list)));
        if (state.selectedSourceID() == source.id) {
            QFont font = item->font();
            font.setWeight(QFont::DemiBold);
            item->setFont(font);
        }
    }
    const bool hasSources = list->count() > 0;
    list->setVisible(hasSources);
    emptyState->setVisible(!hasSources);
}

} // namespace

struct MibrelShellView::Parts {
    QSplitter* splitter = nullptr;
    QListWidget* toolList = nullptr;
    QLineEdit* sourceFilter = nullptr;
    QPushButton* currentSource = nullptr;
    QListWidget* sourceList = nullptr;
    QWidget* sourcesEmpty = nullptr;
    MibrelSourceListPresenter* sourceListPresenter = nullptr;
    QStackedWidget* toolPages = nullptr;
    QFrame* importToast = nullptr;
    MibrelShellPresenter* shellPresenter = nullptr;
    QStackedWidget* inspector = nullptr;
};

MibrelShellView::MibrelShellView(MibrelProjectSession& session, MibrelSourcesState& sourcesState,
                                 MibrelWorkspaceState& workspaceState, MibrelShellUIState& shellUI, QWidget* parent)
    : QWidget(parent), m_parts(std::make_unique<Parts>()), m_session(session), m_sourcesState(sourcesState),
      m_workspaceState(workspaceState), m_shellUI(shellUI) {
    Parts& parts = *m_parts;
    setStyleSheet(QString::fromUtf8(shellStyleSheet));

    auto* sidebar = new QWidget(this);
    sidebar->setObjectName(QStringLiteral("shellSidebar"));
    sidebar->setMinimumWidth(220);
    auto* sidebarLayout = new QVBoxLayout(sidebar);
    sidebarLayout->setContentsMargins(10, 14, 10, 12);
    sidebarLayout->setSpacing(4);
    sidebarLayout->addWidget(makeSectionHeader(QStringLiteral("Workflow"), sidebar));
    parts.toolList = makeToolList(sidebar);
    sidebarLayout->addWidget(parts.toolList);
    sidebarLayout->addSpacing(14);
    sidebarLayout->addWidget(makeSectionHeader(QStringLiteral("Sources"), sidebar));
    parts.sourceFilter = makeSourceFilter(sidebar);
    sidebarLayout->addWidget(parts.sourceFilter);
    QLabel* currentCaption = makeSecondaryLabel(QStringLiteral("Current source"), sidebar, 0.85);
    currentCaption->setContentsMargins(8, 6, 0, 0);
    sidebarLayout->addWidget(currentCaption);
    parts.currentSource = makeCurrentSourceStrip(sidebar);
    sidebarLayout->addWidget(parts.currentSource);
    parts.sourceList = new QListWidget(sidebar);
    parts.sourceList->setAccessibleName(QStringLiteral("Sources"));
    parts.sourceList->setContextMenuPolicy(Qt::CustomContextMenu);
    parts.sourceList->setObjectName(QStringLiteral("shellSourceList"));
    parts.sourceList->setSelectionMode(QAbstractItemView::SingleSelection);
    parts.sourceList->setIconSize(QSize(16, 16));
    parts.sourceList->setFrameShape(QFrame::NoFrame);
    // Long labels end in an ellipsis rather than scrolling the sidebar sideways.
    parts.sourceList->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    parts.sourceList->setTextElideMode(Qt::ElideRight);
    sidebarLayout->addWidget(parts.sourceList, 1);
    parts.sourcesEmpty = makeSourcesEmptyState(sidebar);
    sidebarLayout->addWidget(parts.sourcesEmpty);
    sidebarLayout->addStretch();

    parts.toolPages = makeStack(QStringLiteral("shellToolPages"), QPalette::Base, makeToolPage, this);
    replacePage(parts.toolPages, MibrelTool::sources, new MibrelTranscriptView(m_sourcesState, m_workspaceState));
    parts.toolPages->setMinimumWidth(320);
    parts.inspector = makeStack(QStringLiteral("shellInspector"), QPalette::Window, makeInspectorPanel, this);
    replacePage(parts.inspector, MibrelTool::sources, new MibrelSourceInspectorPanel(m_sourcesState, m_workspaceState));
    parts.inspector->setMinimumWidth(220);

    parts.splitter = new QSplitter(Qt::Horizontal, this);
    parts.splitter->setObjectName(QStringLiteral("shellSplitter"));
    parts.splitter->setHandleWidth(1);
    parts.splitter->setChildrenCollapsible(false);
    auto* centre = new QWidget(this);
    auto* centreLayout = new QVBoxLayout(centre);
    centreLayout->setContentsMargins(0, 0, 0, 0);
    centreLayout->setSpacing(0);
    centreLayout->addWidget(parts.toolPages, 1);
    parts.importToast = makeImportToast(centre);
    centreLayout->addWidget(parts.importToast);
    parts.splitter->addWidget(sidebar);
    parts.splitter->addWidget(centre);
    parts.splitter->addWidget(parts.inspector);
    // Extra width goes to the tool's page; the side columns keep the size the user gave them.
    parts.splitter->setStretchFactor(0, 0);
    parts.splitter->setStretchFactor(1, 1);
    parts.splitter->setStretchFactor(2, 0);
    parts.splitter->setSizes({270, 640, 270});
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(parts.splitter);

    const auto showSelectedTool = [this] {
        const int index = static_cast<int>(m_shellUI.selectedTool());
        {
            // Only the user's choice should reach the state; this is the state reaching the list.
            const QSignalBlocker blocker(m_parts->toolList);
            m_parts->toolList->setCurrentRow(index);
        }
        m_parts->toolPages->setCurrentIndex(index);
        m_parts->inspector->setCurrentIndex(index);
    };
    const auto showInspector = [this] { m_parts->inspector->setVisible(m_shellUI.isInspectorVisible()); };
    parts.shellPresenter = new MibrelShellPresenter(m_sourcesState, m_shellUI, this);
    connect(parts.shellPresenter, &MibrelShellPresenter::visibleImportNoticeChanged, this, [this] { showImportToast(); });
    parts.sourceListPresenter = new MibrelSourceListPresenter(m_sourcesState, m_shellUI, this);
    const auto showSources = [this] { showSourceList(); };
    connect(parts.sourceFilter, &QLineEdit::textChanged, this, [this](const QString& text) {
        m_parts->sourceListPresenter->setFilter(text.toStdString());
    });
    connect(parts.sourceListPresenter, &MibrelSourceListPresenter::changed, this, showSources);
    connect(parts.sourceListPresenter, &MibrelSourceListPresenter::pendingDeleteChanged, this,
            [this] { confirmPendingDelete(); });
    connect(parts.currentSource, &QPushButton::clicked, this, [this] {
        if (const TeskSource* current = m_parts->sourceListPresenter->currentSource()) {
            m_parts->sourceListPresenter->reviewTranscript(current->id);
        }
    });
    // Choosing a row makes it the current source, which takes it out of the list: the list
    // is refilled after the click has been handled, never inside it.
    const auto chooseRow = [this](QListWidgetItem* item) {
        if (const auto id = sourceID(item)) {
            QMetaObject::invokeMethod(this, [this, id = *id] { m_sourcesState.select(id); }, Qt::QueuedConnection);
        }
    };
    connect(parts.sourceList, &QListWidget::itemClicked, this, chooseRow);
    connect(parts.sourceList, &QListWidget::itemActivated, this, chooseRow);
    connect(parts.sourceList, &QListWidget::customContextMenuRequested, this, [this](const QPoint& at) {
        if (const auto id = sourceID(m_parts->sourceList->itemAt(at))) {
            showRowMenu(*id, m_parts->sourceList->viewport()->mapToGlobal(at));
        }
    });

    connect(parts.toolList, &QListWidget::currentRowChanged, this, [this](int row) {
        if (row < 0 || row >= static_cast<int>(tools.size())) return; // -1 while the list empties
        m_shellUI.setSelectedTool(tools[static_cast<std::size_t>(row)]);
    });
    connect(&m_shellUI, &MibrelShellUIState::selectedToolChanged, this, showSelectedTool);
    connect(&m_shellUI, &MibrelShellUIState::inspectorVisibilityChanged, this, showInspector);
    showSelectedTool();
    showInspector();
    showSources();
}

MibrelShellView::~MibrelShellView() = default;

void MibrelShellView::showImportToast() {
    const auto& notice = m_parts->shellPresenter->visibleImportNotice();
    m_parts->importToast->setVisible(notice.has_value());
    if (!notice) return;
    m_parts->importToast->findChild<QLabel*>(QStringLiteral("shellImportToastTitle"))->setText(kit::qtText(notice->title));
    m_parts->importToast->findChild<QLabel*>(QStringLiteral("shellImportToastDetail"))->setText(kit::qtText(notice->detail));
    m_parts->importToast->setAccessibleName(kit::qtText(notice->title + ": " + notice->detail));
}

void MibrelShellView::showSourceList() {
    const MibrelSourceListPresenter& presenter = *m_parts->sourceListPresenter;
    fillSources(m_parts->sourceList, presenter);
    const TeskSource* current = presenter.currentSource();
    m_parts->currentSource->setVisible(current != nullptr);
    if (current) m_parts->currentSource->setText(displayLabel(*current));
    const auto empty = presenter.emptyText();
    m_parts->sourceList->setVisible(m_parts->sourceList->count() > 0);
    m_parts->sourcesEmpty->setVisible(empty.has_value());
    if (empty) {
        m_parts->sourcesEmpty->findChild<QLabel*>(QStringLiteral("shellSourcesEmptyTitle"))->setText(kit::qtText(empty->title));
        auto* detail = m_parts->sourcesEmpty->findChild<QLabel*>(QStringLiteral("shellSourcesEmptyDetail"));
        detail->setText(kit::qtText(empty->detail));
        detail->setVisible(!empty->detail.empty());
    }
}

std::optional<platform::Uuid> MibrelShellView::sourceID(const QListWidgetItem* item) const {
    if (item == nullptr) return std::nullopt;
    return platform::Uuid::parse(item->data(Qt::UserRole).toString().toStdString());
}

void MibrelShellView::showRowMenu(const platform::Uuid& sourceID, const QPoint& globalPosition) {
    MibrelSourceListPresenter& presenter = *m_parts->sourceListPresenter;
    QMenu menu(this);
    menu.setObjectName(QStringLiteral("shellSourceRowMenu"));
    connect(menu.addAction(QStringLiteral("Review Transcript")), &QAction::triggered, this,
            [&presenter, sourceID] { presenter.reviewTranscript(sourceID); });
    if (presenter.rowMenu(sourceID).canTranscribeAgain) {
        connect(menu.addAction(QStringLiteral("Transcribe Again")), &QAction::triggered, this,
                [&presenter, sourceID] { presenter.transcribeAgain(sourceID); });
    }
    menu.addSeparator();
    connect(menu.addAction(QStringLiteral("Delete")), &QAction::triggered, this,
            [&presenter, sourceID] { presenter.requestDelete(sourceID); });
    menu.exec(globalPosition);
}

// Asked without blocking, so the window stays live and tests can answer it.
void MibrelShellView::confirmPendingDelete() {
    MibrelSourceListPresenter& presenter = *m_parts->sourceListPresenter;
    if (!presenter.sourcePendingDelete()) return;
    auto* question = new QMessageBox(QMessageBox::Warning, kit::qtText(presenter.deleteTitle()),
                                     QString::fromUtf8(MibrelSourcesState::kDeleteConfirmation), QMessageBox::NoButton,
                                     this);
    question->setObjectName(QStringLiteral("shellDeleteSourceDialog"));
    question->setAttribute(Qt::WA_DeleteOnClose);
    QPushButton* remove = question->addButton(QStringLiteral("Delete Source"), QMessageBox::DestructiveRole);
    QPushButton* cancel = question->addButton(QStringLiteral("Cancel"), QMessageBox::RejectRole);
    question->setDefaultButton(cancel);
    question->setEscapeButton(cancel);
    connect(question, &QMessageBox::buttonClicked, this, [&presenter, remove](QAbstractButton* button) {
        if (button == remove) {
            presenter.confirmDelete();
        } else {
            presenter.cancelDelete();
        }
    });
    question->open();
}

} // namespace mibrel
