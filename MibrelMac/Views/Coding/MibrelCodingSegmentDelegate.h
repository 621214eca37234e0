#pragma once

#include <QStyledItemDelegate>

namespace mibrel {

// A Read & Code row: the segment's time, its text, and under it a chip for each code on it
// (and a mark when it is pinned as a quote).
class MibrelCodingSegmentDelegate : public QStyledItemDelegate {
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
};

} // namespace mibrel
