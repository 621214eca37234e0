#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "MerivanteCore/Dataset/DistinctTextSet.h"
#include "MerivanteCore/Dataset/ImportReadiness.h"

namespace merivante {

// What one pass over a column finds: missingness, distinct answers, numbers and lengths.
// The readiness summary and the variable classifier read the same figures from it.
struct ColumnProfile {
    std::int64_t valueCount = 0;
    std::int64_t missingCount = 0;
    std::map<std::string, std::int64_t> observedMissingMarkers; // "(blank)" for empty cells
    std::vector<std::string> sampleValues;                      // the first four answers, verbatim
    std::int64_t uniqueCount = 0;                               // answers trimmed and lower-cased
    std::int64_t numericCount = 0;
    std::optional<NumericSummary> numericSummary;
    bool numbersAreWhole = true;
    std::int64_t answerCharacters = 0; // user-perceived characters over all answers, untrimmed
    std::int64_t longestAnswerCharacters = 0;

    std::int64_t nonMissingCount() const { return valueCount - missingCount; }
    // Parsed numbers per answer; 0 when there is no answer.
    double numericRatio() const;

    static ColumnProfile of(const std::vector<std::string>& values);
};

// Feeds a column one cell at a time, so callers need not copy a column out of the rows.
class ColumnProfileBuilder {
public:
    // True when the cell is missing.
    bool add(std::string_view value);
    ColumnProfile finish();

private:
    void countAnswer(std::string_view trimmed, std::int64_t characters);
    void addDistinct(std::string_view trimmed);
    void insertPending();

    ColumnProfile m_profile;
    DistinctTextSet m_distinct; // answers trimmed and lower-cased
    // Each answer enters the set one answer late, once its slot has been fetched.
    std::string m_pending;
    std::uint64_t m_pendingHash = 0;
    bool m_hasPending = false;
    double m_sum = 0;
};

// Every column's profile and, from the same pass, each row's count of missing cells.
struct TableProfile {
    std::vector<ColumnProfile> columns;
    std::vector<std::int64_t> rowMissingCounts;
};

} // namespace merivante
