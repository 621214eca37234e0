#include "MibrelMac/Views/Sources/MibrelTranscriptModel.h"

#include "MibrelMac/State/Tools/Sources/MibrelTranscriptPresenter.h"
#include "MibrelMac/Views/Kit/MibrelKitText.h"

namespace mibrel {

MibrelTranscriptModel::MibrelTranscriptModel(MibrelTranscriptPresenter& presenter, QObject* parent)
    : QAbstractListModel(parent), m_presenter(presenter) {
    // Any change may add, remove or renumber segments: the list is read afresh.
    connect(&m_presenter, &MibrelTranscriptPresenter::changed, this, [this] {
        beginResetModel();
        endResetModel();
    });
}

int MibrelTranscriptModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_presenter.rowCount());
}

QVariant MibrelTranscriptModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= rowCount()) return {};
    const auto at = static_cast<std::size_t>(index.row());
    // Painting and measuring read only the segment; the evidence lookups wait for a menu.
    switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole: return kit::qtText(m_presenter.segmentAt(at).text);
    case TimeRole: return kit::qtText(MibrelTranscriptPresenter::timeText(m_presenter.segmentAt(at)));
    case SegmentIDRole: return kit::qtText(m_presenter.segmentAt(at).id);
    case Qt::AccessibleTextRole:
    case CodedExcerptsRole:
    case MergeEnabledRole:
    case MergeTooltipRole:
    case StartRole: break;
    default: return {}; // the style asks for fonts, colours and more, row by row
    }
    const auto row = m_presenter.row(at);
    switch (role) {
    case Qt::AccessibleTextRole:
        return row.timeText.empty() ? kit::qtText(row.text) : kit::qtText(row.timeText + ": " + row.text);
    case CodedExcerptsRole: return static_cast<qulonglong>(row.codedExcerpts);
    case MergeEnabledRole: return row.merge.enabled;
    case MergeTooltipRole: return kit::qtText(row.merge.tooltip);
    case StartRole: return row.start ? QVariant(*row.start) : QVariant();
    default: return {};
    }
}

Qt::ItemFlags MibrelTranscriptModel::flags(const QModelIndex& index) const {
    return QAbstractListModel::flags(index) | Qt::ItemIsEditable;
}

} // namespace mibrel
