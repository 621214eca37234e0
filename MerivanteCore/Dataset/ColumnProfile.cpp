#include "MerivanteCore/Dataset/ColumnProfile.h"

#include <algorithm>
#include <cmath>

#include "MerivanteCore/Dataset/DatasetNumbers.h"
#include "MerivanteCore/Dataset/MissingValue.h"
#include "Platform/Text/Text.h"

namespace merivante {
namespace {

bool hasAsciiUpper(std::string_view text) {
    return std::any_of(text.begin(), text.end(), [](char c) { return c >= 'A' && c <= 'Z'; });
}

} // namespace

double ColumnProfile::numericRatio() const {
    const std::int64_t answers = nonMissingCount();
    return answers == 0 ? 0.0 : static_cast<double>(numericCount) / static_cast<double>(answers);
}

ColumnProfile ColumnProfile::of(const std::vector<std::string>& values) {
    ColumnProfileBuilder builder;
    for (const std::string& value : values) builder.add(value);
    return builder.finish();
}

bool ColumnProfileBuilder::add(std::string_view value) {
    ++m_profile.valueCount;
    if (MissingValue::isMissing(value)) {
        ++m_profile.missingCount;
        ++m_profile.observedMissingMarkers[*MissingValue::displayMarker(value)];
        return true;
    }
    if (m_profile.sampleValues.size() < 4) m_profile.sampleValues.emplace_back(value);
    countAnswer(platform::text::trimmedView(value), static_cast<std::int64_t>(platform::text::characterCount(value)));
    return false;
}

void ColumnProfileBuilder::countAnswer(std::string_view trimmed, std::int64_t characters) {
    m_profile.answerCharacters += characters;
    m_profile.longestAnswerCharacters = std::max(m_profile.longestAnswerCharacters, characters);
    addDistinct(trimmed);
    const auto number = parseNumber(trimmed);
    if (!number) return;
    auto& summary = m_profile.numericSummary;
    if (!summary) summary = NumericSummary{*number, *number, 0};
    summary->minimum = std::min(summary->minimum, *number);
    summary->maximum = std::max(summary->maximum, *number);
    m_sum += *number;
    ++m_profile.numericCount;
    m_profile.numbersAreWhole = m_profile.numbersAreWhole && *number == std::round(*number);
}

void ColumnProfileBuilder::addDistinct(std::string_view trimmed) {
    insertPending();
    if (platform::text::isAscii(trimmed)) {
        m_pending.assign(trimmed);
        if (hasAsciiUpper(trimmed)) {
            for (char& c : m_pending) c = (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
        }
    } else {
        m_pending = platform::text::lowercased(trimmed);
    }
    m_pendingHash = DistinctTextSet::hashOf(m_pending);
    m_distinct.prefetch(m_pendingHash);
    m_hasPending = true;
}

void ColumnProfileBuilder::insertPending() {
    if (m_hasPending) m_distinct.insert(m_pending, m_pendingHash);
    m_hasPending = false;
}

ColumnProfile ColumnProfileBuilder::finish() {
    insertPending();
    if (m_profile.numericSummary) m_profile.numericSummary->mean = m_sum / static_cast<double>(m_profile.numericCount);
    m_profile.uniqueCount = static_cast<std::int64_t>(m_distinct.size());
    m_distinct = {};
    return std::move(m_profile);
}

} // namespace merivante
