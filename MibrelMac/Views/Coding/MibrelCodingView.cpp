#include "MibrelMac/Views/Coding/MibrelCodingView.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QMenu>
#include <QScrollArea>
#include <QToolButton>
#include <QUrl>
#include <QVBoxLayout>

#include "MibrelMac/State/MibrelSourcesState.h"
#include "MibrelMac/State/Tools/Coding/MibrelCodingPresenter.h"
#include "MibrelMac/Views/Coding/MibrelCodingSegmentDelegate.h"
#include "MibrelMac/Views/Coding/MibrelCodingSegmentModel.h"
#include "MibrelMac/Views/Kit/MibrelDesign.h"
#include "MibrelMac/Views/Kit/MibrelKitEmptyState.h"
#include "MibrelMac/Views/Kit/MibrelKitRows.h"
#include "MibrelMac/Views/Kit/MibrelKitText.h"
#include "MibrelMac/Views/Kit/MibrelKitTile.h"
#include "MibrelMac/Views/Kit/MibrelTypography.h"
#include "MibrelMac/Views/Player/MibrelAudioPlayer.h"
#include "MibrelMac/Views/Player/MibrelInlineMediaPlayer.h"

namespace mibrel {
namespace {

QListView* makeSegmentList(QAbstractItemModel* model, QWidget* parent) {
    QListView* list = kit::makeTextRowList(model, QStringLiteral("codingSegments"), QStringLiteral("Segments to code"),
                                           parent);
    list->setToolTip(QStringLiteral("Up/Down or J/K move · 1–9 choose a code · Enter applies it · P pins · "
                                    "Space plays or pauses"));
    list->setItemDelegate(new MibrelCodingSegmentDelegate(list));
    list->setSelectionMode(QAbstractItemView::SingleSelection);
    list->setEditTriggers(QAbstractItemView::NoEditTriggers);
    return list;
}

} // namespace

MibrelCodingView::MibrelCodingView(MibrelSourcesState& sources, MibrelWorkspaceState& workspace,
                                   MibrelShellUIState& shellUI, MibrelAudioPlayer& player, QWidget* parent)
    : QWidget(parent), m_presenter(new MibrelCodingPresenter(sources, workspace, shellUI, this)),
      m_model(new MibrelCodingSegmentModel(*m_presenter, this)), m_player(player) {
    setObjectName(QStringLiteral("codingView"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(design::pageMarginX, design::pageMarginTop, design::pageMarginX,
                               design::pageMarginBottom);
    layout->setSpacing(10);
    m_empty = new MibrelKitEmptyState(QStringLiteral("Read & Code"), QString::fromUtf8(MibrelCodingPresenter::kEmptyText),
                                      this);
    layout->addWidget(m_empty);
    m_content = new QWidget(this);
    auto* content = new QVBoxLayout(m_content);
    content->setContentsMargins(0, 0, 0, 0);
    content->setSpacing(10);
    content->addWidget(makeHeader());
    content->addWidget(makePalette());
    m_playerView = new MibrelInlineMediaPlayer(m_player, false, m_content);
    content->addWidget(m_playerView);
    m_list = makeSegmentList(m_model, m_content);
    m_list->installEventFilter(this);
    content->addWidget(m_list, 1);
    layout->addWidget(m_content, 1);

    connect(m_list, &QListView::clicked, this, [this](const QModelIndex& index) {
        m_presenter->select(static_cast<std::size_t>(index.row()));
    });
    connect(m_list, &QListView::customContextMenuRequested, this, &MibrelCodingView::showRowMenu);
    connect(m_presenter, &MibrelCodingPresenter::changed, this, &MibrelCodingView::refresh);
    connect(m_presenter, &MibrelCodingPresenter::paletteChanged, this, &MibrelCodingView::refreshPalette);
    connect(m_presenter, &MibrelCodingPresenter::selectionChanged, this, &MibrelCodingView::followSelection);
    refresh();
}

QWidget* MibrelCodingView::makeHeader() {
    auto* header = new QWidget(m_content);
    auto* column = new QVBoxLayout(header);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(6);
    m_title = MibrelTypography::pageTitle(QString(), header);
    m_title->setObjectName(QStringLiteral("codingTitle"));
    column->addWidget(m_title);
    column->addWidget(MibrelTypography::makeLabel(QString::fromUtf8(MibrelCodingPresenter::kHeader), font(), true, header));
    auto* tiles = new QHBoxLayout;
    tiles->setSpacing(design::itemSpacing);
    for (auto& tile : m_tiles) {
        tile = new MibrelKitTile(header);
        tiles->addWidget(tile);
    }
    tiles->addStretch();
    column->addLayout(tiles);
    return header;
}

// The active-code palette: a filter for long codebooks and a button per code, the active
// one checked; the first nine carry their digit.
QWidget* MibrelCodingView::makePalette() {
    auto* palette = new QWidget(m_content);
    palette->setObjectName(QStringLiteral("codingPalette"));
    auto* column = new QVBoxLayout(palette);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(4);
    auto* top = new QHBoxLayout;
    top->addWidget(MibrelTypography::sectionHeader(QStringLiteral("Active code"), palette));
    top->addStretch();
    m_paletteFilter = new QLineEdit(palette);
    m_paletteFilter->setObjectName(QStringLiteral("codingPaletteFilter"));
    m_paletteFilter->setPlaceholderText(QStringLiteral("Filter codes"));
    m_paletteFilter->setAccessibleName(QStringLiteral("Filter codes"));
    m_paletteFilter->setClearButtonEnabled(true);
    m_paletteFilter->setMaximumWidth(220);
    top->addWidget(m_paletteFilter);
    column->addLayout(top);
    auto* scroller = new QScrollArea(palette);
    scroller->setFrameShape(QFrame::NoFrame);
    scroller->setWidgetResizable(true);
    scroller->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    auto* buttons = new QWidget(scroller);
    m_paletteRow = new QHBoxLayout(buttons);
    m_paletteRow->setContentsMargins(0, 0, 0, 0);
    m_paletteRow->setSpacing(6);
    m_paletteEmpty = MibrelTypography::makeLabel(QString::fromUtf8(MibrelCodingPresenter::kEmptyPalette), font(), true,
                                                 buttons);
    m_paletteRow->addWidget(m_paletteEmpty);
    m_paletteRow->addStretch();
    scroller->setWidget(buttons);
    scroller->setFixedHeight(buttons->sizeHint().height() + 12);
    column->addWidget(scroller);
    connect(m_paletteFilter, &QLineEdit::textChanged, this,
            [this](const QString& text) { m_presenter->setPaletteFilter(text.toStdString()); });
    return palette;
}

void MibrelCodingView::showEvent(QShowEvent* event) {
    m_presenter->ensureActiveCode();
    QWidget::showEvent(event);
}

void MibrelCodingView::refresh() {
    const TeskSource* source = m_presenter->source();
    m_empty->setVisible(source == nullptr);
    m_content->setVisible(source != nullptr);
    if (source == nullptr) return;
    m_title->setText(kit::qtText(source->label));
    const auto summary = m_presenter->summary();
    const std::array<std::pair<std::size_t, const char*>, 4> figures{
        {{summary.segments, "Segments"}, {summary.coded, "Coded"}, {summary.applications, "Applications"},
         {summary.quotes, "Quotes"}}};
    for (std::size_t i = 0; i < figures.size(); ++i) {
        m_tiles[i]->setValue(QString::number(figures[i].first), QString::fromUtf8(figures[i].second));
    }
    refreshPalette();
    loadMedia();
    followSelection();
}

void MibrelCodingView::refreshPalette() {
    const auto codes = m_presenter->paletteCodes();
    std::vector<std::pair<Uuid, std::string>> listed;
    for (const TeskCode* code : codes) listed.emplace_back(code->id, code->name);
    const TeskCode* active = m_presenter->activeCode();
    // Most changes (an apply, an undo) leave the codebook as it was: only the check moves.
    if (listed != m_paletteShown) {
        m_paletteShown = listed;
        rebuildPalette();
    }
    for (int i = 0; i + 2 < m_paletteRow->count(); ++i) {
        auto* button = static_cast<QToolButton*>(m_paletteRow->itemAt(i)->widget());
        button->setChecked(active != nullptr && m_paletteShown[static_cast<std::size_t>(i)].first == active->id);
    }
    m_paletteEmpty->setVisible(codes.empty() && m_presenter->paletteFilter().empty());
}

void MibrelCodingView::rebuildPalette() {
    while (m_paletteRow->count() > 2) delete m_paletteRow->takeAt(0)->widget();
    for (std::size_t i = 0; i < m_paletteShown.size(); ++i) {
        const auto& [id, text] = m_paletteShown[i];
        auto* button = new QToolButton(m_paletteRow->parentWidget());
        const QString name = kit::menuText(kit::qtText(text));
        button->setText(i < 9 ? QStringLiteral("%1  %2").arg(i + 1).arg(name) : name);
        button->setCheckable(true);
        button->setAccessibleName(kit::qtText(text));
        button->setToolTip(i < 9 ? QStringLiteral("Make this the active code (%1)").arg(i + 1)
                                 : QStringLiteral("Make this the active code"));
        connect(button, &QToolButton::clicked, this, [this, id = id] {
            m_presenter->setActiveCode(id);
            refreshPalette(); // a click on the active code leaves it checked
        });
        m_paletteRow->insertWidget(m_paletteRow->count() - 2, button);
    }
}

void MibrelCodingView::followSelection() {
    const auto row = m_presenter->selectedRow();
    const QModelIndex index = row ? m_model->index(static_cast<int>(*row)) : QModelIndex();
    if (index == m_list->currentIndex()) return;
    if (!index.isValid()) return m_list->clearSelection();
    m_list->setCurrentIndex(index);
    m_list->scrollTo(index);
}

void MibrelCodingView::loadMedia() {
    const TeskSource* source = m_presenter->source();
    const auto location = source ? m_presenter->mediaLocation() : std::nullopt;
    m_playerView->setVisible(location.has_value());
    if (!location) return m_player.stop();
    m_playerView->setShowsVideo(source->mediaKind == TeskMediaKind::video);
    m_player.load(QUrl::fromLocalFile(QString::fromStdString(location->string())));
}

void MibrelCodingView::playRow(int row) {
    if (row < 0 || !m_presenter->actionsAt(static_cast<std::size_t>(row)).canPlay) return;
    m_player.seek(*m_presenter->segmentAt(static_cast<std::size_t>(row)).start, true);
}

bool MibrelCodingView::eventFilter(QObject* watched, QEvent* event) {
    if (watched == m_list && event->type() == QEvent::KeyPress) {
        const auto* key = static_cast<QKeyEvent*>(event);
        if (handleKey(key->key(), key->modifiers())) return true;
    }
    return QWidget::eventFilter(watched, event);
}

bool MibrelCodingView::handleKey(int key, Qt::KeyboardModifiers modifiers) {
    if (modifiers & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) return false;
    const auto row = m_presenter->selectedRow();
    switch (key) {
    case Qt::Key_Down:
    case Qt::Key_J: m_presenter->moveSelection(1); return true;
    case Qt::Key_Up:
    case Qt::Key_K: m_presenter->moveSelection(-1); return true;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (row) m_presenter->applyActiveCode(*row);
        return true;
    case Qt::Key_P:
        if (row) m_presenter->pinQuote(*row);
        return true;
    case Qt::Key_Space:
        if (m_player.isPlaying()) {
            m_player.togglePlay();
        } else if (row) {
            playRow(static_cast<int>(*row));
        }
        return true;
    default: break;
    }
    if (key >= Qt::Key_1 && key <= Qt::Key_9) {
        m_presenter->activatePaletteCode(static_cast<std::size_t>(key - Qt::Key_0));
        return true;
    }
    return false;
}

void MibrelCodingView::showRowMenu(const QPoint& position) {
    QModelIndex index = m_list->indexAt(position);
    if (!index.isValid()) index = m_list->currentIndex();
    if (!index.isValid()) return;
    const auto row = static_cast<std::size_t>(index.row());
    m_presenter->select(row);
    const auto actions = m_presenter->actionsAt(row);
    QMenu menu(this);
    QAction* apply = menu.addAction(kit::qtText(actions.applyTitle));
    apply->setEnabled(actions.canApply);
    connect(apply, &QAction::triggered, this, [this, row] { m_presenter->applyActiveCode(row); });
    if (actions.hasQuote) {
        connect(menu.addAction(QStringLiteral("Update pinned quote with current codes and themes")),
                &QAction::triggered, this, [this, row] { m_presenter->updatePinnedQuote(row); });
        connect(menu.addAction(QStringLiteral("Open quote in Evidence")), &QAction::triggered, this,
                [this, row] { m_presenter->openQuoteInEvidence(row); });
    } else {
        connect(menu.addAction(QStringLiteral("Pin as exemplar quote")), &QAction::triggered, this,
                [this, row] { m_presenter->pinQuote(row); });
    }
    if (actions.canPlay) {
        connect(menu.addAction(QStringLiteral("Play from Here")), &QAction::triggered, this,
                [this, row] { playRow(static_cast<int>(row)); });
    }
    const auto chips = m_presenter->chipsAt(row);
    if (!chips.empty()) menu.addSeparator();
    for (const auto& chip : chips) {
        QMenu* codeMenu = menu.addMenu(kit::menuText(kit::qtText(chip.name)));
        connect(codeMenu->addAction(QStringLiteral("Use as active code")), &QAction::triggered, this,
                [this, id = chip.codeID] { m_presenter->setActiveCode(id); });
        connect(codeMenu->addAction(kit::menuText(QStringLiteral("Remove code ") + kit::qtText(chip.name))),
                &QAction::triggered, this, [this, row, id = chip.codeID] { m_presenter->removeCode(row, id); });
    }
    const QRect rect = m_list->visualRect(index);
    menu.exec(m_list->viewport()->mapToGlobal(m_list->indexAt(position).isValid() ? position : rect.center()));
}

} // namespace mibrel
