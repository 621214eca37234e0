#pragma once

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include <QObject>

#include "MibrelCore/Import/TeskResponsesImport.h"
#include "MibrelCore/Model/TeskWorkspace.h"
#include "MibrelCore/Sources/TeskSource.h"
#include "MibrelCore/Sources/TeskTranscript.h"
#include "MibrelMac/State/MibrelImportNotice.h"
#include "MibrelMac/State/MibrelTranscriptCoverageSummary.h"
#include "MibrelMac/State/MibrelTranscriptionStatusSummary.h"

class QSettings;

namespace mibrel {

class MibrelAppleHelperSidecar;
class MibrelPanels;

// The open project's sources: the list, their transcripts, the selection, and the last
// import notice and failure. Every import ends here and every write of a source goes
// through here to the source store. Failures never escape an operation: they end in
// lastError. Without an open project every operation returns at once, silently.
class MibrelSourcesState : public QObject {
    Q_OBJECT

public:
    // A parsed table waiting for the researcher to choose its columns.
    struct PendingResponsesImport {
        Uuid id;
        std::string fileName;
        TeskResponsesImport::Table table;

        bool operator==(const PendingResponsesImport&) const = default;
    };

    static constexpr const char* kSpeechIntroShownKey = "mibrel.speechIntroShown";

    // Without settings (the command line) the speech approval is asked each time and never stored.
    explicit MibrelSourcesState(MibrelPanels& panels, QSettings* settings = nullptr, QObject* parent = nullptr);
    // Runs still going stop at their next check point; their results are dropped.
    ~MibrelSourcesState() override;

    void bind(const std::optional<std::filesystem::path>& projectURL);

    const std::optional<std::filesystem::path>& projectURL() const { return m_projectURL; }
    const std::vector<TeskSource>& sources() const { return m_sources; }
    const std::map<Uuid, TeskTranscript>& transcripts() const { return m_transcripts; }
    const std::set<Uuid>& transcribing() const { return m_transcribing; }
    const std::map<Uuid, double>& transcriptionProgress() const { return m_transcriptionProgress; }
    const std::optional<Uuid>& selectedSourceID() const { return m_selectedSourceID; }
    const std::optional<std::string>& lastError() const { return m_lastError; }
    const std::optional<MibrelImportNotice>& latestImportNotice() const { return m_latestImportNotice; }
    const std::optional<Uuid>& pendingSpeechIntro() const { return m_pendingSpeechIntro; }
    const std::optional<PendingResponsesImport>& pendingResponsesImport() const { return m_pendingResponsesImport; }

    const TeskSource* source(const std::optional<Uuid>& id) const;
    // The source's transcript, or an empty one for a source not loaded.
    const TeskTranscript& transcript(const Uuid& sourceID) const;

    void select(const std::optional<Uuid>& sourceID);
    void setLastError(std::optional<std::string> message);

    // Import. The choosers pass the chosen file on as it stands: the importers judge it by
    // its ending, not by the chooser's filter.
    void importTranscript(const std::filesystem::path& location);
    void importTranscriptFile();
    void importResponsesFile();
    // Parses a response table and leaves it waiting for the column choice.
    void openResponsesTable(const std::filesystem::path& location);
    void cancelResponsesImport();
    // One source per row; returns how many were made.
    std::int64_t importResponses(const TeskResponsesImport::Table& table, std::int64_t textColumn,
                                 std::optional<std::int64_t> labelColumn);

    // Recordings: the file is copied in the background and the source appears once it is
    // safely in place; transcription then starts by itself.
    void importAudioFile();
    void importVideoFile();
    void importMedia(const std::filesystem::path& location, TeskMediaKind kind);
    // Copies still running; the command line waits for them.
    int mediaImportsInFlight() const { return m_mediaImportsInFlight; }

    void updateSource(const TeskSource& source);
    void updateTranscript(const TeskTranscript& transcript, const Uuid& sourceID);
    void deleteSource(Uuid sourceID); // by value: callers often pass an id held in the list it changes

    // Puts the selected source's coded transcript on the clipboard, as HTML (highlights and
    // code bubbles) and as plain text; false, clipboard untouched, without a selected
    // source that has a transcript.
    bool copyTranscriptForWord(const TeskWorkspace& workspace);

    // The recording's file in the package, if the source names one and it exists.
    std::optional<std::filesystem::path> mediaURL(const TeskSource& source) const;

    // The first-use approval of on-device speech recognition.
    bool speechIntroShown() const;
    // Transcribes at once once approved; the first time, waits in pendingSpeechIntro.
    void beginTranscription(const Uuid& sourceID, bool forceRefresh);
    void confirmSpeechIntro();
    void cancelSpeechIntro();
    // Starts the background run; one run per source at a time.
    void transcribeConfirmed(const Uuid& sourceID, bool forceRefresh);
    // Takes effect at the run's next check point; a helper call under way is not interrupted.
    void cancelTranscription(const Uuid& sourceID);
    // The helper client runs use; the shared one unless a test gives its own.
    void useHelper(MibrelAppleHelperSidecar& helper) { m_helper = &helper; }

    void setTranscriptionStatus(std::optional<TeskTranscriptionStatus> status, const Uuid& sourceID);
    // Removes the derived audio so the next run prepares it afresh.
    void invalidateDerivedTranscriptionAudio(const TeskSource& source, const std::filesystem::path& projectURL);
    // Gives recordings transcribed before statuses existed a status, in the background.
    void refreshLoadedMediaTranscriptionStatuses(const std::filesystem::path& projectURL);
    std::optional<MibrelTranscriptCoverageSummary> transcriptCoverageSummary(const TeskSource& source) const;
    std::optional<MibrelTranscriptionStatusSummary> transcriptionSummary(const TeskSource& source) const;

    // Corrections of a transcript, each saved at once. A segment keeps its id through an
    // edit and a split, so the evidence on it follows.
    void updateTranscriptSegmentText(const Uuid& sourceID, const std::string& segmentID, const std::string& text);
    void splitTranscriptSegment(const Uuid& sourceID, const std::string& segmentID, const std::string& firstText,
                                const std::string& secondText);
    void mergeTranscriptSegmentWithNext(const Uuid& sourceID, const std::string& segmentID);
    void markTranscriptReviewed(const Uuid& sourceID);
    void addMediaNote(const Uuid& sourceID, double timestamp, const std::string& text);
    void updateMediaNote(const Uuid& sourceID, const Uuid& noteID, const std::string& text);
    void deleteMediaNote(const Uuid& sourceID, const Uuid& noteID);

    // The line under a source's name in the tools.
    static std::string subtitle(const TeskSource& source);

    static constexpr const char* kDeleteConfirmation =
        "This removes the transcript and any recording stored in the project. Codes applied to this source stay in "
        "the codebook but lose their excerpts.";
    static constexpr const char* kSpeechIntroQuestion =
        "Mibrel transcribes with speech recognition that runs on this computer. Your audio never leaves this "
        "computer.";

signals:
    // The list or a transcript changed.
    void sourcesChanged();
    void selectionChanged();
    void transcriptionChanged();
    void lastErrorChanged();
    void latestImportNoticeChanged();
    void pendingSpeechIntroChanged();
    void pendingResponsesImportChanged();

private:
    void loadSources(const std::filesystem::path& projectURL);
    void appendResponseSources(const TeskResponsesImport::Table& table, std::int64_t textColumn,
                               std::optional<std::int64_t> labelColumn);
    void setNotice(const Uuid& sourceID, std::string detail, std::string title = "Imported into Sources");
    // Saves a new source with its transcript, then lists and selects it; false on failure.
    bool addSource(const TeskSource& source, const TeskTranscript& transcript);
    void finishMediaImport(const TeskSource& source, const std::filesystem::path& projectURL, TeskMediaKind kind);
    void finishTranscription(const Uuid& sourceID, const std::filesystem::path& projectURL,
                             std::optional<TeskTranscript> transcript, TeskTranscriptionStatus status,
                             std::optional<std::string> error);
    void finishTranscriptionBookkeeping(const Uuid& sourceID);
    void cancelAllTranscriptions();
    void setProgress(const Uuid& sourceID, double fraction);
    void setDerivedAudio(const Uuid& sourceID, const std::filesystem::path& projectURL, const std::string& name);
    // Finds a source and a segment of its transcript and saves the changed transcript.
    template <class Change>
    void changeSegment(const Uuid& sourceID, const std::string& segmentID, Change change);

    MibrelPanels& m_panels;
    QSettings* m_settings;

    std::vector<TeskSource> m_sources;
    std::optional<Uuid> m_selectedSourceID;
    std::map<Uuid, TeskTranscript> m_transcripts;
    std::set<Uuid> m_transcribing;
    std::map<Uuid, std::shared_ptr<std::atomic<bool>>> m_transcriptionTasks; // each run's cancel flag
    MibrelAppleHelperSidecar* m_helper = nullptr;
    int m_mediaImportsInFlight = 0;
    std::map<Uuid, double> m_transcriptionProgress;
    std::optional<std::string> m_lastError;
    std::optional<MibrelImportNotice> m_latestImportNotice;
    std::optional<Uuid> m_pendingSpeechIntro;
    std::optional<PendingResponsesImport> m_pendingResponsesImport;
    std::optional<std::filesystem::path> m_projectURL;
};

} // namespace mibrel
