#include "MibrelMac/State/MibrelAssistRun.h"

#include <algorithm>
#include <cmath>
#include <exception>
#include <unordered_set>

#include <QPointer>
#include <QThreadPool>

#include "MibrelCore/Assist/TeskLocalSuggestEngine.h"
#include "MibrelMac/Helper/MibrelAppleHelperSidecar.h"
#include "MibrelMac/State/MibrelMainThread.h"
#include "MibrelMac/State/MibrelSourcesState.h"
#include "MibrelMac/State/MibrelWorkspaceState.h"

namespace mibrel {
namespace {

constexpr std::size_t kMaxSuggestions = 3;

void runLocally(const std::vector<TranscriptSegment>& segments, const Uuid& sourceID,
                const std::vector<TeskCode>& codes, const std::atomic<bool>& cancelled,
                std::vector<TeskCodeSuggestion>& found) {
    for (const TranscriptSegment& segment : segments) {
        if (cancelled.load()) return;
        if (auto suggestion = TeskLocalSuggestEngine::suggest(segment, sourceID, codes, kMaxSuggestions)) {
            found.push_back(std::move(*suggestion));
        }
    }
}

} // namespace

MibrelAssistRun::MibrelAssistRun(MibrelSourcesState& sources, MibrelWorkspaceState& workspace, QObject* parent)
    : QObject(parent), m_sources(sources), m_workspace(workspace) {}

MibrelAssistRun::~MibrelAssistRun() { cancel(); }

MibrelAssistFindings MibrelAssistRun::findSuggestions(const std::vector<TranscriptSegment>& segments,
                                                      const Uuid& sourceID, const std::vector<TeskCode>& codes,
                                                      MibrelAppleHelperSidecar* model,
                                                      const std::atomic<bool>& cancelled) {
    MibrelAssistFindings findings;
    if (!model) {
        runLocally(segments, sourceID, codes, cancelled, findings.suggestions);
    } else {
        for (const TranscriptSegment& segment : segments) {
            if (cancelled.load()) break;
            try {
                auto suggestion = TeskAppleIntelligenceAssist::suggest(*model, segment, sourceID, codes);
                if (suggestion) findings.suggestions.push_back(std::move(*suggestion));
            } catch (const std::exception& error) {
                findings.error = error.what(); // what was found so far stays
                break;
            }
        }
        // A silent or failing model falls back on keyword matching.
        if (!cancelled.load() && !segments.empty() && findings.suggestions.empty()) {
            runLocally(segments, sourceID, codes, cancelled, findings.suggestions);
        }
    }
    findings.cancelled = cancelled.load();
    return findings;
}

// The model's availability is asked on the worker: the helper may be busy transcribing,
// and the window must not wait for it.
void MibrelAssistRun::runSuggestions() {
    const auto sourceID = m_sources.selectedSourceID();
    if (!sourceID || !m_sources.transcripts().contains(*sourceID)) return;
    cancel();
    m_hasRun = true;
    m_isRunning = true;
    m_wasCanceled = false;
    m_lastError.reset();
    m_usedAppleIntelligence = !m_localOnly && m_intelligenceStatus.available;

    std::unordered_set<std::string> coded;
    for (const TeskCodeApplication& application : m_workspace.applicationsForSource(*sourceID)) {
        coded.insert(application.response.key());
    }
    std::vector<TranscriptSegment> segments;
    for (const TranscriptSegment& segment : m_sources.transcript(*sourceID).segments) {
        if (!coded.contains(TeskResponseRef{*sourceID, segment.id, std::nullopt, std::nullopt}.key())) {
            segments.push_back(segment);
        }
    }
    const std::vector<TeskCode> codes(m_workspace.workspace().codes.begin(), m_workspace.workspace().codes.end());
    m_runID = Uuid::random();
    m_runTask = std::make_shared<std::atomic<bool>>(false);
    emit changed();

    const QPointer<MibrelAssistRun> self(this);
    MibrelAppleHelperSidecar* helper = m_localOnly ? nullptr : (m_helper ? m_helper : &MibrelAppleHelperSidecar::shared());
    QThreadPool::globalInstance()->start(
        [self, segments = std::move(segments), codes, source = *sourceID, runID = m_runID, flag = m_runTask, helper] {
            MibrelAppleHelperSidecar* model = nullptr;
            if (helper) {
                const auto status = TeskAppleIntelligenceAssist::status(*helper);
                onMainThread(self, [=](MibrelAssistRun& run) { run.useStatus(runID, status); });
                if (status.available) model = helper;
            }
            auto findings = findSuggestions(segments, source, codes, model, *flag);
            onMainThread(self, [=](MibrelAssistRun& run) mutable { run.finish(runID, std::move(findings)); });
        });
}

void MibrelAssistRun::useStatus(const Uuid& runID, const TeskAppleIntelligenceStatus& status) {
    m_intelligenceStatus = status;
    if (runID == m_runID && m_isRunning) m_usedAppleIntelligence = status.available;
    emit changed();
}

// Only the latest run may write its findings.
void MibrelAssistRun::finish(const Uuid& runID, MibrelAssistFindings findings) {
    if (runID != m_runID) return;
    m_isRunning = false;
    m_runTask.reset();
    if (findings.cancelled) {
        m_wasCanceled = true;
        m_lastError.reset();
        m_suggestions.clear();
    } else if (findings.error && findings.suggestions.empty()) {
        m_usedAppleIntelligence = false;
        m_lastError = findings.error;
        m_suggestions.clear();
    } else {
        m_suggestions = std::move(findings.suggestions);
    }
    emit changed();
}

void MibrelAssistRun::cancel() {
    if (m_runTask) m_runTask->store(true);
}

const TranscriptSegment* MibrelAssistRun::segment(const TeskResponseRef& response) const {
    const auto& segments = m_sources.transcript(response.sourceID).segments;
    const auto found = std::find_if(segments.begin(), segments.end(),
                                    [&](const TranscriptSegment& s) { return s.id == response.segmentID; });
    return found == segments.end() ? nullptr : &*found;
}

void MibrelAssistRun::accept(const Uuid& suggestionID) {
    const auto found = std::find_if(m_suggestions.begin(), m_suggestions.end(),
                                    [&](const TeskCodeSuggestion& s) { return s.id == suggestionID; });
    if (found == m_suggestions.end()) return;
    const TranscriptSegment* text = segment(found->response);
    if (!text) return; // the segment is gone: the row stays
    const std::string memo = m_usedAppleIntelligence ? "Accepted from Merivante Intelligence (local model)"
                                                     : "Accepted from Merivante Intelligence suggestion";
    const TeskCodeSuggestion accepted = *found;
    for (const Uuid& codeID : accepted.suggestedCodeIDs) {
        m_workspace.addApplication(accepted.response, codeID, text->text, memo);
    }
    dismiss(suggestionID);
}

void MibrelAssistRun::dismiss(const Uuid& suggestionID) {
    std::erase_if(m_suggestions, [&](const TeskCodeSuggestion& s) { return s.id == suggestionID; });
    emit changed();
}

void MibrelAssistRun::sourceChanged() {
    cancel();
    m_runTask.reset();
    m_isRunning = false;
    m_runID = Uuid::random(); // a run still finishing no longer owns the state
    m_suggestions.clear();
    m_hasRun = false;
    m_wasCanceled = false;
    m_lastError.reset();
    emit changed();
}

std::pair<std::string, std::string> MibrelAssistRun::inspectorStatus() const {
    if (m_intelligenceStatus.available) {
        return {"Local model ready", "On-device model suggests codes when you run Suggest."};
    }
    return {"Local matching", "Keyword matching runs on this computer."};
}

std::optional<std::string> MibrelAssistRun::suggestCommandHint() const {
    if (!m_sources.selectedSourceID()) return "Select a source in the sidebar.";
    if (m_workspace.workspace().codes.isEmpty()) return "Add codes in the Codebook before running suggest.";
    return std::nullopt;
}

void MibrelAssistRun::refreshIntelligenceStatus() {
    if (m_localOnly) return;
    const QPointer<MibrelAssistRun> self(this);
    MibrelAppleHelperSidecar* helper = m_helper ? m_helper : &MibrelAppleHelperSidecar::shared();
    QThreadPool::globalInstance()->start([self, helper, runID = m_runID] {
        const auto status = TeskAppleIntelligenceAssist::status(*helper);
        onMainThread(self, [=](MibrelAssistRun& run) { run.useStatus(runID, status); });
    });
}

std::string MibrelAssistRun::matchText(double confidence) {
    return std::to_string(static_cast<long long>(std::trunc(confidence * 100))) + "% match";
}

std::string MibrelAssistRun::segmentText(const TeskResponseRef& response) const {
    const TranscriptSegment* found = segment(response);
    return found ? found->text : "(segment no longer exists)";
}

MibrelAssistDisplay MibrelAssistRun::display() const {
    if (m_workspace.workspace().codes.isEmpty()) {
        return {"Add codes first",
                "Suggestions match segment language against your codebook. Create a few codes, then run suggest from "
                "the inspector.",
                std::nullopt};
    }
    if (m_isRunning) {
        return {m_usedAppleIntelligence ? "Merivante Intelligence is reviewing segments on this computer…"
                                        : "Matching segments against your codebook…",
                "", "Cancel"};
    }
    if (m_lastError) return {"Suggestions could not run", *m_lastError, "Run Again"};
    if (m_wasCanceled) return {"Canceled", "The run stopped before finishing. Nothing was applied.", "Run Again"};
    if (m_suggestions.empty()) {
        if (m_hasRun) return {"No matches found", "No segments in this source matched your codebook.", "Run Again"};
        return {"Ready when you are",
                m_intelligenceStatus.available
                    ? "Select a source, then click Suggest Codes in the inspector. A local model is available on this "
                      "computer."
                    : "Select a source, then click Suggest Codes in the inspector. Local keyword matching runs when "
                      "no local model is available.",
                std::nullopt};
    }
    return {"",
            m_usedAppleIntelligence
                ? "Review each match from the local model. Accept routes through the same coding path as manual apply."
                : "Review each local match. Accept routes through the same coding path as manual apply.",
            "Run Again", true};
}

} // namespace mibrel
