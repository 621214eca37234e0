#include "MibrelMac/Helper/TranscriptSegmenter.h"

#include "Platform/Foundation/Uuid.h"

namespace mibrel::TranscriptSegmenter {
namespace {

void flush(std::vector<SpokenWord>& group, std::vector<TranscriptSegment>& result) {
    if (group.empty()) return;
    std::string text;
    for (const SpokenWord& word : group) {
        if (!text.empty() || &word != &group.front()) text += ' ';
        text += word.text;
    }
    result.push_back({platform::Uuid::random().uuidString(), group.front().start, group.back().end(), std::move(text)});
    group.clear();
}

} // namespace

std::vector<TranscriptSegment> segments(const std::vector<SpokenWord>& words) {
    std::vector<TranscriptSegment> result;
    std::vector<SpokenWord> group;
    for (const SpokenWord& word : words) {
        // The count comes first: a full segment is cut even without a pause. Overlapping
        // words give a negative gap, which never cuts.
        if (!group.empty() &&
            (group.size() >= maxWordsPerSegment || word.start - group.back().end() >= pauseThreshold)) {
            flush(group, result);
        }
        group.push_back(word);
    }
    flush(group, result);
    return result;
}

} // namespace mibrel::TranscriptSegmenter
