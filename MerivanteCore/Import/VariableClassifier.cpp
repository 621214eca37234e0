#include "MerivanteCore/Import/VariableClassifier.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <set>

#include "MerivanteCore/Import/ClassifierTokens.h"
#include "Platform/Text/Regex.h"
#include "Platform/Text/Text.h"

namespace merivante::VariableClassifier {
namespace {

using Tokens = std::set<std::string>;
using Words = std::set<std::string_view>;

constexpr double kNumericShare = 0.85;

const Words& ignoredTokens() {
    static const Words words{"exclude", "excluded", "ignore", "ignored", "omit", "skip", "unused"};
    return words;
}
const Words& administrativeTokens() {
    static const Words words{"id", "identifier", "uuid", "email", "name", "date", "time", "timestamp", "ip"};
    return words;
}
const Words& textResponseTokens() {
    static const Words words{"comment", "comments", "description", "essay", "feedback",
                             "note",    "notes",    "open",        "response", "text"};
    return words;
}
const Words& demographicTokens() {
    static const Words words{"age", "degree", "education", "ethnicity", "gender", "race", "sex"};
    return words;
}
const Words& outcomeTokens() {
    static const Words words{"achievement", "outcome", "performance", "rating",
                             "result",      "satisfaction", "score",   "total"};
    return words;
}
const Words& groupingTokens() {
    static const Words words{"arm",   "category", "class",   "cohort",  "condition", "department", "division",
                             "grade", "group",    "level",   "location", "program",  "region",     "role",
                             "school", "section", "site",    "status",  "team",      "tenure",     "treatment"};
    return words;
}
const Words& itemTokens() {
    static const Words words{"indicator", "item", "measure", "prompt", "q", "question", "scale", "subscale", "survey"};
    return words;
}

bool anyIn(const Tokens& tokens, const Words& words) {
    return std::any_of(tokens.begin(), tokens.end(), [&](const std::string& token) { return words.contains(token); });
}

bool looksLikeLongText(const ColumnProfile& profile) {
    const std::int64_t answers = profile.nonMissingCount();
    if (answers == 0) return false;
    return static_cast<double>(profile.answerCharacters) / static_cast<double>(answers) >= 45.0 ||
           profile.longestAnswerCharacters > 89;
}

// 1-5, 1-7 and 0-10 always; otherwise a short span of few distinct answers.
bool isLikertLike(const ScaleRange& range, std::int64_t uniqueCount) {
    if (!range.minimum || !range.maximum) return false;
    const double a = std::round(*range.minimum);
    const double b = std::round(*range.maximum);
    const bool whole = *range.minimum == a && *range.maximum == b;
    if (whole && ((a == 1 && (b == 5 || b == 7)) || (a == 0 && b == 10))) return true;
    return b - a <= 10 && uniqueCount < 12;
}

bool looksLikeItemName(const Tokens& tokens, std::string_view name) {
    static const platform::text::Regex numberedItem("^(q|i|item)[_-]?\\d+[a-z]?$");
    static const platform::text::Regex shortCode("^[a-z]{1,6}[_-]?\\d+[a-z]?$");
    if (anyIn(tokens, itemTokens())) return true;
    const std::string plain = platform::text::lowercased(platform::text::trimmed(name));
    return numberedItem.contains(plain) || shortCode.contains(plain);
}

std::int64_t categoryLimit(std::int64_t answers) {
    if (answers < 6) return 2;
    if (answers > 59) return 20;
    return answers / 3;
}

struct Decision {
    VariableKind kind;
    std::optional<std::string> warning;
};

Decision decide(std::string_view name, const ColumnProfile& profile, const std::optional<ScaleRange>& range) {
    const Tokens tokens = classifierTokens(name);
    const std::string lowerName = platform::text::lowercased(name);
    const bool numeric = profile.numericRatio() >= kNumericShare;
    const bool longText = looksLikeLongText(profile);
    const auto textWarning = "Text response fields are excluded from reliability unless recoded as items.";
    const bool withinCategories = profile.uniqueCount <= categoryLimit(profile.nonMissingCount());

    if (anyIn(tokens, ignoredTokens()) || lowerName.starts_with("ignore_") || lowerName.starts_with("exclude_")) {
        return {VariableKind::exclude, "Ignored fields are excluded until manually assigned another role."};
    }
    if (anyIn(tokens, administrativeTokens()) || lowerName.ends_with("_id") || lowerName.starts_with("id_") ||
        lowerName == "id") {
        return {VariableKind::administrative, "Administrative fields are excluded from reliability evidence."};
    }
    if (anyIn(tokens, textResponseTokens()) && (!numeric || longText)) return {VariableKind::textResponse, textWarning};
    if (anyIn(tokens, demographicTokens())) {
        return {VariableKind::demographicBackground, "Background variables are not psychometric items by default."};
    }
    if (numeric && anyIn(tokens, outcomeTokens())) return {VariableKind::outcome, std::nullopt};
    if (anyIn(tokens, groupingTokens())) {
        return {VariableKind::grouping, "Grouping/status variables are excluded from reliability unless reclassified."};
    }
    if (longText) return {VariableKind::textResponse, textWarning};
    if (numeric && range && isLikertLike(*range, profile.uniqueCount) && looksLikeItemName(tokens, name)) {
        return {VariableKind::psychometricItem, "Likert-like numeric range detected; confirm the item belongs to a construct."};
    }
    if (numeric && withinCategories && profile.numericCount > 0 && profile.numbersAreWhole) {
        return {VariableKind::status, "Numeric category codes detected; assign Grouping, Outcome, or Item before analysis."};
    }
    if (numeric) {
        return {VariableKind::status,
                "Numeric field was not named as an outcome or item; assign a research role before analysis."};
    }
    if (withinCategories) return {VariableKind::grouping, std::nullopt};
    return {VariableKind::textResponse, "Free-form fields are excluded from reliability unless recoded as items."};
}

} // namespace

DataVariable classify(std::string_view name, const std::vector<std::string>& values) {
    return classify(name, ColumnProfile::of(values));
}

DataVariable classify(std::string_view name, const ColumnProfile& profile) {
    std::optional<ScaleRange> range;
    if (profile.numericRatio() >= kNumericShare && profile.numericSummary) {
        range = ScaleRange{profile.numericSummary->minimum, profile.numericSummary->maximum};
    }
    const Decision decision = decide(name, profile, range);
    DataVariable variable;
    variable.id = platform::Uuid::random();
    variable.name = std::string(name);
    variable.inferredType = decision.kind;
    variable.assignType(decision.kind);
    variable.scaleRange = range;
    variable.missingCount = profile.missingCount;
    variable.nonMissingCount = profile.nonMissingCount();
    variable.uniqueCount = profile.uniqueCount;
    variable.numericSummary = profile.numericSummary;
    variable.sampleValues = profile.sampleValues;
    if (decision.warning) variable.warnings.push_back(*decision.warning);
    return variable;
}

} // namespace merivante::VariableClassifier
