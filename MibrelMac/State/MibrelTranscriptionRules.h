#pragma once

#include <exception>
#include <optional>
#include <string>
#include <vector>

#include "MibrelCore/Sources/TeskTranscript.h"
#include "MibrelCore/Sources/TeskTranscriptionStatus.h"

// How a transcription's result is judged against its recording, and the words the
// researcher reads about it.
namespace mibrel::MibrelTranscriptionRules {

inline constexpr double oneCallLimit = 30.0;  // a recording this long or shorter goes whole
inline constexpr double chunkLength = 12.0;   // longer ones go in back-to-back slices
inline constexpr double reviewFloor = 30.0;   // shorter recordings are never judged for coverage
inline constexpr double seamTolerance = 1.0;

// Complete, or needs review when speech begins late, stops early or is missing.
TeskTranscriptionStatus transcriptionStatus(const TeskTranscript& transcript, std::optional<double> mediaDuration);

// A chunk's segments moved to the recording's time line: trimmed, emptied ones dropped,
// untimed ones spread over the chunk, each with a fresh id.
std::vector<TranscriptSegment> offsetSegments(const std::vector<TranscriptSegment>& segments, double offset,
                                              double chunkDuration);

// Sorted by start; a phrase two chunks both heard across their seam is kept once.
std::vector<TranscriptSegment> mergeAdjacentSegments(std::vector<TranscriptSegment> segments);

std::string friendlyTranscriptionError(const std::exception& error);
std::string friendlyTranscriptionError(const std::string& description);

} // namespace mibrel::MibrelTranscriptionRules
