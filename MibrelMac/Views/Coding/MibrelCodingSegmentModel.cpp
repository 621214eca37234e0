#include "MibrelMac/Views/Coding/MibrelCodingSegmentModel.h"

#include "MibrelMac/State/Tools/Coding/MibrelCodingPresenter.h"
#include "MibrelMac/State/Tools/Sources/MibrelTranscriptPresenter.h"
#include "MibrelMac/Views/Kit/MibrelKitText.h"

namespace mibrel {

MibrelCodingSegmentModel::MibrelCodingSegmentModel(const MibrelCodingPresenter& presenter, QObject* parent)
    : QAbstractListModel(parent), m_presenter(presenter) {
    connect(&m_presenter, &MibrelCodingPresenter::changed, this, [this] {
        beginResetModel();
        endResetModel();
    });
}

int MibrelCodingSegmentModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_presenter.rowCount());
}

QVariant MibrelCodingSegmentModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= rowCount()) return {};
    const auto row = static_cast<std::size_t>(index.row());
    switch (role) {
    case Qt::DisplayRole: return kit::qtText(m_presenter.segmentAt(row).text);
    case TimeRole: return kit::qtText(MibrelTranscriptPresenter::timeText(m_presenter.segmentAt(row)));
    case CodeNamesRole: {
        QStringList names;
        for (const auto& chip : m_presenter.chipsAt(row)) names << kit::qtText(chip.name);
        return names;
    }
    case PinnedRole: return m_presenter.actionsAt(row).hasQuote;
    case Qt::AccessibleTextRole: {
        QString text = kit::qtText(m_presenter.segmentAt(row).text);
        std::vector<std::string> names;
        for (const auto& chip : m_presenter.chipsAt(row)) names.push_back(chip.name);
        if (!names.empty()) text += QStringLiteral(" (codes: %1)").arg(kit::qtText(MibrelCodingPresenter::joined(names)));
        return text;
    }
    default: return {};
    }
}

} // namespace mibrel
