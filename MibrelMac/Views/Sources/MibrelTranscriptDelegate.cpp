#include "MibrelMac/Views/Sources/MibrelTranscriptDelegate.h"

#include <QPainter>

#include "MibrelMac/Views/Kit/MibrelKitRows.h"
#include <QPlainTextEdit>

#include "MibrelMac/Views/Sources/MibrelTranscriptModel.h"

namespace mibrel {
namespace {

constexpr int kTimeColumnWidth = 104;
constexpr int kMargin = 8;

// Untimed segments (documents, responses) need no time column.
int timeColumnWidth(const QModelIndex& index) {
    return index.data(MibrelTranscriptModel::TimeRole).toString().isEmpty() ? kMargin : kTimeColumnWidth;
}

} // namespace

MibrelTranscriptDelegate::MibrelTranscriptDelegate(Commit commit, QObject* parent)
    : QStyledItemDelegate(parent), m_commit(std::move(commit)) {}

QRect MibrelTranscriptDelegate::textRect(const QStyleOptionViewItem& option, const QModelIndex& index) const {
    return option.rect.adjusted(timeColumnWidth(index), kMargin, -kMargin, -kMargin);
}

void MibrelTranscriptDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                                     const QModelIndex& index) const {
    QStyleOptionViewItem row = option;
    initStyleOption(&row, index);
    kit::drawRowBackground(painter, row);

    const bool selected = option.state.testFlag(QStyle::State_Selected);
    const QPalette::ColorRole textRole = selected ? QPalette::HighlightedText : QPalette::Text;
    painter->save();
    painter->setPen(option.palette.color(selected ? QPalette::HighlightedText : QPalette::PlaceholderText));
    const QRect timeRect(option.rect.left() + kMargin, option.rect.top() + kMargin, kTimeColumnWidth - 2 * kMargin,
                         option.rect.height() - 2 * kMargin);
    painter->drawText(timeRect, Qt::AlignLeft | Qt::AlignTop, index.data(MibrelTranscriptModel::TimeRole).toString());
    painter->setPen(option.palette.color(textRole));
    painter->drawText(textRect(option, index), Qt::AlignLeft | Qt::AlignTop | Qt::TextWordWrap, index.data().toString());
    painter->restore();
}

QSize MibrelTranscriptDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const {
    const int width = std::max(120, option.rect.width() - timeColumnWidth(index) - kMargin);
    const QRect bounds = option.fontMetrics.boundingRect(QRect(0, 0, width, 100000), Qt::TextWordWrap,
                                                         index.data().toString());
    return {option.rect.width(), bounds.height() + 2 * kMargin};
}

QWidget* MibrelTranscriptDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem&, const QModelIndex&) const {
    auto* editor = new QPlainTextEdit(parent);
    editor->setObjectName(QStringLiteral("transcriptSegmentEditor"));
    editor->setAccessibleName(QStringLiteral("Segment text"));
    editor->setTabChangesFocus(true);
    return editor;
}

void MibrelTranscriptDelegate::setEditorData(QWidget* editor, const QModelIndex& index) const {
    static_cast<QPlainTextEdit*>(editor)->setPlainText(index.data(Qt::EditRole).toString());
}

// The model holds no text of its own: the edit goes to the state through `commit`.
void MibrelTranscriptDelegate::setModelData(QWidget* editor, QAbstractItemModel*, const QModelIndex& index) const {
    const QString text = static_cast<QPlainTextEdit*>(editor)->toPlainText();
    if (text == index.data(Qt::EditRole).toString()) return;
    m_commit(index.data(MibrelTranscriptModel::SegmentIDRole).toString(), text);
}

void MibrelTranscriptDelegate::updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option,
                                                    const QModelIndex& index) const {
    const QRect area = textRect(option, index).adjusted(-4, -4, 4, 4);
    editor->setGeometry(area.left(), area.top(), area.width(), std::max(area.height(), 64));
}

} // namespace mibrel
