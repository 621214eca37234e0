#include "MibrelMac/State/Tools/Shell/MibrelShellPresenter.h"

#include <QTimer>

#include "MibrelMac/State/MibrelShellUIState.h"
#include "MibrelMac/State/MibrelSourcesState.h"

namespace mibrel {

MibrelShellPresenter::MibrelShellPresenter(MibrelSourcesState& sources, MibrelShellUIState& shellUI, QObject* parent)
    : QObject(parent), m_sources(sources), m_shellUI(shellUI) {
    connect(&m_sources, &MibrelSourcesState::latestImportNoticeChanged, this, &MibrelShellPresenter::showNotice);
}

void MibrelShellPresenter::showNotice() {
    const auto& notice = m_sources.latestImportNotice();
    if (!notice || (m_visibleImportNotice && m_visibleImportNotice->id == notice->id)) return;
    m_shellUI.setSelectedTool(MibrelTool::sources);
    m_shellUI.setInspectorVisible(true);
    m_visibleImportNotice = notice;
    emit visibleImportNoticeChanged();
    QTimer::singleShot(kToastMilliseconds, this, [this, id = notice->id] { expireNotice(id); });
}

void MibrelShellPresenter::expireNotice(const platform::Uuid& noticeID) {
    if (!m_visibleImportNotice || m_visibleImportNotice->id != noticeID) return;
    m_visibleImportNotice.reset();
    emit visibleImportNoticeChanged();
}

std::string MibrelShellPresenter::inspectorToggleTitle(const MibrelShellUIState& shellUI) {
    return shellUI.isInspectorVisible() ? "Hide Inspector" : "Show Inspector";
}

std::string MibrelShellPresenter::inspectorToggleHelp(const MibrelShellUIState& shellUI) {
    if (!isSetupTool(shellUI.selectedTool())) return inspectorToggleTitle(shellUI);
    return shellUI.isInspectorVisible() ? "Hide setup inspector" : "Show setup inspector";
}

bool MibrelShellPresenter::isSetupTool(MibrelTool tool) {
    return tool == MibrelTool::sources || tool == MibrelTool::firstRead || tool == MibrelTool::contextualLens;
}

} // namespace mibrel
