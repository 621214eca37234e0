#include "MibrelMac/Views/Shell/MibrelSourceListModel.h"

#include "MibrelMac/State/Tools/Shell/MibrelSourceListPresenter.h"
#include "MibrelMac/Views/Kit/MibrelKitText.h"
#include "MibrelMac/Views/Kit/MibrelToolIcons.h"

namespace mibrel {

MibrelSourceListModel::MibrelSourceListModel(const MibrelSourceListPresenter& presenter, QObject* parent)
    : QAbstractListModel(parent), m_presenter(presenter) {
    reload();
}

int MibrelSourceListModel::rowCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : m_rows; }

QVariant MibrelSourceListModel::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid)) return {};
    const auto& sources = m_presenter.otherSources();
    if (static_cast<std::size_t>(index.row()) >= sources.size()) return {};
    const TeskSource& source = *sources[static_cast<std::size_t>(index.row())];
    switch (role) {
    case Qt::DisplayRole:
    case Qt::ToolTipRole:
    case Qt::AccessibleTextRole: return kit::qtText(MibrelSourceListPresenter::displayLabel(source));
    case Qt::DecorationRole: return iconForSymbol(MibrelSourceListPresenter::symbol(source));
    case SourceIDRole: return kit::qtText(source.id.uuidString());
    default: return {};
    }
}

void MibrelSourceListModel::reload() {
    beginResetModel();
    m_rows = static_cast<int>(m_presenter.otherSources().size());
    endResetModel();
}

} // namespace mibrel
