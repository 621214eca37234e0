#include "MibrelMac/Views/Sources/MibrelTranscriptView.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QListView>
#include <QMenu>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QShortcut>
#include <QSplitter>
#include <QUrl>
#include <QVBoxLayout>

#include "MibrelMac/State/Tools/Sources/MibrelTranscriptPresenter.h"
#include "MibrelMac/Views/Kit/MibrelDesign.h"
#include "MibrelMac/Views/Kit/MibrelKitEmptyState.h"
#include "MibrelMac/Views/Kit/MibrelKitPill.h"
#include "MibrelMac/Views/Kit/MibrelKitRows.h"
#include "MibrelMac/Views/Kit/MibrelKitText.h"
#include "MibrelMac/Views/Kit/MibrelToolIcons.h"
#include "MibrelMac/Views/Kit/MibrelTypography.h"
#include "MibrelMac/Views/Player/MibrelAudioPlayer.h"
#include "MibrelMac/Views/Player/MibrelInlineMediaPlayer.h"
#include "MibrelMac/Views/Sources/MibrelMediaNotesPanel.h"
#include "MibrelMac/Views/Sources/MibrelTranscriptDelegate.h"
#include "MibrelMac/Views/Sources/MibrelTranscriptModel.h"
#include "MibrelMac/Views/Sources/MibrelTranscriptionTone.h"

namespace mibrel {
namespace {

QPlainTextEdit* splitHalf(const QString& text, const QString& name, QWidget* parent) {
    auto* half = new QPlainTextEdit(text, parent);
    half->setAccessibleName(name);
    half->setTabChangesFocus(true);
    return half;
}

QPushButton* makeButton(const QString& name, QWidget* parent) {
    auto* button = new QPushButton(parent);
    button->setObjectName(name);
    return button;
}

} // namespace

MibrelTranscriptView::MibrelTranscriptView(MibrelSourcesState& sources, MibrelWorkspaceState& workspace,
                                           MibrelAudioPlayer& player, QWidget* parent)
    : QWidget(parent), m_presenter(new MibrelTranscriptPresenter(sources, workspace, this)),
      m_model(new MibrelTranscriptModel(*m_presenter, this)), m_player(player) {
    setObjectName(QStringLiteral("transcriptView"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(design::pageMarginX, design::pageMarginTop, design::pageMarginX,
                               design::pageMarginBottom);
    layout->setSpacing(10);
    layout->addWidget(makeHeader());
    layout->addWidget(makeTranscriptionBar());
    m_playerView = new MibrelInlineMediaPlayer(m_player, false, this);
    layout->addWidget(m_playerView);
    m_empty = new MibrelKitEmptyState(this);
    m_empty->setObjectName(QStringLiteral("transcriptEmpty"));
    layout->addWidget(m_empty);

    m_list = kit::makeTextRowList(m_model, QStringLiteral("transcriptSegments"), QStringLiteral("Transcript segments"),
                                  this);
    m_list->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed);
    m_list->setItemDelegate(new MibrelTranscriptDelegate(
        [this](const QString& id, const QString& text) { commitEdit(id, text); }, m_list));
    m_notes = new MibrelMediaNotesPanel(sources, [this] { return m_player.currentTimeSeconds(); }, this);
    auto* columns = new QSplitter(Qt::Horizontal, this);
    columns->setObjectName(QStringLiteral("transcriptColumns"));
    columns->setChildrenCollapsible(false);
    columns->addWidget(m_list);
    columns->addWidget(m_notes);
    columns->setStretchFactor(0, 3);
    columns->setStretchFactor(1, 1);
    columns->setSizes({560, 300});
    layout->addWidget(columns, 1);
    connectControls();
    refresh();
}

QWidget* MibrelTranscriptView::makeHeader() {
    auto* header = new QWidget(this);
    auto* row = new QHBoxLayout(header);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(design::itemSpacing);
    m_title = MibrelTypography::pageTitle(QString(), header);
    m_title->setObjectName(QStringLiteral("transcriptTitle"));
    row->addWidget(m_title, 1);
    m_status = new MibrelKitPill(header);
    m_status->setObjectName(QStringLiteral("transcriptStatus"));
    row->addWidget(m_status);
    m_transcribe = makeButton(QStringLiteral("transcriptTranscribe"), header);
    row->addWidget(m_transcribe);
    m_review = makeButton(QStringLiteral("transcriptReview"), header);
    row->addWidget(m_review);
    return header;
}

// The status's words and the coverage, and while a run goes on its progress and Cancel.
QWidget* MibrelTranscriptView::makeTranscriptionBar() {
    auto* bar = new QWidget(this);
    auto* column = new QVBoxLayout(bar);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(6);
    m_statusDetail = MibrelTypography::makeLabel(QString(), font(), true, bar);
    m_statusDetail->setObjectName(QStringLiteral("transcriptStatusDetail"));
    m_statusDetail->setTextInteractionFlags(Qt::TextSelectableByMouse);
    column->addWidget(m_statusDetail);
    m_running = new QWidget(bar);
    auto* running = new QHBoxLayout(m_running);
    running->setContentsMargins(0, 0, 0, 0);
    m_progress = new QProgressBar(m_running);
    m_progress->setObjectName(QStringLiteral("transcriptProgress"));
    m_progress->setAccessibleName(QStringLiteral("Transcription progress"));
    m_progress->setMaximumHeight(10);
    m_progress->setTextVisible(false);
    running->addWidget(m_progress, 1);
    m_cancel = makeButton(QStringLiteral("transcriptCancel"), m_running);
    m_cancel->setText(QStringLiteral("Cancel"));
    m_cancel->setToolTip(QStringLiteral("Stop transcribing; the transcript stays as it was"));
    running->addWidget(m_cancel);
    column->addWidget(m_running);
    return bar;
}

void MibrelTranscriptView::connectControls() {
    connect(m_review, &QPushButton::clicked, m_presenter, &MibrelTranscriptPresenter::markReviewed);
    connect(m_transcribe, &QPushButton::clicked, m_presenter, &MibrelTranscriptPresenter::transcribe);
    connect(m_cancel, &QPushButton::clicked, m_presenter, &MibrelTranscriptPresenter::cancelTranscription);
    connect(m_list, &QListView::customContextMenuRequested, this, &MibrelTranscriptView::showRowMenu);
    connect(m_presenter, &MibrelTranscriptPresenter::changed, this, &MibrelTranscriptView::refresh);
    connect(m_presenter, &MibrelTranscriptPresenter::transcriptionChanged, this,
            &MibrelTranscriptView::refreshTranscription);
    connect(m_notes, &MibrelMediaNotesPanel::seekRequested, this,
            [this](double seconds) { m_player.seek(seconds, false); });
    // Keyboard paths on a row: Space plays from its start; the menu key opens its menu.
    auto* play = new QShortcut(QKeySequence(Qt::Key_Space), m_list, nullptr, nullptr, Qt::WidgetShortcut);
    connect(play, &QShortcut::activated, this, [this] { playRow(m_list->currentIndex().row()); });
}

void MibrelTranscriptView::refresh() {
    const TeskSource* source = m_presenter->source();
    m_title->setText(source ? kit::qtText(source->label) : QStringLiteral("Sources"));
    const auto empty = m_presenter->emptyText();
    m_empty->setVisible(empty.has_value());
    if (empty) m_empty->setTexts(kit::qtText(*empty), QString());
    m_list->setVisible(!empty.has_value());
    const auto review = m_presenter->reviewCommand();
    m_review->setVisible(source != nullptr);
    m_review->setText(kit::menuText(kit::qtText(review.title)));
    m_review->setIcon(review.image.empty() ? QIcon() : iconForSymbol(review.image));
    m_review->setEnabled(review.enabled);
    loadMedia();
    refreshTranscription();
}

void MibrelTranscriptView::refreshTranscription() {
    const auto state = m_presenter->transcription();
    m_status->setVisible(state.has_value());
    m_transcribe->setVisible(state.has_value());
    m_statusDetail->setVisible(state.has_value());
    m_running->setVisible(state && state->running);
    if (!state) return;
    m_status->setStatus(kit::qtText(state->summary.title), designTone(state->summary.tone));
    m_status->setToolTip(kit::qtText(state->summary.detail));
    QString detail = kit::qtText(state->summary.detail);
    if (!state->coverage.empty() && state->coverage != state->summary.detail) {
        detail += QStringLiteral(" · ") + kit::qtText(state->coverage);
    }
    m_statusDetail->setText(detail);
    m_transcribe->setText(kit::qtText(state->transcribeTitle));
    m_transcribe->setEnabled(state->canTranscribe);
    // Short recordings report no progress: the bar runs without an end until the result.
    m_progress->setRange(0, state->progress ? 1000 : 0);
    if (state->progress) m_progress->setValue(static_cast<int>(*state->progress * 1000));
}

void MibrelTranscriptView::loadMedia() {
    const auto media = m_presenter->media();
    m_playerView->setVisible(media.has_value());
    const std::optional<QString> location =
        media ? std::optional(QString::fromStdString(media->location.string())) : std::nullopt;
    if (location == m_loadedMedia) return;
    m_loadedMedia = location;
    if (!media) return m_player.stop();
    m_playerView->setShowsVideo(media->isVideo);
    m_player.load(QUrl::fromLocalFile(*location));
}

void MibrelTranscriptView::playRow(int row) {
    const QModelIndex index = m_model->index(row);
    const QVariant start = index.data(MibrelTranscriptModel::StartRole);
    if (!start.isValid() || !m_loadedMedia) return;
    m_player.seek(start.toDouble(), true);
}

void MibrelTranscriptView::commitEdit(const QString& segmentID, const QString& text) {
    const std::string id = segmentID.toStdString();
    const std::string draft = text.toStdString();
    const auto question = m_presenter->editConfirmation(id, draft);
    if (!question) return m_presenter->saveEdit(id, draft);
    auto* ask = new QMessageBox(QMessageBox::Warning, QStringLiteral("Delete Segment"), kit::qtText(*question),
                                QMessageBox::NoButton, this);
    ask->setObjectName(QStringLiteral("transcriptDeleteSegmentDialog"));
    ask->setAttribute(Qt::WA_DeleteOnClose);
    QPushButton* remove = ask->addButton(QStringLiteral("Delete Segment"), QMessageBox::DestructiveRole);
    QPushButton* keep = ask->addButton(QStringLiteral("Keep Segment"), QMessageBox::RejectRole);
    ask->setDefaultButton(keep);
    ask->setEscapeButton(keep);
    connect(ask, &QMessageBox::buttonClicked, this, [this, remove, id, draft](QAbstractButton* button) {
        if (button == remove) m_presenter->saveEdit(id, draft);
    });
    ask->open();
}

// The suggested halves fill the two fields; the researcher may move words between them.
void MibrelTranscriptView::splitSegment(const QString& segmentID) {
    const std::string id = segmentID.toStdString();
    const auto [first, second] = m_presenter->suggestedSplit(id);
    auto* dialog = new QDialog(this);
    dialog->setObjectName(QStringLiteral("transcriptSplitDialog"));
    dialog->setWindowTitle(QStringLiteral("Split Segment"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    auto* layout = new QVBoxLayout(dialog);
    QPlainTextEdit* firstHalf = splitHalf(kit::qtText(first), QStringLiteral("First segment"), dialog);
    QPlainTextEdit* secondHalf = splitHalf(kit::qtText(second), QStringLiteral("Second segment"), dialog);
    layout->addWidget(firstHalf);
    layout->addWidget(secondHalf);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Cancel, dialog);
    buttons->addButton(QStringLiteral("Split"), QDialogButtonBox::AcceptRole);
    layout->addWidget(buttons);
    connect(buttons, &QDialogButtonBox::accepted, dialog, [this, dialog, id, firstHalf, secondHalf] {
        m_presenter->saveSplit(id, firstHalf->toPlainText().toStdString(), secondHalf->toPlainText().toStdString());
        dialog->accept();
    });
    connect(buttons, &QDialogButtonBox::rejected, dialog, &QDialog::reject);
    dialog->open();
}

void MibrelTranscriptView::showRowMenu(const QPoint& position) {
    QModelIndex index = m_list->indexAt(position);
    if (!index.isValid()) index = m_list->currentIndex(); // the menu key, on the keyboard's row
    if (!index.isValid()) return;
    const QString id = index.data(MibrelTranscriptModel::SegmentIDRole).toString();
    QMenu menu(this);
    menu.setToolTipsVisible(true);
    const QVariant start = index.data(MibrelTranscriptModel::StartRole);
    if (start.isValid() && m_loadedMedia) {
        const QString from = kit::qtText(MibrelTranscriptPresenter::clockText(start.toDouble()));
        connect(menu.addAction(QStringLiteral("Play from %1").arg(from)), &QAction::triggered, this,
                [this, row = index.row()] { playRow(row); });
        menu.addSeparator();
    }
    connect(menu.addAction(QStringLiteral("Edit Segment")), &QAction::triggered, this, [this, index] { m_list->edit(index); });
    connect(menu.addAction(QStringLiteral("Split Segment…")), &QAction::triggered, this, [this, id] { splitSegment(id); });
    QAction* merge = menu.addAction(QStringLiteral("Merge with Next Segment"));
    merge->setEnabled(index.data(MibrelTranscriptModel::MergeEnabledRole).toBool() &&
                      index.row() + 1 < m_model->rowCount());
    merge->setToolTip(index.data(MibrelTranscriptModel::MergeTooltipRole).toString());
    connect(merge, &QAction::triggered, this, [this, id] { m_presenter->mergeWithNext(id.toStdString()); });
    const QRect row = m_list->visualRect(index);
    menu.exec(m_list->viewport()->mapToGlobal(m_list->indexAt(position).isValid() ? position : row.center()));
}

} // namespace mibrel
