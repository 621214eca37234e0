#include "MibrelMac/State/MibrelSourcesState.h"

#include <exception>
#include <system_error>

#include <QPointer>
#include <QThreadPool>

#include "MibrelCore/Import/TeskMediaImport.h"
#include "MibrelCore/Storage/TeskSourceStore.h"
#include "MibrelMac/State/MibrelMainThread.h"
#include "MibrelMac/State/MibrelPanels.h"
#include "Platform/Files/FileSystem.h"

namespace mibrel {
namespace {

namespace fs = std::filesystem;

TeskSource newMediaSource(const fs::path& location, TeskMediaKind kind) {
    TeskSource source;
    source.label = location.stem().string();
    source.mediaFilename = "media." + platform::files::lowercasedExtension(location);
    source.mediaKind = kind;
    source.transcriptionStatus =
        TeskTranscriptionStatus{TeskTranscriptionStatusKind::notStarted, "Not transcribed yet.", 0, std::nullopt,
                                std::nullopt, platform::now()};
    return source;
}

// The copy goes under a temporary name in the same folder and is moved into place whole.
// On failure the source's folder goes, so no half-copied recording stays behind.
void copyRecording(const fs::path& from, const fs::path& folder, const std::string& mediaFilename) {
    const fs::path temporary = folder / ("." + mediaFilename + "." + Uuid::random().uuidString() + ".tmp");
    try {
        fs::create_directories(folder);
        if (fs::exists(temporary)) fs::remove(temporary);
        fs::copy_file(from, temporary);
        fs::rename(temporary, folder / mediaFilename);
    } catch (const fs::filesystem_error&) {
        std::error_code removal;
        fs::remove_all(folder, removal);
        if (removal) throw fs::filesystem_error("The copy could not be removed", folder, removal);
        throw;
    }
}

} // namespace

void MibrelSourcesState::importAudioFile() {
    if (!m_projectURL) return;
    const auto chosen = m_panels.runOpenPanel(
        {"Import Audio", true, false, {{"Audio", {"m4a", "mp3", "wav", "aac", "caf"}}}});
    if (chosen) importMedia(*chosen, TeskMediaKind::audio);
}

void MibrelSourcesState::importVideoFile() {
    if (!m_projectURL) return;
    const auto chosen = m_panels.runOpenPanel(
        {"Import Video", true, false, {{"Video", {"mov", "mp4", "m4v", "mpeg", "mpg"}}}});
    if (chosen) importMedia(*chosen, TeskMediaKind::video);
}

void MibrelSourcesState::importMedia(const fs::path& location, TeskMediaKind kind) {
    if (!m_projectURL) return;
    const TeskSource source = newMediaSource(location, kind);
    const fs::path projectURL = *m_projectURL;
    const fs::path folder = TeskSourceStore::sourceDirectory(projectURL, source.id);
    const QPointer<MibrelSourcesState> self(this);
    ++m_mediaImportsInFlight;
    QThreadPool::globalInstance()->start([self, source, projectURL, folder, location, kind] {
        std::optional<std::string> failure;
        try {
            copyRecording(location, folder, *source.mediaFilename);
        } catch (const std::exception& error) {
            failure = error.what();
        }
        onMainThread(self, [=](MibrelSourcesState& state) {
            --state.m_mediaImportsInFlight;
            if (failure) state.setLastError(failure);
            else state.finishMediaImport(source, projectURL, kind);
        });
    });
}

// The project may have changed while the file was copied: then the copy stays in the old
// project's folder, unlisted, and nothing is published.
void MibrelSourcesState::finishMediaImport(const TeskSource& source, const fs::path& projectURL, TeskMediaKind kind) {
    if (m_projectURL != projectURL) return;
    if (!addSource(source, TeskTranscript{})) return;
    const char* title = kind == TeskMediaKind::video ? "Video imported into Sources" : "Audio imported into Sources";
    setNotice(source.id,
              speechIntroShown()
                  ? source.label + " is selected. Transcription will start on this computer."
                  : source.label + " is ready. Approve on-device speech recognition when prompted to start transcription.",
              title);
    beginTranscription(source.id, false);
}

} // namespace mibrel
