#include "MibrelMac/Views/Sources/MibrelTranscriptView.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QListView>
#include <QMenu>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "MibrelMac/State/Tools/Sources/MibrelTranscriptPresenter.h"
#include "MibrelMac/Views/Kit/MibrelKitText.h"
#include "MibrelMac/Views/MibrelToolIcons.h"
#include "MibrelMac/Views/MibrelTypography.h"
#include "MibrelMac/Views/Sources/MibrelTranscriptDelegate.h"
#include "MibrelMac/Views/Sources/MibrelTranscriptModel.h"

namespace mibrel {
namespace {

QPlainTextEdit* splitHalf(const QString& text, const QString& name, QWidget* parent) {
    auto* half = new QPlainTextEdit(text, parent);
    half->setAccessibleName(name);
    half->setTabChangesFocus(true);
    return half;
}

} // namespace

MibrelTranscriptView::MibrelTranscriptView(MibrelSourcesState& sources, MibrelWorkspaceState& workspace,
                                           QWidget* parent)
    : QWidget(parent), m_presenter(new MibrelTranscriptPresenter(sources, workspace, this)),
      m_model(new MibrelTranscriptModel(*m_presenter, this)) {
    setObjectName(QStringLiteral("transcriptView"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(32, 24, 32, 16);
    layout->setSpacing(10);

    auto* header = new QHBoxLayout;
    m_title = MibrelTypography::makeLabel(QString(), MibrelTypography::scaledFont(font(), 1.5, QFont::DemiBold), false, this);
    m_title->setObjectName(QStringLiteral("transcriptTitle"));
    header->addWidget(m_title, 1);
    m_review = new QPushButton(this);
    m_review->setObjectName(QStringLiteral("transcriptReview"));
    header->addWidget(m_review);
    layout->addLayout(header);

    m_empty = MibrelTypography::makeLabel(QString(), MibrelTypography::scaledFont(font(), 1.05), true, this);
    m_empty->setObjectName(QStringLiteral("transcriptEmpty"));
    m_empty->setWordWrap(true);
    layout->addWidget(m_empty);

    m_list = new QListView(this);
    m_list->setObjectName(QStringLiteral("transcriptSegments"));
    m_list->setAccessibleName(QStringLiteral("Transcript segments"));
    m_list->setModel(m_model);
    m_list->setItemDelegate(new MibrelTranscriptDelegate(
        [this](const QString& id, const QString& text) { commitEdit(id, text); }, m_list));
    m_list->setWordWrap(true);
    m_list->setUniformItemSizes(false);
    m_list->setResizeMode(QListView::Adjust);
    m_list->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    m_list->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed);
    m_list->setContextMenuPolicy(Qt::CustomContextMenu);
    layout->addWidget(m_list, 1);

    connect(m_review, &QPushButton::clicked, this, [this] { m_presenter->markReviewed(); });
    connect(m_list, &QListView::customContextMenuRequested, this, &MibrelTranscriptView::showRowMenu);
    connect(m_presenter, &MibrelTranscriptPresenter::changed, this, &MibrelTranscriptView::refresh);
    refresh();
}

void MibrelTranscriptView::refresh() {
    const TeskSource* source = m_presenter->source();
    m_title->setText(source ? kit::qtText(source->label) : QStringLiteral("Sources"));
    const auto empty = m_presenter->emptyText();
    m_empty->setVisible(empty.has_value());
    if (empty) m_empty->setText(kit::qtText(*empty));
    m_list->setVisible(!empty.has_value());
    const auto review = m_presenter->reviewCommand();
    m_review->setVisible(source != nullptr);
    m_review->setText(kit::menuText(kit::qtText(review.title)));
    m_review->setIcon(review.image.empty() ? QIcon() : iconForSymbol(review.image));
    m_review->setEnabled(review.enabled);
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
    const QModelIndex index = m_list->indexAt(position);
    if (!index.isValid()) return;
    const QString id = index.data(MibrelTranscriptModel::SegmentIDRole).toString();
    QMenu menu(this);
    connect(menu.addAction(QStringLiteral("Edit Segment")), &QAction::triggered, this, [this, index] { m_list->edit(index); });
    connect(menu.addAction(QStringLiteral("Split Segment…")), &QAction::triggered, this, [this, id] { splitSegment(id); });
    QAction* merge = menu.addAction(QStringLiteral("Merge with Next Segment"));
    merge->setEnabled(index.data(MibrelTranscriptModel::MergeEnabledRole).toBool() &&
                      index.row() + 1 < m_model->rowCount());
    merge->setToolTip(index.data(MibrelTranscriptModel::MergeTooltipRole).toString());
    menu.setToolTipsVisible(true);
    connect(merge, &QAction::triggered, this, [this, id] { m_presenter->mergeWithNext(id.toStdString()); });
    menu.exec(m_list->viewport()->mapToGlobal(position));
}

} // namespace mibrel
