#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <tuple>
#include <unordered_map>
#include <vector>

#include "MibrelCore/Analysis/TeskAnalysisCorpus.h"
#include "Platform/Text/Text.h"

// What the engines share: segment keys, the walk over all segments, and sorting by a
// count with natural order breaking ties.
namespace mibrel::analysis {

// A segment's identity, "{SOURCE-ID}|{segmentID}" without building the string: the id
// has a fixed length, so the pair says exactly what the string would.
struct SegmentKey {
    Uuid sourceID;
    std::string_view segmentID;

    bool operator==(const SegmentKey&) const = default;
};

struct SegmentKeyHash {
    std::size_t operator()(const SegmentKey& key) const noexcept {
        return std::hash<Uuid>{}(key.sourceID) ^ (std::hash<std::string_view>{}(key.segmentID) * 0x9E3779B97F4A7C15ull);
    }
};

inline SegmentKey keyOf(const TeskResponseRef& response) { return {response.sourceID, response.segmentID}; }

// One application's segment and code, with the segment key's hash up front for sorting.
struct CodedSegment {
    std::size_t hash;
    SegmentKey key;
    Uuid codeID;
};

// The applications' segments and codes, ordered by the segment key's hash and then by
// code id. Sorting a flat array keeps a project of 100,000 applications clear of a hash
// node per segment.
std::vector<CodedSegment> codedSegments(const TeskWorkspace& workspace);

// Calls `visit` with each run of entries for one segment, ordered by code id. Entries of
// different segments that share a hash are separated here.
template <class Visit>
void forEachSegmentGroup(std::vector<CodedSegment>& entries, Visit visit) {
    for (std::size_t start = 0; start < entries.size();) {
        std::size_t end = start + 1;
        bool oneKey = true;
        for (; end < entries.size() && entries[end].hash == entries[start].hash; ++end) {
            oneKey = oneKey && entries[end].key == entries[start].key;
        }
        if (!oneKey) {
            std::stable_sort(entries.begin() + start, entries.begin() + end, [](const auto& a, const auto& b) {
                return std::tie(a.key.sourceID, a.key.segmentID) < std::tie(b.key.sourceID, b.key.segmentID);
            });
        }
        for (std::size_t first = start; first < end;) {
            std::size_t last = first + 1;
            while (last < end && entries[last].key == entries[first].key) ++last;
            visit(entries.data() + first, entries.data() + last);
            first = last;
        }
        start = end;
    }
}

// Per code: its applications and the distinct sources they are on.
struct CodeEvidence {
    std::int64_t applications = 0;
    std::vector<Uuid> sources;
};
std::unordered_map<Uuid, CodeEvidence> evidenceByCode(const TeskWorkspace& workspace);

// How many distinct segments the applications touch.
std::int64_t codedSegmentCount(const TeskWorkspace& workspace);

// Every segment of every listed source, in project order; transcripts of unlisted sources are not visited.
template <class Visit>
void forEachSegment(const TeskAnalysisCorpus& corpus, Visit visit) {
    for (const TeskSource& source : corpus.sources) {
        const auto found = corpus.transcripts.find(source.id);
        if (found == corpus.transcripts.end()) continue;
        for (const TranscriptSegment& segment : found->second.segments) visit(source.id, segment);
    }
}

inline bool naturallyBefore(std::string_view lhs, std::string_view rhs) {
    return platform::text::localizedStandardCompare(lhs, rhs) < 0;
}

// Stable: higher count first, then natural order of the name. Each row's collation key
// is made once, so large tie groups cost byte comparisons, not collations.
template <class Row, class Count, class Name>
void sortByCountThenName(std::vector<Row>& rows, Count count, Name name) {
    struct Entry {
        std::int64_t count;
        std::string key;
        std::size_t index;
    };
    std::vector<Entry> entries;
    entries.reserve(rows.size());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        entries.push_back({count(rows[i]), platform::text::localizedStandardSortKey(name(rows[i])), i});
    }
    std::stable_sort(entries.begin(), entries.end(), [](const Entry& a, const Entry& b) {
        if (a.count != b.count) return a.count > b.count;
        return a.key < b.key;
    });
    std::vector<Row> sorted;
    sorted.reserve(rows.size());
    for (const Entry& entry : entries) sorted.push_back(std::move(rows[entry.index]));
    rows = std::move(sorted);
}

// Runs of characters other than Unicode white space.
std::int64_t wordCount(std::string_view text);

// Code id → name of the first code with that id.
std::unordered_map<Uuid, std::string_view> codeNames(const TeskWorkspace& workspace);
std::string nameOr(const std::unordered_map<Uuid, std::string_view>& names, const Uuid& id, std::string_view fallback);

} // namespace mibrel::analysis
