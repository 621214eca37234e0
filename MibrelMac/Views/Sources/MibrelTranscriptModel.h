#pragma once

#include <QAbstractListModel>

namespace mibrel {

class MibrelTranscriptPresenter;

// The transcript's segments as one list, read from the presenter on demand, so a transcript
// of thousands of segments costs one row at a time to show.
class MibrelTranscriptModel : public QAbstractListModel {
    Q_OBJECT

public:
    enum Role { TimeRole = Qt::UserRole + 1, SegmentIDRole, CodedExcerptsRole, MergeEnabledRole, MergeTooltipRole,
                StartRole };

    explicit MibrelTranscriptModel(MibrelTranscriptPresenter& presenter, QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

private:
    MibrelTranscriptPresenter& m_presenter;
};

} // namespace mibrel
