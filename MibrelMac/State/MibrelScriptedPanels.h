#pragma once

#include <deque>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "MibrelMac/State/MibrelPanels.h"

namespace mibrel {

// Panels answered from a script instead of a person: each dialog takes the next queued
// answer (absent meaning Cancel, which is also the answer when none is queued), and
// every request and side effect is recorded for inspection.
class MibrelScriptedPanels : public MibrelPanels {
public:
    std::deque<std::optional<std::filesystem::path>> saveAnswers;
    std::deque<std::optional<std::filesystem::path>> openAnswers;

    std::vector<MibrelSavePanelRequest> saveRequests;
    std::vector<MibrelOpenPanelRequest> openRequests;
    std::vector<std::filesystem::path> revealed;
    std::optional<std::string> clipboardHTML;
    std::optional<std::string> clipboardText;

    std::optional<std::filesystem::path> runSavePanel(const MibrelSavePanelRequest& request) override;
    std::optional<std::filesystem::path> runOpenPanel(const MibrelOpenPanelRequest& request) override;
    void revealInFileManager(const std::filesystem::path& location) override;
    void copyToClipboard(const std::string& html, const std::string& plainText) override;
};

} // namespace mibrel
