#include "MerivanteCore/Import/ScaleItemClassifier.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <set>

#include "MerivanteCore/Dataset/DatasetNumbers.h"
#include "MerivanteCore/Import/ClassifierTokens.h"
#include "Platform/Text/Regex.h"
#include "Platform/Text/Text.h"

namespace merivante {

std::string_view displayName(ScaleItemCategory category) {
    switch (category) {
    case ScaleItemCategory::likelyScale: return "Likely Scale Item";
    case ScaleItemCategory::likelyInformational: return "Likely Informational Item";
    case ScaleItemCategory::likelyIDMetadata: return "Likely ID / Metadata";
    case ScaleItemCategory::unclear: return "Unclear / Needs Review";
    }
    return "";
}

namespace ScaleItemClassifier {
namespace {

// Order matters: the first hit is the one a reason names.
const std::vector<std::string>& scaleKeywords() {
    static const std::vector<std::string> words{
        "agree", "disagree", "strongly", "satisfied", "satisfaction", "confident", "confidence", "comfortable",
        "believe", "feel", "perceive", "perception", "likely", "frequency", "often", "effective", "effectiveness",
        "quality", "useful", "clear", "prepared", "motivated", "engaged", "supported", "belonging", "trust", "impact",
        "improvement", "difficulty", "stress", "anxiety", "self-efficacy", "efficacy", "attitude", "behavior",
        "experience", "rate", "rating", "extent", "important", "helpful", "fair", "respect", "safe", "valued",
        "recommend"};
    return words;
}

// Checked before the scale words, so "experience" (in both) reads as background.
const std::vector<std::string>& informationalKeywords() {
    static const std::vector<std::string> words{
        "age", "gender", "sex", "race", "ethnicity", "ethnic", "department", "dept", "school", "college", "university",
        "program", "role", "title", "job", "position", "grade", "grade level", "year", "years", "experience", "tenure",
        "location", "city", "state", "country", "zip", "postal", "email", "e-mail", "name", "first name", "last name",
        "respondent", "id", "identifier", "uuid", "date", "time", "timestamp", "created", "modified", "consent",
        "section", "group", "cohort", "class", "classroom", "site", "district", "building", "employee", "student",
        "participant", "phone", "address", "salary", "income", "count", "number of"};
    return words;
}

const std::set<std::string>& idMetadataKeywords() {
    static const std::set<std::string> words{
        "id", "identifier", "uuid", "email", "e-mail", "name", "first name", "last name", "date", "time", "timestamp",
        "created", "modified", "respondent", "phone", "address"};
    return words;
}

const std::set<std::string>& missingTokens() {
    static const std::set<std::string> tokens{"", "na", "n/a", "null", ".", "-", "missing"};
    return tokens;
}

const std::set<std::string>& booleanTokens() {
    static const std::set<std::string> tokens{"yes", "no", "y", "n", "true", "false", "0", "1", "t", "f"};
    return tokens;
}

// Dates and times such as "2024-05-01", "5/1/24", "09:30" or "2024-05-01T09:30", matched at the start.
const platform::text::Regex& dateLikePattern() {
    static const platform::text::Regex pattern(R"(^\s*\d{1,4}[-/:.]\d{1,2}([-/:.T ]\d{1,4})*)");
    return pattern;
}

bool isWhole(double value) { return std::isfinite(value) && value == std::trunc(value); }

// Words joined by a blank or hyphen can span tokens, so they are looked for in the text itself.
std::optional<std::string> firstHit(const std::vector<std::string>& keywords, const std::string& text,
                                    const std::set<std::string>& tokens) {
    for (const auto& keyword : keywords) {
        const bool compound = keyword.find_first_of(" -") != std::string::npos;
        if (compound ? text.find(keyword) != std::string::npos : tokens.contains(keyword)) return keyword;
    }
    return std::nullopt;
}

bool looksLikeLongText(const std::vector<std::string>& values) {
    if (values.empty()) return false;
    std::size_t characters = 0;
    std::size_t wordy = 0;
    for (const auto& value : values) {
        characters += platform::text::characterCount(value);
        if (std::count(value.begin(), value.end(), ' ') > 3) ++wordy;
    }
    const double count = static_cast<double>(values.size());
    return static_cast<double>(characters) / count > 40.0 || static_cast<double>(wordy) / count >= 0.5;
}

ScaleItemClassification classifyWithRange(std::string_view name, const std::vector<std::string>& values,
                                          std::string_view questionText, const std::optional<LikertRange>& range,
                                          bool sharesRangeWithNeighbor) {
    double score = 0;
    double idWeight = 0;
    double infoWeight = 0;
    std::vector<std::string> reasons;

    const std::string text = platform::text::lowercased(name) + " " + platform::text::lowercased(questionText);
    const std::set<std::string> tokens = classifierTokens(text);
    const auto informational = firstHit(informationalKeywords(), text, tokens);
    const auto scale = informational ? std::nullopt : firstHit(scaleKeywords(), text, tokens);
    if (informational) {
        if (idMetadataKeywords().contains(*informational)) {
            reasons.push_back("Name contains '" + *informational + "' (ID / metadata)");
            idWeight = 0.3;
        } else {
            reasons.push_back("Name contains '" + *informational + "' (demographic)");
            infoWeight = 0.3;
        }
        score = 0.2;
    } else if (scale) {
        reasons.push_back("Name contains '" + *scale + "'");
        score = 0.75;
    } else {
        score = 0.5;
    }

    // The neighbour bonus only ever adds to a range of the column's own.
    if (range) {
        score += 0.32;
        reasons.push_back("Bounded " + std::to_string(range->minimum) + "-" + std::to_string(range->maximum) +
                          " Likert range");
        if (sharesRangeWithNeighbor) {
            score += 0.12;
            reasons.push_back("Shares Likert range with neighbor");
        }
    }

    const std::size_t n = values.size();
    std::set<std::string> distinct;
    for (const auto& value : values) distinct.insert(platform::text::lowercased(value));
    const std::size_t u = distinct.size();

    if (n != 0) {
        const double ratio = static_cast<double>(u) / static_cast<double>(n);
        if (ratio < 0.9 && u >= 2 && u <= 12) score += 0.05;
        if (n >= 4 && ratio >= 0.9) {
            score -= 0.3;
            idWeight += 0.3;
            reasons.push_back("Mostly unique values (looks like an ID)");
        }
        const auto hasAt = [](const std::string& value) { return value.find('@') != std::string::npos; };
        if (std::all_of(values.begin(), values.end(), hasAt)) {
            score -= 0.35;
            idWeight += 0.35;
            reasons.push_back("Values look like emails");
        } else {
            const auto dateLike = std::count_if(values.begin(), values.end(), [](const std::string& value) {
                return dateLikePattern().contains(value);
            });
            if (static_cast<double>(dateLike) / static_cast<double>(n) >= 0.8) {
                score -= 0.3;
                idWeight += 0.3;
                reasons.push_back("Values look like dates / timestamps");
            }
        }
    }

    if (looksLikeLongText(values)) {
        score -= 0.3;
        infoWeight += 0.3;
        reasons.push_back("Long free-text values");
    }

    if (!range && n != 0) {
        std::vector<double> numbers;
        for (const auto& value : values) {
            if (auto number = parseNumber(value)) numbers.push_back(*number);
        }
        if (static_cast<double>(numbers.size()) / static_cast<double>(n) >= 0.85) {
            const auto [low, high] = std::minmax_element(numbers.begin(), numbers.end());
            const bool allWhole = std::all_of(numbers.begin(), numbers.end(), isWhole);
            if (*high > 12 || *low < 0 || *high - *low > 10 || !allWhole) {
                score -= 0.22;
                infoWeight += 0.22;
                reasons.push_back("Numeric range looks demographic / count, not a scale");
            }
        }
    }

    const bool booleanLike = (u == 1 || u == 2) && std::all_of(distinct.begin(), distinct.end(), [](const auto& value) {
                                 return booleanTokens().contains(value);
                             });
    if (booleanLike) {
        score -= 0.18;
        infoWeight += 0.18;
        reasons.push_back("Boolean / yes-no values");
    } else if (u <= 1) {
        score -= 0.2;
        infoWeight += 0.2;
        reasons.push_back("Single distinct value");
    }

    // Decided on the running score before clamping, so a strongly negative column still
    // tells ID-like from background by which penalties it collected.
    ScaleItemCategory category;
    if (score >= 0.8) {
        category = ScaleItemCategory::likelyScale;
    } else if (score >= 0.55) {
        category = ScaleItemCategory::unclear;
    } else if (idWeight > 0 && idWeight >= infoWeight) {
        category = ScaleItemCategory::likelyIDMetadata;
    } else {
        category = ScaleItemCategory::likelyInformational;
    }

    if (reasons.empty()) reasons.emplace_back("No strong scale or informational signals");
    if (reasons.size() > 4) reasons.resize(4);

    const double clamped = std::clamp(score, 0.0, 1.0);
    return {std::string(name), category, std::round(clamped * 100) / 100, std::move(reasons),
            category == ScaleItemCategory::likelyScale};
}

} // namespace

std::vector<std::string> cleanedValues(const std::vector<std::string>& column) {
    std::vector<std::string> cleaned;
    cleaned.reserve(column.size());
    for (const auto& value : column) {
        std::string trimmed = platform::text::trimmed(value);
        if (!missingTokens().contains(platform::text::lowercased(trimmed))) cleaned.push_back(std::move(trimmed));
    }
    return cleaned;
}

std::optional<LikertRange> likertRange(const std::vector<std::string>& cleaned) {
    if (cleaned.empty()) return std::nullopt;
    double low = 0;
    double high = 0;
    for (std::size_t i = 0; i < cleaned.size(); ++i) {
        const auto number = parseNumber(cleaned[i]);
        if (!number || !isWhole(*number)) return std::nullopt;
        low = i == 0 ? *number : std::min(low, *number);
        high = i == 0 ? *number : std::max(high, *number);
    }
    // Bounds are checked as doubles first so a huge whole number never reaches the integer cast.
    if (low < 0 || high > 10) return std::nullopt;
    const LikertRange range{static_cast<std::int64_t>(low), static_cast<std::int64_t>(high)};
    const std::int64_t span = range.maximum - range.minimum;
    if (span < 1 || span > 10) return std::nullopt;
    return range;
}

ScaleItemClassification classifyColumn(std::string_view name, const std::vector<std::string>& cleaned,
                                       std::string_view questionText, bool sharesRangeWithNeighbor) {
    return classifyWithRange(name, cleaned, questionText, likertRange(cleaned), sharesRangeWithNeighbor);
}

std::vector<ScaleItemClassification> classify(const std::vector<std::string>& headers,
                                              const std::vector<std::vector<std::string>>& columns,
                                              const std::map<std::string, std::string>& questionText) {
    const std::size_t count = headers.size();
    std::vector<std::vector<std::string>> cleaned(count);
    std::vector<std::optional<LikertRange>> ranges(count);
    for (std::size_t i = 0; i < count && i < columns.size(); ++i) {
        cleaned[i] = cleanedValues(columns[i]);
        ranges[i] = likertRange(cleaned[i]);
    }

    std::vector<ScaleItemClassification> results;
    results.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        const auto& range = ranges[i];
        const bool sharesRange =
            range && ((i > 0 && ranges[i - 1] == range) || (i + 1 < count && ranges[i + 1] == range));
        const auto question = questionText.find(headers[i]);
        const std::string_view text = question == questionText.end() ? std::string_view() : question->second;
        results.push_back(classifyWithRange(headers[i], cleaned[i], text, range, sharesRange));
    }
    return results;
}

} // namespace ScaleItemClassifier
} // namespace merivante
