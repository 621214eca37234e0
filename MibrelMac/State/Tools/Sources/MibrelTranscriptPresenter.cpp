#include "MibrelMac/State/Tools/Sources/MibrelTranscriptPresenter.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "MibrelMac/State/MibrelSourcesState.h"
#include "MibrelMac/State/MibrelWorkspaceState.h"
#include "Platform/Text/Text.h"

namespace mibrel {

MibrelTranscriptPresenter::MibrelTranscriptPresenter(MibrelSourcesState& sources, MibrelWorkspaceState& workspace,
                                                     QObject* parent)
    : QObject(parent), m_sources(sources), m_workspace(workspace) {
    connect(&m_sources, &MibrelSourcesState::sourcesChanged, this, &MibrelTranscriptPresenter::changed);
    connect(&m_sources, &MibrelSourcesState::selectionChanged, this, &MibrelTranscriptPresenter::changed);
    connect(&m_sources, &MibrelSourcesState::transcriptionChanged, this,
            &MibrelTranscriptPresenter::transcriptionChanged);
    connect(&m_sources, &MibrelSourcesState::pendingSpeechIntroChanged, this,
            &MibrelTranscriptPresenter::transcriptionChanged);
    connect(&m_workspace, &MibrelWorkspaceState::workspaceChanged, this, &MibrelTranscriptPresenter::changed);
}

const TeskSource* MibrelTranscriptPresenter::source() const {
    return m_sources.source(m_sources.selectedSourceID());
}

const TeskTranscript* MibrelTranscriptPresenter::transcript() const {
    const TeskSource* current = source();
    if (current == nullptr) return nullptr;
    const auto found = m_sources.transcripts().find(current->id);
    return found == m_sources.transcripts().end() ? nullptr : &found->second;
}

const TranscriptSegment* MibrelTranscriptPresenter::segment(const std::string& segmentID) const {
    const TeskTranscript* current = transcript();
    if (current == nullptr) return nullptr;
    const auto found = std::find_if(current->segments.begin(), current->segments.end(),
                                    [&](const TranscriptSegment& s) { return s.id == segmentID; });
    return found == current->segments.end() ? nullptr : &*found;
}

std::size_t MibrelTranscriptPresenter::rowCount() const {
    const TeskTranscript* current = transcript();
    return current == nullptr ? 0 : current->segments.size();
}

std::size_t MibrelTranscriptPresenter::codedExcerpts(const std::string& segmentID) const {
    const TeskSource* current = source();
    if (current == nullptr) return 0;
    return m_workspace.applications(TeskResponseRef{current->id, segmentID}).size();
}

const TranscriptSegment& MibrelTranscriptPresenter::segmentAt(std::size_t index) const {
    return transcript()->segments.at(index);
}

std::string MibrelTranscriptPresenter::timeText(const TranscriptSegment& segment) {
    if (!segment.start) return {};
    std::string text = clockText(*segment.start);
    if (segment.end && *segment.end > *segment.start) text += " – " + clockText(*segment.end);
    return text;
}

MibrelTranscriptPresenter::Row MibrelTranscriptPresenter::row(std::size_t index) const {
    const TeskTranscript& current = *transcript();
    const TranscriptSegment& segment = current.segments.at(index);
    Row row{segment.id, timeText(segment), segment.text, codedExcerpts(segment.id), {}, {}};
    if (source()->mediaFilename) row.start = segment.start.value_or(0.0);
    row.merge = MibrelTranscriptRowEditing::mergeWithNext(m_workspace, source()->id, segment.id, current);
    return row;
}

std::optional<std::string> MibrelTranscriptPresenter::emptyText() const {
    if (source() == nullptr) return "Select a source in the sidebar to read its transcript.";
    if (rowCount() == 0) return "This source has no transcript text yet.";
    return std::nullopt;
}

MibrelTranscriptPresenter::ReviewCommand MibrelTranscriptPresenter::reviewCommand() const {
    const TeskSource* current = source();
    const bool reviewed = current && current->transcriptionStatus &&
                          current->transcriptionStatus->kind == TeskTranscriptionStatusKind::reviewed;
    if (reviewed) return {"Reviewed", "checkmark.seal", false};
    return {"Mark Reviewed", "", current != nullptr && rowCount() > 0};
}

std::optional<MibrelTranscriptPresenter::Transcription> MibrelTranscriptPresenter::transcription() const {
    const TeskSource* current = source();
    if (current == nullptr) return std::nullopt;
    auto summary = m_sources.transcriptionSummary(*current);
    if (!summary) return std::nullopt;
    Transcription result{*summary, {}, m_sources.transcribing().contains(current->id), {}, {}, false};
    if (const auto coverage = m_sources.transcriptCoverageSummary(*current)) result.coverage = coverage->statusText();
    const auto progress = m_sources.transcriptionProgress().find(current->id);
    if (progress != m_sources.transcriptionProgress().end()) result.progress = progress->second;
    result.transcribeTitle = rowCount() > 0 ? "Transcribe Again" : "Transcribe";
    result.canTranscribe = !result.running && m_sources.pendingSpeechIntro() != current->id;
    return result;
}

std::optional<MibrelTranscriptPresenter::Media> MibrelTranscriptPresenter::media() const {
    const TeskSource* current = source();
    if (current == nullptr) return std::nullopt;
    const auto location = m_sources.mediaURL(*current);
    if (!location) return std::nullopt;
    return Media{*location, current->mediaKind == TeskMediaKind::video};
}

void MibrelTranscriptPresenter::transcribe() {
    const auto state = transcription();
    if (!state || !state->canTranscribe) return;
    // Running again over a transcript makes fresh audio too, in case the recording was the problem.
    const Uuid id = source()->id; // the run replaces the source this refers to
    m_sources.beginTranscription(id, rowCount() > 0);
}

void MibrelTranscriptPresenter::cancelTranscription() {
    if (const TeskSource* current = source()) m_sources.cancelTranscription(current->id);
}

std::optional<std::string> MibrelTranscriptPresenter::editConfirmation(const std::string& segmentID,
                                                                       const std::string& text) const {
    if (!platform::text::isBlank(text)) return std::nullopt;
    const std::size_t excerpts = codedExcerpts(segmentID);
    if (excerpts == 0) return std::nullopt;
    return "Delete this segment? " + std::to_string(excerpts) + " coded excerpt" + (excerpts == 1 ? "" : "s") +
           " point" + (excerpts == 1 ? "s" : "") + " at it and will no longer resolve.";
}

void MibrelTranscriptPresenter::saveEdit(const std::string& segmentID, const std::string& text) {
    if (const TeskSource* current = source()) m_sources.updateTranscriptSegmentText(current->id, segmentID, text);
}

std::pair<std::string, std::string> MibrelTranscriptPresenter::suggestedSplit(const std::string& segmentID) const {
    const TranscriptSegment* found = segment(segmentID);
    return found ? MibrelTranscriptRowEditing::suggestedSplit(found->text) : std::pair<std::string, std::string>{};
}

void MibrelTranscriptPresenter::saveSplit(const std::string& segmentID, const std::string& firstText,
                                          const std::string& secondText) {
    if (const TeskSource* current = source()) {
        m_sources.splitTranscriptSegment(current->id, segmentID, firstText, secondText);
    }
}

void MibrelTranscriptPresenter::mergeWithNext(const std::string& segmentID) {
    const TeskSource* current = source();
    if (current == nullptr) return;
    if (!MibrelTranscriptRowEditing::mergeWithNext(m_workspace, current->id, segmentID, *transcript()).enabled) return;
    m_sources.mergeTranscriptSegmentWithNext(current->id, segmentID);
}

void MibrelTranscriptPresenter::markReviewed() {
    if (const TeskSource* current = source(); current && reviewCommand().enabled) {
        m_sources.markTranscriptReviewed(current->id);
    }
}

std::string MibrelTranscriptPresenter::clockText(double seconds) {
    const long long whole = std::isfinite(seconds) ? std::llround(std::clamp(seconds, 0.0, 1e12)) : 0;
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "%lld:%02lld", whole / 60, whole % 60);
    return buffer;
}

} // namespace mibrel
