#include "MibrelMac/Views/Coding/MibrelCodingSegmentDelegate.h"

#include <algorithm>

#include <QPainter>

#include "MibrelMac/Views/Kit/MibrelKitRows.h"

#include "MibrelMac/Views/Coding/MibrelCodingSegmentModel.h"
#include "MibrelMac/Views/Kit/MibrelDesign.h"

namespace mibrel {
namespace {

constexpr int kMargin = 8;
constexpr int kTimeWidth = 104;
constexpr int kChipGap = 6;

int timeWidth(const QModelIndex& index) {
    return index.data(MibrelCodingSegmentModel::TimeRole).toString().isEmpty() ? kMargin : kTimeWidth;
}

int chipHeight(const QFontMetrics& metrics) { return metrics.height() + 4; }

QStringList chipTexts(const QModelIndex& index) {
    QStringList texts = index.data(MibrelCodingSegmentModel::CodeNamesRole).toStringList();
    if (index.data(MibrelCodingSegmentModel::PinnedRole).toBool()) texts << QStringLiteral("Pinned quote");
    return texts;
}

QRect textArea(const QRect& row, const QModelIndex& index) {
    return row.adjusted(timeWidth(index), kMargin, -kMargin, -kMargin);
}

} // namespace

void MibrelCodingSegmentDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                                        const QModelIndex& index) const {
    QStyleOptionViewItem row = option;
    initStyleOption(&row, index);
    kit::drawRowBackground(painter, row);

    const bool selected = option.state.testFlag(QStyle::State_Selected);
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(option.palette.color(selected ? QPalette::HighlightedText : QPalette::PlaceholderText));
    painter->drawText(QRect(option.rect.left() + kMargin, option.rect.top() + kMargin, kTimeWidth - 2 * kMargin,
                            option.fontMetrics.height()),
                      Qt::AlignLeft | Qt::AlignTop, index.data(MibrelCodingSegmentModel::TimeRole).toString());
    const QRect area = textArea(option.rect, index);
    const QString text = index.data().toString();
    const QRect bounds = option.fontMetrics.boundingRect(QRect(0, 0, area.width(), 100000), Qt::TextWordWrap, text);
    painter->setPen(option.palette.color(selected ? QPalette::HighlightedText : QPalette::Text));
    painter->drawText(area, Qt::AlignLeft | Qt::AlignTop | Qt::TextWordWrap, text);

    // The chips, left to right under the text.
    int x = area.left();
    const int y = area.top() + bounds.height() + 4;
    const int height = chipHeight(option.fontMetrics);
    for (const QString& chip : chipTexts(index)) {
        const int width = option.fontMetrics.horizontalAdvance(chip) + 16;
        const QRectF capsule(x + 0.5, y + 0.5, width - 1, height - 1);
        QColor fill = design::accent();
        fill.setAlpha(selected ? 0x60 : 0x1E);
        painter->setPen(QPen(design::accent(), 1));
        painter->setBrush(fill);
        painter->drawRoundedRect(capsule, height / 2.0, height / 2.0);
        painter->setPen(option.palette.color(selected ? QPalette::HighlightedText : QPalette::Text));
        painter->drawText(capsule, Qt::AlignCenter, chip);
        x += width + kChipGap;
    }
    painter->restore();
}

QSize MibrelCodingSegmentDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const {
    const QRect area = textArea(QRect(0, 0, std::max(option.rect.width(), 240), 0), index);
    const QRect bounds = option.fontMetrics.boundingRect(QRect(0, 0, std::max(area.width(), 120), 100000),
                                                         Qt::TextWordWrap, index.data().toString());
    const int chips = chipTexts(index).isEmpty() ? 0 : chipHeight(option.fontMetrics) + 4;
    return {option.rect.width(), bounds.height() + chips + 2 * kMargin};
}

} // namespace mibrel
