#pragma once

#include <functional>

#include <QStyledItemDelegate>

namespace mibrel {

// Draws a segment as its time beside its wrapped text, and edits the text in place; a
// finished edit goes to `commit` (segment id, new text), which decides whether to ask first.
class MibrelTranscriptDelegate : public QStyledItemDelegate {
    Q_OBJECT

public:
    using Commit = std::function<void(const QString& segmentID, const QString& text)>;

    MibrelTranscriptDelegate(Commit commit, QObject* parent = nullptr);

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    void setEditorData(QWidget* editor, const QModelIndex& index) const override;
    void setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const override;
    void updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option, const QModelIndex& index) const override;

private:
    QRect textRect(const QStyleOptionViewItem& option, const QModelIndex& index) const;

    Commit m_commit;
};

} // namespace mibrel
