#include "MibrelMac/Views/Shell/MibrelShellView.h"

#include <algorithm>
#include <array>

#include <QAction>
#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QListWidget>
#include <QMenu>
#include <QPushButton>
#include <QShortcut>
#include <QSplitter>
#include <QStackedWidget>
#include <QVBoxLayout>

#include "MibrelMac/State/MibrelShellUIState.h"
#include "MibrelMac/State/MibrelSourcesState.h"
#include "MibrelMac/State/Tools/Shell/MibrelShellDialogPresenter.h"
#include "MibrelMac/State/Tools/Shell/MibrelShellPresenter.h"
#include "MibrelMac/State/Tools/Shell/MibrelSourceListPresenter.h"
#include "MibrelMac/Views/Kit/MibrelDesign.h"
#include "MibrelMac/Views/Kit/MibrelKitEmptyState.h"
#include "MibrelMac/Views/Kit/MibrelKitText.h"
#include "MibrelMac/Views/Kit/MibrelToolIcons.h"
#include "MibrelMac/Views/Kit/MibrelTypography.h"
#include "MibrelMac/Views/Shell/MibrelInspectorView.h"
#include "MibrelMac/Views/Shell/MibrelShellDialogs.h"
#include "MibrelMac/Views/Shell/MibrelSourceListModel.h"
#include "MibrelMac/Views/Shell/MibrelToolTable.h"
#include "Platform/Foundation/EnumRawValues.h"

namespace mibrel {
namespace {

constexpr auto tools = platform::allCases<MibrelTool>();

// Colours come from the palette so the shell follows light, dark and high-contrast
// styles; the sheet only rounds and spaces the rows and thins the column dividers.
const char* const shellStyleSheet = R"(
QSplitter#shellSplitter::handle { background: palette(mid); }
QListWidget#shellToolList, QListView#shellSourceList { background: transparent; border: none; outline: 0; }
QListWidget#shellToolList::item, QListView#shellSourceList::item { padding: 0 8px; border-radius: 6px; }
QListWidget#shellToolList::item:selected { background: palette(highlight); color: palette(highlighted-text); }
QListView#shellSourceList::item:hover { background: palette(midlight); }
QListView#shellSourceList::item:focus { background: palette(midlight); }
)";

// Rows are sized here rather than by the style sheet, whose padding the list measures
// inconsistently; the row height also gives the workflow list its exact height.
int rowHeight(const QWidget* list) { return std::max(list->fontMetrics().height(), 18) + 10; }

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
        item->setToolTip(kit::qtText(toolSummary(tool)));
    }
    list->setFixedHeight(rowHeight(list) * list->count() + 2 * list->frameWidth());
    return list;
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
    strip->setIconSize(QSize(16, 16));
    strip->setFont(MibrelTypography::scaledFont(parent->font(), 1.0, QFont::DemiBold));
    return strip;
}

QListView* makeSourceList(QAbstractItemModel* model, QWidget* parent) {
    auto* list = new QListView(parent);
    list->setObjectName(QStringLiteral("shellSourceList"));
    list->setAccessibleName(QStringLiteral("Sources"));
    list->setModel(model);
    list->setContextMenuPolicy(Qt::CustomContextMenu);
    list->setSelectionMode(QAbstractItemView::NoSelection);
    list->setEditTriggers(QAbstractItemView::NoEditTriggers);
    list->setIconSize(QSize(16, 16));
    list->setFrameShape(QFrame::NoFrame);
    list->setMouseTracking(true); // rows light up under the pointer
    list->setUniformItemSizes(true); // thousands of sources lay out at once
    list->setGridSize(QSize(0, rowHeight(list)));
    // Long labels end in an ellipsis rather than scrolling the sidebar sideways.
    list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list->setTextElideMode(Qt::ElideRight);
    return list;
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
    QLabel* title = MibrelTypography::makeLabel(QString(), MibrelTypography::scaledFont(toast->font(), 1.0, QFont::DemiBold),
                                                false, toast);
    title->setObjectName(QStringLiteral("shellImportToastTitle"));
    layout->addWidget(title);
    QLabel* detail = MibrelTypography::makeLabel(QString(), toast->font(), true, toast);
    detail->setObjectName(QStringLiteral("shellImportToastDetail"));
    layout->addWidget(detail);
    toast->hide();
    return toast;
}

QStackedWidget* makePageStack(const std::array<QWidget*, tools.size()>& pages, QWidget* parent) {
    auto* stack = new QStackedWidget(parent);
    stack->setObjectName(QStringLiteral("shellToolPages"));
    stack->setBackgroundRole(QPalette::Base);
    stack->setAutoFillBackground(true);
    stack->setMinimumWidth(320);
    for (QWidget* page : pages) stack->addWidget(page);
    return stack;
}

} // namespace

struct MibrelShellView::Parts {
    QWidget* sidebar = nullptr;
    QListWidget* toolList = nullptr;
    QLineEdit* sourceFilter = nullptr;
    QPushButton* currentSource = nullptr;
    QListView* sourceList = nullptr;
    MibrelSourceListModel* sourceModel = nullptr;
    MibrelKitEmptyState* sourcesEmpty = nullptr;
    MibrelSourceListPresenter* sourceListPresenter = nullptr;
    QStackedWidget* toolPages = nullptr;
    QFrame* importToast = nullptr;
    MibrelShellPresenter* shellPresenter = nullptr;
    MibrelInspectorView* inspector = nullptr;
    MibrelShellDialogPresenter* dialogPresenter = nullptr;
    MibrelShellDialogs* dialogs = nullptr;
};

MibrelShellView::MibrelShellView(MibrelProjectSession& session, MibrelSourcesState& sourcesState,
                                 MibrelWorkspaceState& workspaceState, MibrelShellUIState& shellUI, bool playsAudio,
                                 QWidget* parent)
    : QWidget(parent), m_playsAudio(playsAudio), m_parts(std::make_unique<Parts>()), m_session(session), m_sourcesState(sourcesState),
      m_workspaceState(workspaceState), m_shellUI(shellUI) {
    setStyleSheet(QString::fromUtf8(shellStyleSheet));
    m_parts->sourceListPresenter = new MibrelSourceListPresenter(m_sourcesState, m_shellUI, this);
    m_parts->shellPresenter = new MibrelShellPresenter(m_sourcesState, m_shellUI, this);
    m_parts->dialogPresenter = new MibrelShellDialogPresenter(m_session, *m_parts->sourceListPresenter,
                                                              m_sourcesState, m_workspaceState, this);
    m_parts->dialogs = new MibrelShellDialogs(*m_parts->dialogPresenter, m_sourcesState, this);
    buildSidebar();
    buildColumns();
    connectSourceList();

    connect(m_parts->shellPresenter, &MibrelShellPresenter::visibleImportNoticeChanged, this,
            &MibrelShellView::showImportToast);
    connect(m_parts->toolList, &QListWidget::currentRowChanged, this, [this](int row) {
        if (row < 0 || row >= static_cast<int>(tools.size())) return; // -1 while the list empties
        m_shellUI.setSelectedTool(tools[static_cast<std::size_t>(row)]);
    });
    connect(&m_shellUI, &MibrelShellUIState::selectedToolChanged, this, &MibrelShellView::showSelectedTool);
    showSelectedTool();
    showSourceList();
}

MibrelShellView::~MibrelShellView() = default;

QWidget* MibrelShellView::toolPage(MibrelTool tool) const {
    return m_parts->toolPages->widget(static_cast<int>(tool));
}

MibrelInspectorView& MibrelShellView::inspector() const { return *m_parts->inspector; }

MibrelShellDialogs& MibrelShellView::dialogs() const { return *m_parts->dialogs; }

void MibrelShellView::buildSidebar() {
    Parts& parts = *m_parts;
    parts.sidebar = new QWidget(this);
    parts.sidebar->setObjectName(QStringLiteral("shellSidebar"));
    parts.sidebar->setMinimumWidth(220);
    auto* layout = new QVBoxLayout(parts.sidebar);
    layout->setContentsMargins(10, 14, 10, 12);
    layout->setSpacing(4);
    const auto addHeader = [&](const QString& text) {
        QLabel* header = MibrelTypography::sectionHeader(text, parts.sidebar);
        header->setContentsMargins(8, 0, 0, 2);
        layout->addWidget(header);
    };
    addHeader(QStringLiteral("Workflow"));
    parts.toolList = makeToolList(parts.sidebar);
    layout->addWidget(parts.toolList);
    layout->addSpacing(design::sectionSpacing);
    addHeader(QStringLiteral("Sources"));
    parts.sourceFilter = makeSourceFilter(parts.sidebar);
    layout->addWidget(parts.sourceFilter);
    QLabel* caption = MibrelTypography::makeLabel(QStringLiteral("Current source"),
                                                  MibrelTypography::scaledFont(font(), design::captionScale), true,
                                                  parts.sidebar);
    caption->setObjectName(QStringLiteral("shellCurrentSourceCaption"));
    caption->setContentsMargins(8, 6, 0, 0);
    layout->addWidget(caption);
    parts.currentSource = makeCurrentSourceStrip(parts.sidebar);
    layout->addWidget(parts.currentSource);
    parts.sourceModel = new MibrelSourceListModel(*parts.sourceListPresenter, this);
    parts.sourceList = makeSourceList(parts.sourceModel, parts.sidebar);
    layout->addWidget(parts.sourceList, 1);
    parts.sourcesEmpty = new MibrelKitEmptyState(parts.sidebar);
    parts.sourcesEmpty->setObjectName(QStringLiteral("shellSourcesEmpty"));
    parts.sourcesEmpty->setContentsMargins(8, 4, 8, 4);
    layout->addWidget(parts.sourcesEmpty);
    layout->addStretch();
}

void MibrelShellView::buildColumns() {
    Parts& parts = *m_parts;
    const MibrelToolContext context{m_session, m_sourcesState, m_workspaceState, m_shellUI, m_playsAudio};
    std::array<QWidget*, tools.size()> pages{};
    std::array<QWidget*, tools.size()> panels{};
    for (MibrelTool tool : tools) {
        const MibrelToolParts made = makeToolParts(tool, context);
        pages[static_cast<std::size_t>(tool)] = made.page;
        panels[static_cast<std::size_t>(tool)] = made.inspector;
    }
    parts.toolPages = makePageStack(pages, this);
    parts.inspector = new MibrelInspectorView(m_shellUI, panels, this);

    auto* splitter = new QSplitter(Qt::Horizontal, this);
    splitter->setObjectName(QStringLiteral("shellSplitter"));
    splitter->setHandleWidth(1);
    splitter->setChildrenCollapsible(false);
    auto* centre = new QWidget(this);
    auto* centreLayout = new QVBoxLayout(centre);
    centreLayout->setContentsMargins(0, 0, 0, 0);
    centreLayout->setSpacing(0);
    centreLayout->addWidget(parts.toolPages, 1);
    parts.importToast = makeImportToast(centre);
    centreLayout->addWidget(parts.importToast);
    splitter->addWidget(parts.sidebar);
    splitter->addWidget(centre);
    splitter->addWidget(parts.inspector);
    // Extra width goes to the tool's page; the side columns keep the size the user gave them.
    splitter->setStretchFactor(0, 0);
    splitter->setStretchFactor(1, 1);
    splitter->setStretchFactor(2, 0);
    splitter->setSizes({270, 640, 290});
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(splitter);
}

void MibrelShellView::connectSourceList() {
    Parts& parts = *m_parts;
    MibrelSourceListPresenter& presenter = *parts.sourceListPresenter;
    connect(parts.sourceFilter, &QLineEdit::textChanged, this,
            [&presenter](const QString& text) { presenter.setFilter(text.toStdString()); });
    connect(&presenter, &MibrelSourceListPresenter::changed, this, &MibrelShellView::showSourceList);
    connect(parts.currentSource, &QPushButton::clicked, this, [&presenter] {
        if (const TeskSource* current = presenter.currentSource()) presenter.reviewTranscript(current->id);
    });
    // Choosing a row makes it the current source, which takes it out of the list: the list
    // is refilled after the click has been handled, never inside it.
    const auto chooseRow = [this](const QModelIndex& index) {
        const auto id = platform::Uuid::parse(index.data(MibrelSourceListModel::SourceIDRole).toString().toStdString());
        if (!id) return;
        QMetaObject::invokeMethod(this, [this, id = *id] { m_sourcesState.select(id); }, Qt::QueuedConnection);
    };
    connect(parts.sourceList, &QListView::clicked, this, chooseRow);
    connect(parts.sourceList, &QListView::activated, this, chooseRow);
    connect(parts.sourceList, &QListView::customContextMenuRequested, this, [this](const QPoint& at) {
        QListView* list = m_parts->sourceList;
        // The menu key opens the menu of the row the keyboard is on.
        QModelIndex index = list->indexAt(at);
        if (!index.isValid()) index = list->currentIndex();
        const QRect row = list->visualRect(index);
        showRowMenu(index, list->viewport()->mapToGlobal(list->indexAt(at).isValid() ? at : row.center()));
    });
    auto* deleteKey = new QShortcut(QKeySequence::Delete, parts.sourceList, nullptr, nullptr, Qt::WidgetShortcut);
    connect(deleteKey, &QShortcut::activated, this, [this, &presenter] {
        const QModelIndex index = m_parts->sourceList->currentIndex();
        if (const auto id = platform::Uuid::parse(
                index.data(MibrelSourceListModel::SourceIDRole).toString().toStdString())) {
            presenter.requestDelete(*id);
        }
    });
}

void MibrelShellView::showSelectedTool() {
    const int index = static_cast<int>(m_shellUI.selectedTool());
    {
        // Only the user's choice should reach the state; this is the state reaching the list.
        const QSignalBlocker blocker(m_parts->toolList);
        m_parts->toolList->setCurrentRow(index);
    }
    m_parts->toolPages->setCurrentIndex(index);
}

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
    m_parts->sourceModel->reload();
    const TeskSource* current = presenter.currentSource();
    m_parts->currentSource->setVisible(current != nullptr);
    if (current) {
        m_parts->currentSource->setText(kit::qtText(MibrelSourceListPresenter::displayLabel(*current)));
        m_parts->currentSource->setIcon(iconForSymbol(MibrelSourceListPresenter::symbol(*current)));
    }
    findChild<QLabel*>(QStringLiteral("shellCurrentSourceCaption"))->setVisible(current != nullptr);
    const auto empty = presenter.emptyText();
    m_parts->sourceList->setVisible(!presenter.otherSources().empty());
    m_parts->sourcesEmpty->setVisible(empty.has_value());
    if (empty) m_parts->sourcesEmpty->setTexts(kit::qtText(empty->title), kit::qtText(empty->detail));
}

void MibrelShellView::showRowMenu(const QModelIndex& index, const QPoint& globalPosition) {
    const auto sourceID = platform::Uuid::parse(index.data(MibrelSourceListModel::SourceIDRole).toString().toStdString());
    if (!sourceID) return;
    MibrelSourceListPresenter& presenter = *m_parts->sourceListPresenter;
    QMenu menu(this);
    menu.setObjectName(QStringLiteral("shellSourceRowMenu"));
    connect(menu.addAction(QStringLiteral("Review Transcript")), &QAction::triggered, this,
            [&presenter, id = *sourceID] { presenter.reviewTranscript(id); });
    if (presenter.rowMenu(*sourceID).canTranscribeAgain) {
        connect(menu.addAction(QStringLiteral("Transcribe Again")), &QAction::triggered, this,
                [&presenter, id = *sourceID] { presenter.transcribeAgain(id); });
    }
    menu.addSeparator();
    connect(menu.addAction(QStringLiteral("Delete")), &QAction::triggered, this,
            [&presenter, id = *sourceID] { presenter.requestDelete(id); });
    menu.exec(globalPosition);
}

} // namespace mibrel
