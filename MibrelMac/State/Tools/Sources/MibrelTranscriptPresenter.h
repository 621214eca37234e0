#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>

#include <QObject>

#include "MibrelCore/Sources/TeskSource.h"
#include "MibrelCore/Sources/TeskTranscript.h"
#include "MibrelMac/State/MibrelTranscriptRowEditing.h"
#include "MibrelMac/State/MibrelTranscriptionStatusSummary.h"

namespace mibrel {

class MibrelSourcesState;
class MibrelWorkspaceState;

// The Sources tool's transcript: the selected source's segments as rows, the header's
// review command, and the corrections a row offers, with the rule that a segment holding
// coded evidence is never emptied without asking.
class MibrelTranscriptPresenter : public QObject {
    Q_OBJECT

public:
    struct Row {
        std::string segmentID;
        std::string timeText; // "0:12 – 0:20", "0:12", or empty for an untimed segment
        std::string text;
        std::size_t codedExcerpts = 0;
        MibrelTranscriptRowEditing::MergeAvailability merge;
        std::optional<double> start; // where playback of the row begins, for a recording
    };

    // The recording to play beside the transcript; absent for a text source or a file that is gone.
    struct Media {
        std::filesystem::path location;
        bool isVideo = false;
    };

    struct ReviewCommand {
        std::string title;        // "Mark Reviewed", or "Reviewed" once done
        std::string image;        // "checkmark.seal" once reviewed
        bool enabled = false;
    };

    // How the recording's transcription stands, for the header; only recordings have one.
    struct Transcription {
        MibrelTranscriptionStatusSummary summary;
        std::string coverage;              // "Coverage 0s-1:05 of 1:10; 120 words; 9 segments", or empty
        bool running = false;
        std::optional<double> progress;    // 0…1 once a long recording reports it
        std::string transcribeTitle;       // "Transcribe", or "Transcribe Again" over an existing transcript
        bool canTranscribe = false;        // not while a run or the approval question is pending
    };

    MibrelTranscriptPresenter(MibrelSourcesState& sources, MibrelWorkspaceState& workspace, QObject* parent = nullptr);

    const TeskSource* source() const;
    std::size_t rowCount() const;
    Row row(std::size_t index) const;
    // The segment of row `index` alone, for what a list reads often (text, time, id).
    const TranscriptSegment& segmentAt(std::size_t index) const;
    // "0:12 – 0:20", "0:12", or empty for an untimed segment.
    static std::string timeText(const TranscriptSegment& segment);
    // What the page says instead of rows; absent while it has rows.
    std::optional<std::string> emptyText() const;
    ReviewCommand reviewCommand() const;
    std::optional<Transcription> transcription() const;
    std::optional<Media> media() const;
    // Runs transcription afresh; a transcript that exists is replaced only if the run succeeds.
    void transcribe();
    // Stops the run at its next check point; the old transcript stays.
    void cancelTranscription();

    // The question to ask before an edit is saved, when the edit would delete a segment that
    // coded excerpts point at; absent when the edit may go ahead.
    std::optional<std::string> editConfirmation(const std::string& segmentID, const std::string& text) const;
    void saveEdit(const std::string& segmentID, const std::string& text);
    std::pair<std::string, std::string> suggestedSplit(const std::string& segmentID) const;
    void saveSplit(const std::string& segmentID, const std::string& firstText, const std::string& secondText);
    void mergeWithNext(const std::string& segmentID);
    void markReviewed();

    // "m:ss" of whole seconds, minutes not broken into hours.
    static std::string clockText(double seconds);

signals:
    // The source, its transcript or the evidence on it changed: rows must be read again.
    void changed();
    // Only the transcription's state or progress changed: the rows stand.
    void transcriptionChanged();

private:
    const TeskTranscript* transcript() const;
    const TranscriptSegment* segment(const std::string& segmentID) const;
    std::size_t codedExcerpts(const std::string& segmentID) const;

    MibrelSourcesState& m_sources;
    MibrelWorkspaceState& m_workspace;
};

} // namespace mibrel
