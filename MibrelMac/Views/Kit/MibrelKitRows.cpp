#include "MibrelMac/Views/Kit/MibrelKitRows.h"

#include <QApplication>
#include <QListView>
#include <QStyleOptionViewItem>

namespace mibrel::kit {
QListView* makeTextRowList(QAbstractItemModel* model, const QString& name, const QString& accessibleName,
                           QWidget* parent) {
    auto* list = new QListView(parent);
    list->setObjectName(name);
    list->setAccessibleName(accessibleName);
    list->setModel(model);
    list->setWordWrap(true);
    list->setUniformItemSizes(false);
    list->setResizeMode(QListView::Adjust);
    list->setLayoutMode(QListView::Batched);
    list->setBatchSize(200);
    list->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    list->setContextMenuPolicy(Qt::CustomContextMenu);
    return list;
}

void drawRowBackground(QPainter* painter, QStyleOptionViewItem row) {
    row.text.clear();
    QStyle* style = row.widget ? row.widget->style() : QApplication::style();
    style->drawControl(QStyle::CE_ItemViewItem, &row, painter, row.widget);
}

} // namespace mibrel::kit
