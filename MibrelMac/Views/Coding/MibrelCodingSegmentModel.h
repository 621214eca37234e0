#pragma once

#include <QAbstractListModel>

namespace mibrel {

class MibrelCodingPresenter;

// Read & Code's segments, one row each, with the names of the codes on them and whether
// they are pinned as a quote; read from the presenter on demand.
class MibrelCodingSegmentModel : public QAbstractListModel {
    Q_OBJECT

public:
    enum Role { TimeRole = Qt::UserRole + 1, CodeNamesRole, PinnedRole };

    explicit MibrelCodingSegmentModel(const MibrelCodingPresenter& presenter, QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;

private:
    const MibrelCodingPresenter& m_presenter;
};

} // namespace mibrel
