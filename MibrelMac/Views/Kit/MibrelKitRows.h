#pragma once

class QAbstractItemModel;
class QListView;
class QPainter;
class QString;
class QStyleOptionViewItem;
class QWidget;

// Long lists of text rows (transcripts, segments to code), shared by the tools that show them.
namespace mibrel::kit {

// A list of wrapping rows of different heights over `model`, laid out in batches so that
// thousands of rows paint at once, with a context menu per row.
QListView* makeTextRowList(QAbstractItemModel* model, const QString& name, const QString& accessibleName,
                           QWidget* parent);

// The row's background as the style draws it (selection, hover, focus), without its text,
// for delegates that draw their own; `row` comes from the delegate's initStyleOption.
void drawRowBackground(QPainter* painter, QStyleOptionViewItem row);

} // namespace mibrel::kit
