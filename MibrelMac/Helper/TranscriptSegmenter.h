#pragma once

#include <vector>

#include "MibrelCore/Sources/TranscriptSegment.h"
#include "MibrelMac/Helper/SpokenWord.h"

// Groups timed words into segments: a pause or a full segment starts the next one.
namespace mibrel::TranscriptSegmenter {

inline constexpr double pauseThreshold = 0.8;
inline constexpr std::size_t maxWordsPerSegment = 60;

// Words in the given order, never sorted; each segment gets a fresh id.
std::vector<TranscriptSegment> segments(const std::vector<SpokenWord>& words);

} // namespace mibrel::TranscriptSegmenter
