#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "MibrelCore/Model/TeskValueTypes.h"

// The rows the analysis engine returns. Every count a surface shows comes from these.
namespace mibrel {

struct TeskCorpusOverview {
    std::int64_t sourceCount = 0;
    std::int64_t segmentCount = 0;
    std::int64_t totalWords = 0;
    double averageWordsPerSegment = 0.0;
    std::int64_t codeCount = 0;
    std::int64_t categoryCount = 0;
    std::int64_t themeCount = 0;
    std::int64_t quoteCount = 0;
    std::int64_t applicationCount = 0;
    std::int64_t codedSegmentCount = 0;
    double codedSegmentCoverage = 0.0; // a fraction; above 1 when applications outlive their segments

    bool operator==(const TeskCorpusOverview&) const = default;

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = TeskCorpusOverview;
        return std::tuple{required("applicationCount", &T::applicationCount),
                          required("averageWordsPerSegment", &T::averageWordsPerSegment),
                          required("categoryCount", &T::categoryCount),
                          required("codeCount", &T::codeCount),
                          required("codedSegmentCount", &T::codedSegmentCount),
                          required("codedSegmentCoverage", &T::codedSegmentCoverage),
                          required("quoteCount", &T::quoteCount),
                          required("segmentCount", &T::segmentCount),
                          required("sourceCount", &T::sourceCount),
                          required("themeCount", &T::themeCount),
                          required("totalWords", &T::totalWords)};
    }
};

struct TeskCodeFrequencyRow {
    Uuid codeID;
    std::string codeName;
    std::string definition;
    std::int64_t applicationCount = 0;
    std::int64_t sourceSpread = 0;

    const Uuid& id() const { return codeID; }
    bool operator==(const TeskCodeFrequencyRow&) const = default;

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = TeskCodeFrequencyRow;
        return std::tuple{required("applicationCount", &T::applicationCount), required("codeID", &T::codeID),
                          required("codeName", &T::codeName), required("definition", &T::definition),
                          required("sourceSpread", &T::sourceSpread)};
    }
};

struct TeskSourceCodeCount {
    Uuid sourceID;
    std::string sourceLabel;
    std::int64_t count = 0;

    const Uuid& id() const { return sourceID; }
    bool operator==(const TeskSourceCodeCount&) const = default;

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = TeskSourceCodeCount;
        return std::tuple{required("count", &T::count), required("sourceID", &T::sourceID),
                          required("sourceLabel", &T::sourceLabel)};
    }
};

struct TeskCodeSourceMatrixRow {
    Uuid codeID;
    std::string codeName;
    std::vector<TeskSourceCodeCount> counts; // one per source, in project order, zeros included
    std::int64_t total = 0;

    const Uuid& id() const { return codeID; }
    bool operator==(const TeskCodeSourceMatrixRow&) const = default;

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = TeskCodeSourceMatrixRow;
        return std::tuple{required("codeID", &T::codeID), required("codeName", &T::codeName),
                          required("counts", &T::counts), required("total", &T::total)};
    }
};

// Code A is always the one with the lower id string, whatever the names.
struct TeskCodeCooccurrenceRow {
    Uuid codeAID;
    std::string codeAName;
    Uuid codeBID;
    std::string codeBName;
    std::int64_t count = 0;

    std::string id() const { return codeAID.uuidString() + "|" + codeBID.uuidString(); }
    bool operator==(const TeskCodeCooccurrenceRow&) const = default;

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = TeskCodeCooccurrenceRow;
        return std::tuple{required("codeAID", &T::codeAID), required("codeAName", &T::codeAName),
                          required("codeBID", &T::codeBID), required("codeBName", &T::codeBName),
                          required("count", &T::count)};
    }
};

struct TeskWordFrequencyRow {
    std::string word;
    std::int64_t count = 0;

    const std::string& id() const { return word; }
    bool operator==(const TeskWordFrequencyRow&) const = default;

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = TeskWordFrequencyRow;
        return std::tuple{required("count", &T::count), required("word", &T::word)};
    }
};

struct TeskThemeCoverageRow {
    Uuid themeID;
    std::string themeName;
    std::string interpretiveClaim; // as stored
    std::int64_t codeCount = 0;
    std::int64_t categoryCount = 0;
    std::int64_t applicationCount = 0;
    std::int64_t sourceSpread = 0;
    std::int64_t quoteCount = 0;
    std::vector<std::string> warnings;

    const Uuid& id() const { return themeID; }
    bool operator==(const TeskThemeCoverageRow&) const = default;

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = TeskThemeCoverageRow;
        return std::tuple{required("applicationCount", &T::applicationCount),
                          required("categoryCount", &T::categoryCount),
                          required("codeCount", &T::codeCount),
                          required("interpretiveClaim", &T::interpretiveClaim),
                          required("quoteCount", &T::quoteCount),
                          required("sourceSpread", &T::sourceSpread),
                          required("themeID", &T::themeID),
                          required("themeName", &T::themeName),
                          required("warnings", &T::warnings)};
    }
};

struct TeskCodingStripe {
    Uuid sourceID;
    std::string segmentID;
    std::int64_t segmentIndex = 0;
    std::optional<double> start;
    std::optional<double> end;
    std::vector<Uuid> codeIDs; // distinct, by id string

    const std::string& id() const { return segmentID; }
    bool operator==(const TeskCodingStripe&) const = default;

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = TeskCodingStripe;
        return std::tuple{required("codeIDs", &T::codeIDs), optional("end", &T::end),
                          required("segmentID", &T::segmentID), required("segmentIndex", &T::segmentIndex),
                          required("sourceID", &T::sourceID), optional("start", &T::start)};
    }
};

} // namespace mibrel
