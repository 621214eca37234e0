#include "MibrelMac/State/Tools/Sources/MibrelSourceInspectorPresenter.h"

#include <chrono>
#include <set>

#include <QDateTime>
#include <QLocale>

#include "MibrelMac/State/MibrelSourcesState.h"
#include "MibrelMac/State/MibrelTranscriptCoverageSummary.h"
#include "MibrelMac/State/MibrelWorkspaceState.h"
#include "Platform/Text/Text.h"

namespace mibrel {
namespace {

std::string kindText(const TeskSource& source) {
    if (!source.mediaKind) return "Text";
    return *source.mediaKind == TeskMediaKind::audio ? "Audio recording" : "Video recording";
}

std::string dateText(const Date& date) {
    const auto milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(date.time_since_epoch()).count();
    return QLocale().toString(QDateTime::fromMSecsSinceEpoch(milliseconds), QLocale::ShortFormat).toStdString();
}

} // namespace

MibrelSourceInspectorPresenter::MibrelSourceInspectorPresenter(MibrelSourcesState& sources,
                                                               MibrelWorkspaceState& workspace, QObject* parent)
    : QObject(parent), m_sources(sources), m_workspace(workspace) {
    connect(&m_sources, &MibrelSourcesState::sourcesChanged, this, &MibrelSourceInspectorPresenter::changed);
    connect(&m_sources, &MibrelSourcesState::selectionChanged, this, &MibrelSourceInspectorPresenter::changed);
    connect(&m_sources, &MibrelSourcesState::transcriptionChanged, this, &MibrelSourceInspectorPresenter::changed);
    connect(&m_workspace, &MibrelWorkspaceState::workspaceChanged, this, &MibrelSourceInspectorPresenter::changed);
}

const TeskSource* MibrelSourceInspectorPresenter::source() const {
    return m_sources.source(m_sources.selectedSourceID());
}

void MibrelSourceInspectorPresenter::rename(const std::string& label) {
    const TeskSource* current = source();
    const std::string trimmed = platform::text::trimmed(label);
    if (current == nullptr || trimmed.empty() || trimmed == current->label) return;
    TeskSource renamed = *current;
    renamed.label = trimmed;
    m_sources.updateSource(renamed);
}

std::vector<MibrelSourceInspectorPresenter::Field> MibrelSourceInspectorPresenter::details() const {
    const TeskSource* current = source();
    if (current == nullptr) return {};
    std::vector<Field> fields{{"Kind", kindText(*current)}, {"Created", dateText(current->createdAt)}};
    const auto& status = current->transcriptionStatus;
    if (status && status->mediaDuration) fields.push_back({"Duration", formatDuration(*status->mediaDuration)});
    if (const auto summary = m_sources.transcriptionSummary(*current)) {
        fields.push_back({"Transcription", summary->detail.empty() ? summary->title : summary->title + ". " + summary->detail});
    }
    return fields;
}

std::vector<MibrelSourceInspectorPresenter::Field> MibrelSourceInspectorPresenter::counts() const {
    const TeskSource* current = source();
    if (current == nullptr) return {};
    std::size_t segments = 0;
    std::size_t words = 0;
    if (const auto found = m_sources.transcripts().find(current->id); found != m_sources.transcripts().end()) {
        segments = found->second.segments.size();
        for (const auto& segment : found->second.segments) words += platform::text::whitespaceSeparatedRunCount(segment.text);
    }
    std::size_t applications = 0;
    std::set<std::string> codedSegments;
    for (const TeskCodeApplication& application : m_workspace.workspace().applications) {
        if (application.response.sourceID != current->id) continue;
        ++applications;
        codedSegments.insert(application.response.segmentID);
    }
    return {{"Segments", std::to_string(segments)},
            {"Words", std::to_string(words)},
            {"Coded segments", std::to_string(codedSegments.size())},
            {"Applications", std::to_string(applications)},
            {"Media notes", std::to_string(current->mediaNotes.size())}};
}

} // namespace mibrel
