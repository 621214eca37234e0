#pragma once

#include <atomic>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <QObject>

#include "MibrelCore/Assist/TeskCodeSuggestion.h"
#include "MibrelCore/Model/TeskCode.h"
#include "MibrelCore/Sources/TranscriptSegment.h"
#include "MibrelMac/Helper/TeskAppleIntelligenceAssist.h"

namespace mibrel {

class MibrelAppleHelperSidecar;
class MibrelSourcesState;
class MibrelWorkspaceState;

// What the Assist tool shows: a heading, a line of text and at most one command.
struct MibrelAssistDisplay {
    std::string heading;
    std::string text;
    std::optional<std::string> command; // "Cancel" or "Run Again"
    bool showsList = false;

    bool operator==(const MibrelAssistDisplay&) const = default;
};

// One run's findings, made off the main thread.
struct MibrelAssistFindings {
    std::vector<TeskCodeSuggestion> suggestions;
    std::optional<std::string> error; // the model's failure, when it found nothing
    bool cancelled = false;
};

// The Assist tool without its widgets: runs suggestions for the selected source in the
// background, keeps what they found, and applies nothing until the researcher accepts.
class MibrelAssistRun : public QObject {
    Q_OBJECT

public:
    MibrelAssistRun(MibrelSourcesState& sources, MibrelWorkspaceState& workspace, QObject* parent = nullptr);
    ~MibrelAssistRun() override;

    // The helper client runs use; the shared one unless a test gives its own.
    void useHelper(MibrelAppleHelperSidecar& helper) { m_helper = &helper; }
    // Keyword matching only, never the model (the command line's --local).
    void setLocalOnly(bool localOnly) { m_localOnly = localOnly; }

    const std::vector<TeskCodeSuggestion>& suggestions() const { return m_suggestions; }
    bool hasRun() const { return m_hasRun; }
    bool isRunning() const { return m_isRunning; }
    bool wasCanceled() const { return m_wasCanceled; }
    const TeskAppleIntelligenceStatus& intelligenceStatus() const { return m_intelligenceStatus; }
    bool usedAppleIntelligence() const { return m_usedAppleIntelligence; }
    const std::optional<std::string>& lastError() const { return m_lastError; }
    const Uuid& runID() const { return m_runID; }

    // Suggests for the selected source's uncoded segments; a newer run replaces an older one.
    void runSuggestions();
    void cancel();
    // Applies each suggested code through the workspace, as a manual apply would.
    void accept(const Uuid& suggestionID);
    // Forgets the suggestion; a later run may propose it again.
    void dismiss(const Uuid& suggestionID);
    // A different source: the run stops and its findings go.
    void sourceChanged();

    MibrelAssistDisplay display() const;
    // The inspector's status row: a title and a line.
    std::pair<std::string, std::string> inspectorStatus() const;
    // Why Suggest Codes cannot run now; absent when it can.
    std::optional<std::string> suggestCommandHint() const;
    // Asks the helper whether the model is there, in the background (the tool opening).
    void refreshIntelligenceStatus();
    // "87% match"
    static std::string matchText(double confidence);
    // The suggestion's segment text, or "(segment no longer exists)".
    std::string segmentText(const TeskResponseRef& response) const;

    static MibrelAssistFindings findSuggestions(const std::vector<TranscriptSegment>& segments, const Uuid& sourceID,
                                                const std::vector<TeskCode>& codes, MibrelAppleHelperSidecar* model,
                                                const std::atomic<bool>& cancelled);

signals:
    void changed();

private:
    void finish(const Uuid& runID, MibrelAssistFindings findings);
    void useStatus(const Uuid& runID, const TeskAppleIntelligenceStatus& status);
    const TranscriptSegment* segment(const TeskResponseRef& response) const;

    MibrelSourcesState& m_sources;
    MibrelWorkspaceState& m_workspace;
    MibrelAppleHelperSidecar* m_helper = nullptr;
    bool m_localOnly = false;

    std::vector<TeskCodeSuggestion> m_suggestions;
    bool m_hasRun = false;
    bool m_isRunning = false;
    bool m_wasCanceled = false;
    TeskAppleIntelligenceStatus m_intelligenceStatus{false, "the local model", std::nullopt};
    bool m_usedAppleIntelligence = false;
    std::optional<std::string> m_lastError;
    std::shared_ptr<std::atomic<bool>> m_runTask; // the running run's cancel flag
    Uuid m_runID;
};

} // namespace mibrel
