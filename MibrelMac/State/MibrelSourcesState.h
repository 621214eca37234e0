#pragma once

#include <cstdint>
#include <filesystem>
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

class QSettings;

namespace mibrel {

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

    // The line under a source's name in the tools.
    static std::string subtitle(const TeskSource& source);

    static constexpr const char* kDeleteConfirmation =
        "This removes the transcript and any recording stored in the project. Codes applied to this source stay in "
        "the codebook but lose their excerpts.";
    static constexpr const char* kSpeechIntroQuestion =
        "Mibrel uses Apple's on-device speech recognition. Your audio never leaves this Mac. macOS will ask once for "
        "Speech Recognition permission.";

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
    void setNotice(const Uuid& sourceID, std::string detail);
    void setStatus(const Uuid& sourceID, TeskTranscriptionStatus status);
    // Starts the transcription the researcher approved; recognition is not part of this build yet.
    void transcribeConfirmed(const Uuid& sourceID, bool forceRefresh);

    MibrelPanels& m_panels;
    QSettings* m_settings;

    std::vector<TeskSource> m_sources;
    std::optional<Uuid> m_selectedSourceID;
    std::map<Uuid, TeskTranscript> m_transcripts;
    std::set<Uuid> m_transcribing;
    std::map<Uuid, double> m_transcriptionProgress;
    std::optional<std::string> m_lastError;
    std::optional<MibrelImportNotice> m_latestImportNotice;
    std::optional<Uuid> m_pendingSpeechIntro;
    std::optional<PendingResponsesImport> m_pendingResponsesImport;
    std::optional<std::filesystem::path> m_projectURL;
};

} // namespace mibrel
