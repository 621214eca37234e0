#pragma once

#include <QAbstractListModel>

namespace mibrel {

class MibrelSourceListPresenter;

// The sidebar's sources below the current one, in list order, as the presenter filters them.
class MibrelSourceListModel : public QAbstractListModel {
    Q_OBJECT

public:
    enum Role { SourceIDRole = Qt::UserRole + 1 };

    explicit MibrelSourceListModel(const MibrelSourceListPresenter& presenter, QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;

    // Reads the presenter's list again.
    void reload();

private:
    const MibrelSourceListPresenter& m_presenter;
    int m_rows = 0;
};

} // namespace mibrel
