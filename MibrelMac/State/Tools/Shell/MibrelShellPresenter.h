#pragma once

#include <optional>
#include <string>

#include <QObject>

#include "MibrelMac/State/MibrelImportNotice.h"
#include "MibrelMac/State/MibrelTool.h"

namespace mibrel {

class MibrelShellUIState;
class MibrelSourcesState;

// The shell's own reactions: a new import notice brings the Sources tool forward with its
// inspector and shows a toast for four seconds (a later notice keeps it up for its own
// four); and the words of the inspector toggle.
class MibrelShellPresenter : public QObject {
    Q_OBJECT

public:
    static constexpr int kToastMilliseconds = 4000;

    MibrelShellPresenter(MibrelSourcesState& sources, MibrelShellUIState& shellUI, QObject* parent = nullptr);

    const std::optional<MibrelImportNotice>& visibleImportNotice() const { return m_visibleImportNotice; }
    // The end of a notice's four seconds: hides the toast if that notice is still the one shown.
    void expireNotice(const platform::Uuid& noticeID);

    // The toggle's words for the inspector as it is now, and its help text.
    static std::string inspectorToggleTitle(const MibrelShellUIState& shellUI);
    static std::string inspectorToggleHelp(const MibrelShellUIState& shellUI);
    // Sources, First Read and Contextual Lens set the study up; their inspector is the setup inspector.
    static bool isSetupTool(MibrelTool tool);

signals:
    void visibleImportNoticeChanged();

private:
    void showNotice();

    MibrelSourcesState& m_sources;
    MibrelShellUIState& m_shellUI;
    std::optional<MibrelImportNotice> m_visibleImportNotice;
};

} // namespace mibrel
