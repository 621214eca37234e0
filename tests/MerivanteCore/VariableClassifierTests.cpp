#include <cmath>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "MerivanteCore/Import/VariableClassifier.h"

namespace merivante {
namespace {

using Strings = std::vector<std::string>;
using enum VariableKind;

constexpr const char* itemWarning = "Likert-like numeric range detected; confirm the item belongs to a construct.";
constexpr const char* codesWarning = "Numeric category codes detected; assign Grouping, Outcome, or Item before analysis.";
constexpr const char* unnamedNumberWarning =
    "Numeric field was not named as an outcome or item; assign a research role before analysis.";
constexpr const char* textWarning = "Text response fields are excluded from reliability unless recoded as items.";
constexpr const char* freeFormWarning = "Free-form fields are excluded from reliability unless recoded as items.";
constexpr const char* groupingWarning = "Grouping/status variables are excluded from reliability unless reclassified.";

VariableKind kindOf(std::string_view name, const Strings& values) {
    return VariableClassifier::classify(name, values).assignedType;
}

Strings warningsOf(std::string_view name, const Strings& values) {
    return VariableClassifier::classify(name, values).warnings;
}

std::string repeated(std::string_view piece, int count) {
    std::string text;
    for (int i = 0; i < count; ++i) text += piece;
    return text;
}

// `count` answers cycling through `distinct` different short words.
Strings answers(int count, int distinct) {
    Strings values;
    for (int i = 0; i < count; ++i) values.push_back("v" + std::to_string(i % distinct));
    return values;
}

const Strings likert{"1", "2", "3", "4", "5", "4"};

TEST(VariableClassifierTest, AnItemColumnGetsEveryFigureFilledIn) {
    const Strings values{"1", " 2", "N/A", "5", "3", "", "4", "2"};
    const DataVariable variable = VariableClassifier::classify("Q1", values);

    EXPECT_EQ(variable.name, "Q1");
    EXPECT_NE(variable.id, platform::Uuid());
    EXPECT_NE(variable.id, VariableClassifier::classify("Q1", values).id);
    EXPECT_EQ(variable.label, std::nullopt);
    EXPECT_EQ(variable.assignedConstruct, std::nullopt);
    EXPECT_EQ(variable.inferredType, psychometricItem);
    EXPECT_EQ(variable.assignedType, psychometricItem);
    EXPECT_TRUE(variable.includeInReliability);
    EXPECT_TRUE(variable.includeInDescriptives);
    EXPECT_EQ(variable.scaleRange, (ScaleRange{1, 5}));
    EXPECT_EQ(variable.missingCount, 2);
    EXPECT_EQ(variable.nonMissingCount, 6);
    EXPECT_EQ(variable.uniqueCount, 5); // " 2" and "2" are one answer
    EXPECT_EQ(variable.numericSummary, (NumericSummary{1, 5, 17.0 / 6.0}));
    EXPECT_EQ(variable.sampleValues, (Strings{"1", " 2", "5", "3"})); // answers only, as typed
    EXPECT_EQ(variable.warnings, (Strings{itemWarning}));
}

TEST(VariableClassifierTest, GapsNumbersAndRangesAreReadFromTheCells) {
    // Every marker, in any case and padding, is a gap; a column of gaps is a small grouping.
    const Strings markers{"", "#N/A", ".", "-", "--", "Blank", "MISSING", "n.a.", "NA", "NaN", "n/a", "nil",
                          "No Response", "not answered", "Not applicable", "not available", " null "};
    const DataVariable gaps = VariableClassifier::classify("Var1", markers);
    EXPECT_EQ(gaps.missingCount, 17);
    EXPECT_EQ(gaps.nonMissingCount, 0);
    EXPECT_EQ(gaps.uniqueCount, 0);
    EXPECT_EQ(gaps.scaleRange, std::nullopt);
    EXPECT_EQ(gaps.numericSummary, std::nullopt);
    EXPECT_TRUE(gaps.sampleValues.empty());
    EXPECT_EQ(gaps.assignedType, grouping);
    EXPECT_TRUE(gaps.warnings.empty());
    EXPECT_EQ(kindOf("Var1", {}), grouping);

    // Look-alikes of markers are answers.
    const DataVariable lookAlikes = VariableClassifier::classify("Var1", {"none", "0", "n.a", "N A"});
    EXPECT_EQ(lookAlikes.missingCount, 0);
    EXPECT_EQ(lookAlikes.nonMissingCount, 4);

    // Exponents and hexadecimal are numbers; decimals are not category codes.
    const DataVariable numbers = VariableClassifier::classify("points", {"1e3", "0x10", " 7 ", "-2.5"});
    EXPECT_EQ(numbers.numericSummary, (NumericSummary{-2.5, 1000, 255.125}));
    EXPECT_EQ(numbers.scaleRange, (ScaleRange{-2.5, 1000}));
    EXPECT_EQ(numbers.assignedType, status);
    EXPECT_EQ(numbers.warnings, (Strings{unnamedNumberWarning}));
    EXPECT_TRUE(std::isinf(VariableClassifier::classify("points", {"inf", "1"}).numericSummary->maximum));

    // 17 of 20 answers are numbers: numeric, with a range.
    Strings mostlyNumbers;
    for (int i = 1; i <= 17; ++i) mostlyNumbers.push_back(std::to_string(i));
    for (const char* word : {"x", "y", "z"}) mostlyNumbers.push_back(word);
    const DataVariable numeric = VariableClassifier::classify("points", mostlyNumbers);
    EXPECT_EQ(numeric.scaleRange, (ScaleRange{1, 17}));
    EXPECT_EQ(numeric.assignedType, status);
    EXPECT_EQ(numeric.warnings, (Strings{unnamedNumberWarning}));

    // 16 of 20: the numbers are still summarised, but there is no range and the column is text.
    Strings fewerNumbers;
    for (int i = 1; i <= 16; ++i) fewerNumbers.push_back(std::to_string(i));
    for (const char* word : {"w", "x", "y", "z"}) fewerNumbers.push_back(word);
    const DataVariable text = VariableClassifier::classify("points", fewerNumbers);
    EXPECT_EQ(text.scaleRange, std::nullopt);
    EXPECT_EQ(text.numericSummary, (NumericSummary{1, 16, 8.5}));
    EXPECT_EQ(text.assignedType, textResponse);
    EXPECT_EQ(text.warnings, (Strings{freeFormWarning}));

    // Gaps do not count against the share.
    Strings withGaps{"1", "2", "NA", "", "missing"};
    EXPECT_EQ(VariableClassifier::classify("points", withGaps).scaleRange, (ScaleRange{1, 2}));
}

TEST(VariableClassifierTest, IgnoredAndAdministrativeNamesWinOverEveryOtherRule) {
    const DataVariable ignored = VariableClassifier::classify("exclude_age", {"30", "41"});
    EXPECT_EQ(ignored.assignedType, exclude);
    EXPECT_FALSE(ignored.includeInDescriptives);
    EXPECT_FALSE(ignored.includeInReliability);
    EXPECT_EQ(ignored.warnings, (Strings{"Ignored fields are excluded until manually assigned another role."}));
    EXPECT_EQ(kindOf("Ignore_Q1", likert), exclude);
    EXPECT_EQ(kindOf("unused_id", {"1", "2"}), exclude);
    EXPECT_EQ(kindOf("Skip", {"a", "b"}), exclude);

    const DataVariable respondent = VariableClassifier::classify("respondentId", {"17", "18", "19"});
    EXPECT_EQ(respondent.assignedType, administrative);
    EXPECT_FALSE(respondent.includeInDescriptives);
    EXPECT_EQ(respondent.warnings, (Strings{"Administrative fields are excluded from reliability evidence."}));
    EXPECT_EQ(kindOf("gender_id", {"F", "M"}), administrative);
    EXPECT_EQ(kindOf("FirstName", {"Ann", "Bo"}), administrative);
    EXPECT_EQ(kindOf("userID", {"u1", "u2"}), administrative);
    EXPECT_EQ(kindOf("ID", {"1", "2"}), administrative);
    EXPECT_EQ(kindOf("Start time", {"9:00", "9:05"}), administrative);
    // A word merely containing an administrative one is not administrative.
    EXPECT_EQ(kindOf("Valid", {"yes", "no", "yes"}), grouping);
    EXPECT_EQ(kindOf("USERID", {"yes", "no", "yes"}), grouping);
    EXPECT_EQ(kindOf("Excluded2", likert), status); // "excluded2" is one word, and not an ignored one
}

TEST(VariableClassifierTest, TextResponseNamesNeedTextAnswers) {
    const DataVariable comment = VariableClassifier::classify("comment", {"good", "bad", "good"});
    EXPECT_EQ(comment.assignedType, textResponse);
    EXPECT_EQ(comment.warnings, (Strings{textWarning}));
    // Short numbers under a text name fall through to the numeric rules.
    EXPECT_EQ(kindOf("comment", {"1", "2", "3"}), status);
    EXPECT_EQ(warningsOf("comment", {"1", "2", "3"}), (Strings{unnamedNumberWarning}));

    // Numbers long enough to be text are text under a text name or no name at all, but an
    // outcome under an outcome name.
    const Strings longNumbers{"1" + repeated("0", 89), "2", "3"};
    EXPECT_EQ(kindOf("feedback", longNumbers), textResponse);
    EXPECT_EQ(kindOf("points", longNumbers), textResponse);
    EXPECT_EQ(warningsOf("points", longNumbers), (Strings{textWarning}));
    EXPECT_EQ(kindOf("score", longNumbers), outcome);

    // A text word settles text answers before a background word does, but not numbers.
    EXPECT_EQ(kindOf("age_text", {"thirty", "forty"}), textResponse);
    const DataVariable age = VariableClassifier::classify("age_text", {"30", "41"});
    EXPECT_EQ(age.assignedType, demographicBackground);
    EXPECT_EQ(age.warnings, (Strings{"Background variables are not psychometric items by default."}));
    EXPECT_EQ(kindOf("Gender", {"F", "M", "F"}), demographicBackground);
}

TEST(VariableClassifierTest, OutcomesNeedNumbersAndGroupingWordsNeedNothing) {
    // An outcome name beats a Likert-looking range.
    const DataVariable total = VariableClassifier::classify("score_total", {"1", "2", "3", "4", "5"});
    EXPECT_EQ(total.assignedType, outcome);
    EXPECT_TRUE(total.warnings.empty());
    EXPECT_EQ(total.scaleRange, (ScaleRange{1, 5}));
    EXPECT_FALSE(total.includeInReliability);
    EXPECT_TRUE(total.includeInDescriptives);
    EXPECT_EQ(kindOf("satisfactionRating", {"1", "2", "3"}), outcome);

    // Without numbers an outcome name means nothing.
    EXPECT_EQ(kindOf("score", {"high", "low", "high"}), grouping);
    EXPECT_TRUE(warningsOf("score", {"high", "low", "high"}).empty());

    EXPECT_EQ(kindOf("school_score", {"10", "12"}), outcome);
    EXPECT_EQ(kindOf("school_score", {"ten", "twelve"}), grouping);
    EXPECT_EQ(warningsOf("status", {"active", "inactive"}), (Strings{groupingWarning}));
    EXPECT_EQ(kindOf("status", {"1", "2", "1"}), grouping);
    EXPECT_EQ(kindOf("gradeLevel", {"3", "4"}), grouping);
    // A grouping word is heard before long answers are.
    EXPECT_EQ(kindOf("school", {repeated("x", 100), "b"}), grouping);
}

TEST(VariableClassifierTest, ItemsNeedAnItemNameAndALikertRange) {
    for (const char* name : {"Q1", " Q7 ", "q_12", "i-3", "item_3b", "item12", "abc12", "abcdef_7c", "anxietyItem",
                             "Trust question", "survey"}) {
        EXPECT_EQ(kindOf(name, likert), psychometricItem) << name;
    }
    // Not item names: seven letters, two trailing letters, digits first, no digits.
    for (const char* name : {"abcdefg1", "q1ab", "12abc", "trust"}) {
        EXPECT_EQ(kindOf(name, likert), status) << name;
        EXPECT_EQ(warningsOf(name, likert), (Strings{unnamedNumberWarning})) << name;
    }

    // Any short span of few answers looks like a scale; a wide one does not.
    EXPECT_EQ(kindOf("q5", {"2", "9", "5", "2"}), psychometricItem);
    EXPECT_EQ(kindOf("q5", {"0", "20", "10", "5"}), status);

    // 0-10 and 1-5 are scales however many distinct answers they hold...
    Strings zeroToTen;
    for (int half = 0; half <= 20; ++half) zeroToTen.push_back(std::to_string(half / 2) + (half % 2 ? ".5" : ""));
    EXPECT_EQ(kindOf("q5", zeroToTen), psychometricItem);
    const Strings oneToFive{"1",    "1.25", "1.5", "1.75", "2",    "2.25", "2.5", "2.75", "3",
                            "3.25", "3.5",  "3.75", "4",   "4.25", "4.5",  "4.75", "5"};
    EXPECT_EQ(kindOf("q5", oneToFive), psychometricItem);
    // ...but the same span with twelve or more answers is not, nor ends that only round to 1 and 5.
    Strings oneToEleven;
    for (int half = 2; half <= 22; ++half) oneToEleven.push_back(std::to_string(half / 2) + (half % 2 ? ".5" : ""));
    EXPECT_EQ(kindOf("q5", oneToEleven), status);
    const Strings nearlyOneToFive{"0.6", "1.0", "1.4", "1.8", "2.2", "2.6", "3.0",
                                  "3.4", "3.8", "4.2", "4.6", "5.0", "5.4"};
    EXPECT_EQ(kindOf("q5", nearlyOneToFive), status);
    Strings elevenAnswers(nearlyOneToFive.begin(), nearlyOneToFive.begin() + 11);
    EXPECT_EQ(kindOf("q5", elevenAnswers), psychometricItem);
}

TEST(VariableClassifierTest, CategoryLimitFollowsTheNumberOfAnswers) {
    // {answers, the most distinct answers that are still categories}
    const std::vector<std::pair<int, int>> limits{{5, 2}, {6, 2}, {9, 3}, {59, 19}, {60, 20}, {100, 20}};
    for (const auto& [count, limit] : limits) {
        EXPECT_EQ(kindOf("answer", answers(count, limit)), grouping) << count;
        EXPECT_TRUE(warningsOf("answer", answers(count, limit)).empty()) << count;
        EXPECT_EQ(kindOf("answer", answers(count, limit + 1)), textResponse) << count;
        EXPECT_EQ(warningsOf("answer", answers(count, limit + 1)), (Strings{freeFormWarning})) << count;
    }
    // Gaps are not answers: six answers among sixteen cells still allow only two categories.
    Strings withGaps = answers(6, 3);
    withGaps.insert(withGaps.end(), 10, "");
    EXPECT_EQ(kindOf("answer", withGaps), textResponse);
    // Case and padding do not make new categories.
    const DataVariable yesNo = VariableClassifier::classify("answer", {"Yes", " yes", "YES ", "no", "No"});
    EXPECT_EQ(yesNo.uniqueCount, 2);
    EXPECT_EQ(yesNo.assignedType, grouping);

    // Whole numbers within the limit are codes; decimals or too many values are plain numbers.
    EXPECT_EQ(warningsOf("code", {"1", "2", "3", "1", "2", "3", "1", "2", "3"}), (Strings{codesWarning}));
    EXPECT_EQ(kindOf("code", {"1", "2", "3", "1", "2", "3", "1", "2", "3"}), status);
    EXPECT_EQ(warningsOf("code", {"1", "2.0", "3", "1", "2.0", "3", "1", "2.0", "3"}), (Strings{codesWarning}));
    EXPECT_EQ(warningsOf("code", {"1.5", "2.5", "3.5", "1.5", "2.5", "3.5", "1.5", "2.5", "3.5"}),
              (Strings{unnamedNumberWarning}));
    EXPECT_EQ(warningsOf("code", {"1", "2", "3", "4", "1", "2", "3", "4", "1"}), (Strings{unnamedNumberWarning}));
}

TEST(VariableClassifierTest, LongTextIsMeasuredInCharactersAsTyped) {
    // Mean of exactly 45 characters, counting the leading blanks.
    const std::string pad(5, ' ');
    EXPECT_EQ(kindOf("answer", {pad + repeated("a", 35), pad + repeated("b", 45)}), textResponse);
    EXPECT_EQ(warningsOf("answer", {pad + repeated("a", 35), pad + repeated("b", 45)}), (Strings{textWarning}));
    EXPECT_EQ(kindOf("answer", {repeated("a", 40), repeated("b", 48)}), grouping); // mean 44

    // One answer over 89 characters is enough.
    EXPECT_EQ(warningsOf("answer", {repeated("a", 90), "b", "c"}), (Strings{textWarning}));
    EXPECT_EQ(warningsOf("answer", {repeated("a", 89), "b", "c"}), (Strings{freeFormWarning}));

    // 45 "é" are 90 bytes and 45 decomposed "é" are 90 code points, yet each is 45 characters.
    EXPECT_EQ(kindOf("answer", {repeated("\xC3\xA9", 45), "x"}), grouping);
    EXPECT_EQ(kindOf("answer", {repeated("e\xCC\x81", 45), "x"}), grouping);
    EXPECT_EQ(kindOf("answer", {repeated("\xC3\xA9", 90), "x"}), textResponse);
}

} // namespace
} // namespace merivante
