#include "MibrelCore/Analysis/TeskAnalysisEngine.h"

#include <map>
#include <tuple>
#include <unordered_map>
#include <unordered_set>

#include "MibrelCore/Analysis/TeskAnalysisSupport.h"

// Each operation makes one pass over the applications into hash maps, then builds its rows
// from those: time in proportion to the data, not to codes × applications.
namespace mibrel {
namespace analysis {

std::unordered_map<Uuid, std::string_view> codeNames(const TeskWorkspace& workspace) {
    std::unordered_map<Uuid, std::string_view> names;
    names.reserve(workspace.codes.size());
    for (const TeskCode& code : workspace.codes) names.try_emplace(code.id, code.name);
    return names;
}

std::string nameOr(const std::unordered_map<Uuid, std::string_view>& names, const Uuid& id, std::string_view fallback) {
    const auto found = names.find(id);
    return std::string(found == names.end() ? fallback : found->second);
}

std::vector<CodedSegment> codedSegments(const TeskWorkspace& workspace) {
    std::vector<CodedSegment> entries;
    entries.reserve(workspace.applications.size());
    const SegmentKeyHash hash;
    for (const TeskCodeApplication& application : workspace.applications) {
        const SegmentKey key = keyOf(application.response);
        entries.push_back({hash(key), key, application.codeID});
    }
    std::sort(entries.begin(), entries.end(), [](const CodedSegment& a, const CodedSegment& b) {
        return std::tie(a.hash, a.codeID) < std::tie(b.hash, b.codeID);
    });
    return entries;
}

std::unordered_map<Uuid, CodeEvidence> evidenceByCode(const TeskWorkspace& workspace) {
    std::vector<std::pair<Uuid, Uuid>> pairs; // code, source
    pairs.reserve(workspace.applications.size());
    for (const TeskCodeApplication& application : workspace.applications) {
        pairs.emplace_back(application.codeID, application.response.sourceID);
    }
    std::sort(pairs.begin(), pairs.end());
    std::unordered_map<Uuid, CodeEvidence> evidence;
    CodeEvidence* current = nullptr;
    for (std::size_t i = 0; i < pairs.size(); ++i) {
        if (i == 0 || pairs[i].first != pairs[i - 1].first) current = &evidence[pairs[i].first];
        ++current->applications;
        if (current->sources.empty() || current->sources.back() != pairs[i].second) current->sources.push_back(pairs[i].second);
    }
    return evidence;
}

std::int64_t codedSegmentCount(const TeskWorkspace& workspace) {
    std::int64_t count = 0;
    auto entries = codedSegments(workspace);
    forEachSegmentGroup(entries, [&count](const CodedSegment*, const CodedSegment*) { ++count; });
    return count;
}

} // namespace analysis

namespace TeskAnalysisEngine {
namespace {

using analysis::SegmentKey;
using analysis::SegmentKeyHash;

constexpr std::string_view kFallbackCodeName = "Code";

} // namespace

std::string codeName(const Uuid& codeID, const TeskWorkspace& workspace) {
    for (const TeskCode& code : workspace.codes) {
        if (code.id == codeID) return code.name;
    }
    return std::string(kFallbackCodeName);
}

TeskCorpusOverview corpusOverview(const TeskAnalysisCorpus& corpus) {
    const TeskWorkspace& workspace = corpus.workspace;
    TeskCorpusOverview overview;
    analysis::forEachSegment(corpus, [&](const Uuid&, const TranscriptSegment& segment) {
        ++overview.segmentCount;
        overview.totalWords += analysis::wordCount(segment.text);
    });
    overview.codedSegmentCount = analysis::codedSegmentCount(workspace);
    if (overview.segmentCount > 0) {
        const auto segments = static_cast<double>(overview.segmentCount);
        overview.averageWordsPerSegment = static_cast<double>(overview.totalWords) / segments;
        overview.codedSegmentCoverage = static_cast<double>(overview.codedSegmentCount) / segments;
    }
    overview.sourceCount = static_cast<std::int64_t>(corpus.sources.size());
    overview.codeCount = static_cast<std::int64_t>(workspace.codes.size());
    overview.categoryCount = static_cast<std::int64_t>(workspace.categories.size());
    overview.themeCount = static_cast<std::int64_t>(workspace.themes.size());
    overview.quoteCount = static_cast<std::int64_t>(workspace.quotes.size());
    overview.applicationCount = static_cast<std::int64_t>(workspace.applications.size());
    return overview;
}

std::vector<TeskCodeFrequencyRow> codeFrequency(const TeskAnalysisCorpus& corpus) {
    const auto evidence = analysis::evidenceByCode(corpus.workspace);
    std::vector<TeskCodeFrequencyRow> rows;
    rows.reserve(corpus.workspace.codes.size());
    for (const TeskCode& code : corpus.workspace.codes) {
        TeskCodeFrequencyRow row{code.id, code.name, code.definition, 0, 0};
        if (const auto found = evidence.find(code.id); found != evidence.end()) {
            row.applicationCount = found->second.applications;
            row.sourceSpread = static_cast<std::int64_t>(found->second.sources.size());
        }
        rows.push_back(std::move(row));
    }
    analysis::sortByCountThenName(rows, [](const auto& r) { return r.applicationCount; },
                                  [](const auto& r) -> const std::string& { return r.codeName; });
    return rows;
}

std::vector<TeskCodeSourceMatrixRow> codeSourceMatrix(const TeskAnalysisCorpus& corpus) {
    // Sources by position; where two share an id, the later one's label stands for both.
    std::unordered_map<Uuid, std::size_t> position;
    std::vector<std::string_view> labels(corpus.sources.size());
    for (std::size_t i = 0; i < corpus.sources.size(); ++i) {
        const auto [at, isNew] = position.try_emplace(corpus.sources[i].id, i);
        labels[i] = corpus.sources[i].label;
        if (!isNew) labels[at->second] = corpus.sources[i].label;
    }
    std::vector<std::size_t> first(corpus.sources.size());
    for (std::size_t i = 0; i < corpus.sources.size(); ++i) {
        first[i] = position[corpus.sources[i].id];
        labels[i] = labels[first[i]];
    }
    std::unordered_map<Uuid, std::vector<std::int64_t>> counts; // code → count per first position of a source id
    for (const TeskCodeApplication& application : corpus.workspace.applications) {
        const auto source = position.find(application.response.sourceID);
        if (source == position.end()) continue;
        auto& row = counts[application.codeID];
        row.resize(corpus.sources.size());
        ++row[source->second];
    }
    std::vector<TeskCodeSourceMatrixRow> rows;
    rows.reserve(corpus.workspace.codes.size());
    for (const TeskCode& code : corpus.workspace.codes) {
        const auto found = counts.find(code.id);
        TeskCodeSourceMatrixRow row{code.id, code.name, {}, 0};
        row.counts.reserve(corpus.sources.size());
        for (std::size_t i = 0; i < corpus.sources.size(); ++i) {
            const std::int64_t count = found == counts.end() ? 0 : found->second[first[i]];
            row.counts.push_back({corpus.sources[i].id, std::string(labels[i]), count});
            row.total += count;
        }
        rows.push_back(std::move(row));
    }
    analysis::sortByCountThenName(rows, [](const auto& r) { return r.total; },
                                  [](const auto& r) -> const std::string& { return r.codeName; });
    return rows;
}

std::vector<TeskCodeCooccurrenceRow> codeCooccurrence(const TeskAnalysisCorpus& corpus) {
    const auto names = analysis::codeNames(corpus.workspace);
    std::map<std::pair<Uuid, Uuid>, std::size_t> rowIndex;
    std::vector<TeskCodeCooccurrenceRow> rows;
    auto entries = analysis::codedSegments(corpus.workspace);
    analysis::forEachSegmentGroup(entries, [&](const auto* first, const auto* last) {
        std::vector<Uuid> ids; // distinct and ascending: the group is sorted by code id
        for (const auto* entry = first; entry != last; ++entry) {
            if (ids.empty() || ids.back() != entry->codeID) ids.push_back(entry->codeID);
        }
        for (std::size_t i = 0; i < ids.size(); ++i) {
            for (std::size_t j = i + 1; j < ids.size(); ++j) {
                auto [at, isNew] = rowIndex.try_emplace({ids[i], ids[j]}, rows.size());
                if (isNew) {
                    rows.push_back({ids[i], analysis::nameOr(names, ids[i], kFallbackCodeName), ids[j],
                                    analysis::nameOr(names, ids[j], kFallbackCodeName), 0});
                }
                ++rows[at->second].count;
            }
        }
    });
    // The counting map has no order of its own: start from the pairs' ids so ties come out the same each run.
    std::sort(rows.begin(), rows.end(), [](const auto& a, const auto& b) {
        return std::tie(a.codeAID, a.codeBID) < std::tie(b.codeAID, b.codeBID);
    });
    analysis::sortByCountThenName(rows, [](const auto& r) { return r.count; },
                                  [](const auto& r) { return r.codeAName + r.codeBName; });
    return rows;
}

std::vector<TeskCodingStripe> codingStripes(const TeskAnalysisCorpus& corpus, const Uuid& sourceID) {
    const auto transcript = corpus.transcripts.find(sourceID);
    if (transcript == corpus.transcripts.end()) return {};
    std::unordered_map<std::string_view, std::vector<Uuid>> codesBySegmentID;
    for (const TeskCodeApplication& application : corpus.workspace.applications) {
        if (application.response.sourceID != sourceID) continue;
        auto& ids = codesBySegmentID[application.response.segmentID];
        if (std::find(ids.begin(), ids.end(), application.codeID) == ids.end()) ids.push_back(application.codeID);
    }
    std::vector<TeskCodingStripe> stripes;
    std::int64_t index = 0;
    for (const TranscriptSegment& segment : transcript->second.segments) {
        TeskCodingStripe stripe{sourceID, segment.id, index++, segment.start, segment.end, {}};
        if (const auto found = codesBySegmentID.find(segment.id); found != codesBySegmentID.end()) {
            stripe.codeIDs = found->second;
            std::sort(stripe.codeIDs.begin(), stripe.codeIDs.end()); // byte order is the order of the id strings
        }
        stripes.push_back(std::move(stripe));
    }
    return stripes;
}

std::vector<TeskQuote> representativeQuotes(const TeskAnalysisCorpus& corpus, std::int64_t limit) {
    std::vector<TeskQuote> quotes;
    for (const TeskQuote& quote : corpus.workspace.quotes) {
        if (quote.isExemplar()) quotes.push_back(quote);
    }
    std::stable_sort(quotes.begin(), quotes.end(), [](const TeskQuote& a, const TeskQuote& b) {
        if (a.themeIDs.size() != b.themeIDs.size()) return a.themeIDs.size() > b.themeIDs.size();
        return a.createdAt < b.createdAt;
    });
    if (limit < static_cast<std::int64_t>(quotes.size())) quotes.resize(static_cast<std::size_t>(std::max<std::int64_t>(limit, 0)));
    return quotes;
}

} // namespace TeskAnalysisEngine
} // namespace mibrel
