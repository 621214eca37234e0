#include "MibrelMac/State/MibrelSourcesState.h"

#include <exception>

#include <QCoreApplication>
#include <QPointer>
#include <QThreadPool>

#include "MibrelCore/Storage/TeskSourceStore.h"
#include "MibrelMac/Helper/MibrelAppleHelperSidecar.h"
#include "MibrelMac/Media/MibrelMediaAsset.h"
#include "MibrelMac/State/MibrelMainThread.h"
#include "MibrelMac/State/MibrelMediaPreparation.h"
#include "MibrelMac/State/MibrelTranscriptionRules.h"
#include "MibrelMac/State/MibrelTranscriptionRun.h"
#include "Platform/Files/FileSystem.h"

namespace mibrel {
namespace {

namespace fs = std::filesystem;
using Tone = MibrelTranscriptionStatusTone;

TeskTranscriptionStatus endedStatus(TeskTranscriptionStatusKind kind, std::string message) {
    return {kind, std::move(message), 0, std::nullopt, std::nullopt, platform::now()};
}

// The recording a status is judged against: the derived audio, else the original.
std::optional<fs::path> audioOf(const TeskSource& source, const fs::path& projectURL) {
    const fs::path folder = TeskSourceStore::sourceDirectory(projectURL, source.id);
    for (const auto& name : {source.transcriptionMediaFilename, source.mediaFilename}) {
        if (name && platform::files::itemExists(folder / *name)) return folder / *name;
    }
    return std::nullopt;
}

std::string segmentsAvailable(std::size_t count) {
    return std::to_string(count) + (count == 1 ? " segment available." : " segments available.");
}

} // namespace

void MibrelSourcesState::transcribeConfirmed(const Uuid& requestedID, bool forceRefresh) {
    // A copy: the caller's id may live in a source that the status change below replaces.
    const Uuid sourceID = requestedID;
    const TeskSource* found = source(sourceID);
    if (!m_projectURL || !found || m_transcribing.contains(sourceID)) return;
    if (forceRefresh) invalidateDerivedTranscriptionAudio(*found, *m_projectURL);
    m_transcribing.insert(sourceID);
    setTranscriptionStatus(std::nullopt, sourceID);
    auto cancelled = std::make_shared<std::atomic<bool>>(false);
    m_transcriptionTasks[sourceID] = cancelled;
    emit transcriptionChanged();

    const QPointer<MibrelSourcesState> self(this);
    const fs::path projectURL = *m_projectURL;
    MibrelTranscriptionRun run{*source(sourceID), projectURL, forceRefresh, cancelled,
                               m_helper ? m_helper : &MibrelAppleHelperSidecar::shared(), nullptr, nullptr};
    run.derivedAudioMade = [self, sourceID, projectURL](const std::string& name) {
        onMainThread(self, [=](MibrelSourcesState& state) { state.setDerivedAudio(sourceID, projectURL, name); });
    };
    run.progress = [self, sourceID](double fraction) {
        onMainThread(self, [=](MibrelSourcesState& state) { state.setProgress(sourceID, fraction); });
    };
    QThreadPool::globalInstance()->start([self, run = std::move(run), sourceID, projectURL] {
        std::optional<TeskTranscript> transcript;
        TeskTranscriptionStatus status;
        std::optional<std::string> error;
        try {
            auto outcome = MibrelTranscription::run(run);
            transcript = std::move(outcome.transcript);
            status = std::move(outcome.status);
        } catch (const MibrelTranscriptionCanceled&) {
            status = endedStatus(TeskTranscriptionStatusKind::notStarted,
                                 "Transcription canceled. Click Transcribe to run it again.");
        } catch (const std::exception& failure) {
            error = MibrelTranscriptionRules::friendlyTranscriptionError(failure);
            status = endedStatus(TeskTranscriptionStatusKind::failed, *error);
        }
        onMainThread(self, [=](MibrelSourcesState& state) {
            state.finishTranscription(sourceID, projectURL, transcript, status, error);
        });
    });
}

// A transcript is replaced only by a successful run, and then whole.
void MibrelSourcesState::finishTranscription(const Uuid& sourceID, const fs::path& projectURL,
                                             std::optional<TeskTranscript> transcript, TeskTranscriptionStatus status,
                                             std::optional<std::string> error) {
    finishTranscriptionBookkeeping(sourceID);
    if (m_projectURL != projectURL || !source(sourceID)) return;
    if (error) setLastError(error);
    if (transcript) updateTranscript(*transcript, sourceID);
    setTranscriptionStatus(std::move(status), sourceID);
}

void MibrelSourcesState::setDerivedAudio(const Uuid& sourceID, const fs::path& projectURL, const std::string& name) {
    const TeskSource* found = source(sourceID);
    if (m_projectURL != projectURL || !found) return;
    TeskSource changed = *found;
    changed.transcriptionMediaFilename = name;
    updateSource(changed);
}

void MibrelSourcesState::setProgress(const Uuid& sourceID, double fraction) {
    if (!m_transcribing.contains(sourceID)) return;
    m_transcriptionProgress[sourceID] = fraction;
    emit transcriptionChanged();
}

void MibrelSourcesState::finishTranscriptionBookkeeping(const Uuid& sourceID) {
    m_transcribing.erase(sourceID);
    m_transcriptionTasks.erase(sourceID);
    m_transcriptionProgress.erase(sourceID);
    emit transcriptionChanged();
}

void MibrelSourcesState::cancelTranscription(const Uuid& sourceID) {
    if (const auto task = m_transcriptionTasks.find(sourceID); task != m_transcriptionTasks.end()) {
        task->second->store(true);
    }
}

void MibrelSourcesState::cancelAllTranscriptions() {
    for (auto& [id, cancelled] : m_transcriptionTasks) cancelled->store(true);
    m_transcriptionTasks.clear();
}

void MibrelSourcesState::setTranscriptionStatus(std::optional<TeskTranscriptionStatus> status, const Uuid& sourceID) {
    const TeskSource* found = source(sourceID);
    if (!found) return;
    TeskSource changed = *found;
    changed.transcriptionStatus = std::move(status);
    updateSource(changed);
}

void MibrelSourcesState::invalidateDerivedTranscriptionAudio(const TeskSource& target, const fs::path& projectURL) {
    std::error_code ignored;
    fs::remove(TeskSourceStore::sourceDirectory(projectURL, target.id) / MibrelMediaPreparation::transcriptionAudioName,
               ignored);
    const TeskSource* found = source(target.id);
    if (!found || !found->transcriptionMediaFilename) return;
    TeskSource changed = *found;
    changed.transcriptionMediaFilename.reset();
    updateSource(changed);
}

void MibrelSourcesState::refreshLoadedMediaTranscriptionStatuses(const fs::path& projectURL) {
    std::vector<std::pair<TeskSource, TeskTranscript>> waiting;
    for (const TeskSource& candidate : m_sources) {
        if (candidate.mediaFilename && !candidate.transcriptionStatus && !transcript(candidate.id).segments.empty()) {
            waiting.emplace_back(candidate, transcript(candidate.id));
        }
    }
    if (waiting.empty() || !QCoreApplication::instance()) return;
    const QPointer<MibrelSourcesState> self(this);
    QThreadPool::globalInstance()->start([self, waiting = std::move(waiting), projectURL] {
        for (const auto& [candidate, text] : waiting) {
            const auto audio = audioOf(candidate, projectURL);
            const auto duration = audio ? media::mediaDurationSeconds(*audio) : std::nullopt;
            auto status = MibrelTranscriptionRules::transcriptionStatus(text, duration);
            onMainThread(self, [=, id = candidate.id](MibrelSourcesState& state) {
                const TeskSource* current = state.source(id);
                if (state.projectURL() == projectURL && current && !current->transcriptionStatus) {
                    state.setTranscriptionStatus(status, id);
                }
            });
        }
    });
}

std::optional<MibrelTranscriptCoverageSummary> MibrelSourcesState::transcriptCoverageSummary(
    const TeskSource& target) const {
    const auto found = m_transcripts.find(target.id);
    if (found == m_transcripts.end() || found->second.segments.empty()) return std::nullopt;
    const auto duration = target.transcriptionStatus ? target.transcriptionStatus->mediaDuration : std::nullopt;
    return coverageSummary(found->second, duration);
}

std::optional<MibrelTranscriptionStatusSummary> MibrelSourcesState::transcriptionSummary(const TeskSource& target) const {
    using Kind = TeskTranscriptionStatusKind;
    if (!target.mediaFilename) return std::nullopt;
    if (m_pendingSpeechIntro == target.id) {
        return {{"Approval needed", "Confirm on-device speech recognition to start transcription.", "hand.raised",
                 Tone::warning}};
    }
    if (m_transcribing.contains(target.id)) return {{"Transcribing", "Working locally on this computer.", "waveform", Tone::active}};
    if (const auto& status = target.transcriptionStatus) {
        switch (status->kind) {
        case Kind::notStarted: return {{"Not transcribed", status->message, "text.badge.plus", Tone::neutral}};
        case Kind::complete: return {{"Transcribed", status->message, "checkmark.circle", Tone::success}};
        case Kind::reviewed: return {{"Reviewed", status->message, "checkmark.seal", Tone::success}};
        case Kind::needsReview: return {{"Needs review", status->message, "exclamationmark.triangle", Tone::warning}};
        case Kind::failed: return {{"Transcription failed", status->message, "xmark.octagon", Tone::error}};
        }
    }
    const std::size_t count = transcript(target.id).segments.size();
    if (count > 0) return {{"Transcribed", segmentsAvailable(count), "checkmark.circle", Tone::success}};
    return {{"Not transcribed", "Run transcription to create timestamped segments.", "text.badge.plus", Tone::neutral}};
}

} // namespace mibrel
