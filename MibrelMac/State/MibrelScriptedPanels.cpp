#include "MibrelMac/State/MibrelScriptedPanels.h"

namespace mibrel {
namespace {

std::optional<std::filesystem::path> nextAnswer(std::deque<std::optional<std::filesystem::path>>& answers) {
    if (answers.empty()) return std::nullopt;
    auto answer = std::move(answers.front());
    answers.pop_front();
    return answer;
}

} // namespace

std::optional<std::filesystem::path> MibrelScriptedPanels::runSavePanel(const MibrelSavePanelRequest& request) {
    saveRequests.push_back(request);
    return nextAnswer(saveAnswers);
}

std::optional<std::filesystem::path> MibrelScriptedPanels::runOpenPanel(const MibrelOpenPanelRequest& request) {
    openRequests.push_back(request);
    return nextAnswer(openAnswers);
}

void MibrelScriptedPanels::revealInFileManager(const std::filesystem::path& location) { revealed.push_back(location); }

void MibrelScriptedPanels::copyToClipboard(const std::string& html, const std::string& plainText) {
    clipboardHTML = html;
    clipboardText = plainText;
}

} // namespace mibrel
