#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "MerivanteCore/Import/ScaleItemClassifier.h"
#include "Platform/Foundation/EnumRawValues.h"
#include "Platform/Json/JsonCoding.h"

namespace merivante {
namespace {

using Category = ScaleItemClassification::Category;
using Strings = std::vector<std::string>;
using ScaleItemClassifier::classify;

constexpr std::nullopt_t none = std::nullopt;

const std::string noSignals = "No strong scale or informational signals";
const std::string singleValue = "Single distinct value";
const std::string booleanValues = "Boolean / yes-no values";
const std::string mostlyUnique = "Mostly unique values (looks like an ID)";
const std::string emails = "Values look like emails";
const std::string dates = "Values look like dates / timestamps";
const std::string longText = "Long free-text values";
const std::string numericRange = "Numeric range looks demographic / count, not a scale";

ScaleItemClassification classifyOne(const std::string& name, const Strings& column, const std::string& question = "") {
    std::map<std::string, std::string> questions;
    if (!question.empty()) questions[name] = question;
    return classify({name}, {column}, questions).front();
}

ScaleItemClassification expected(std::string name, Category category, double probability, Strings reasons) {
    return {std::move(name), category, probability, std::move(reasons), category == Category::likelyScale};
}

TEST(ScaleItemCleaningTest, MissingMarkersAreDroppedAndAnswersTrimmed) {
    EXPECT_EQ(ScaleItemClassifier::cleanedValues(
                  {" 3 ", "NA", "-", "missing", "Null", ".", "", "n/a", "None", "\n4\t", "N/A", "  ", "Agree "}),
              (Strings{"3", "None", "4", "Agree"}));

    // Markers do not break an otherwise numeric rating column.
    EXPECT_EQ(classifyOne("Q1", {"1", "NA", "2", "-", "3", "missing", "2"}),
              expected("Q1", Category::likelyScale, 0.87, {"Bounded 1-3 Likert range"}));
}

TEST(ScaleItemCleaningTest, LikertRangeNeedsWholeNumbersSpanningOneToTenStepsWithinZeroToTen) {
    using ScaleItemClassifier::likertRange;
    EXPECT_EQ(likertRange({"1", "5", "3"}), (LikertRange{1, 5}));
    EXPECT_EQ(likertRange({"0", "10"}), (LikertRange{0, 10}));
    EXPECT_EQ(likertRange({"2.0", "4", "1e0"}), (LikertRange{1, 4}));
    EXPECT_EQ(likertRange({}), none);
    EXPECT_EQ(likertRange({"3", "3", "3"}), none); // no span
    EXPECT_EQ(likertRange({"1", "11"}), none);
    EXPECT_EQ(likertRange({"-1", "3"}), none);
    EXPECT_EQ(likertRange({"1", "2.5"}), none);
    EXPECT_EQ(likertRange({"1", "agree"}), none);
    EXPECT_EQ(likertRange({"1", "inf"}), none);
    EXPECT_EQ(likertRange({"1", "1e300"}), none);
}

TEST(ScaleItemNameTest, InformationalKeywordsWinAndTheFirstInListOrderIsNamed) {
    // "experience" is a scale word too, but background wins.
    EXPECT_EQ(classifyOne("Prior experience", {"a lot", "some", "some", "none"}),
              expected("Prior experience", Category::likelyInformational, 0.25,
                       {"Name contains 'experience' (demographic)"}));
    // "email" comes before "respondent" in the list.
    EXPECT_EQ(classifyOne("respondent_email", {"a@x.org", "b@x.org", "c@x.org", "d@x.org"}),
              expected("respondent_email", Category::likelyIDMetadata, 0.0,
                       {"Name contains 'email' (ID / metadata)", mostlyUnique, emails}));
    EXPECT_EQ(classifyOne("SATISFACTION", {}).reasons.front(), "Name contains 'satisfaction'");
}

TEST(ScaleItemNameTest, CamelCaseNamesStayOneWordOnceLowerCased) {
    const Strings ids{"R1", "R2", "R3", "R4", "R5"};
    EXPECT_EQ(classifyOne("respondentId", ids),
              expected("respondentId", Category::likelyIDMetadata, 0.2, {mostlyUnique}));
    EXPECT_EQ(classifyOne("respondent_id", ids),
              expected("respondent_id", Category::likelyIDMetadata, 0.0,
                       {"Name contains 'respondent' (ID / metadata)", mostlyUnique}));
}

TEST(ScaleItemNameTest, KeywordsWithBlanksOrHyphensMatchAsSubstrings) {
    EXPECT_EQ(classifyOne("E-mail address", {}).reasons.front(), "Name contains 'e-mail' (ID / metadata)");
    EXPECT_EQ(classifyOne("Number of siblings", {}).reasons.front(), "Name contains 'number of' (demographic)");
    EXPECT_EQ(classifyOne("Self-efficacy score", {}).reasons.front(), "Name contains 'self-efficacy'");
    // "grade" is listed before "grade level".
    EXPECT_EQ(classifyOne("Grade level", {}).reasons.front(), "Name contains 'grade' (demographic)");
    EXPECT_EQ(classifyOne("NumberOf", {}).reasons, Strings{singleValue});
}

TEST(ScaleItemNameTest, QuestionTextIsSearchedWithTheName) {
    const auto results = classify({"Q7", "Q8", "Q9"}, {{}, {}, {}},
                                  {{"Q7", "How much do you agree that lessons are useful?"},
                                   {"Q9", "Which school do you attend?"},
                                   {"Other", "What is your age?"}});
    EXPECT_EQ(results[0].reasons.front(), "Name contains 'agree'");
    EXPECT_EQ(results[1].reasons, Strings{singleValue});
    EXPECT_EQ(results[2].reasons.front(), "Name contains 'school' (demographic)");
}

TEST(ScaleItemScoringTest, LikertColumnsSharingARangeWithAnAdjacentColumnArePreselected) {
    const auto results = classify({"Q1", "Q2", "Q3", "Q4", "Q5"},
                                  {{"1", "2", "3", "4", "5", "3"},
                                   {"1", "5", "2", "4", "3", "2"},
                                   {"1", "7", "4", "4", "2"},
                                   {"blue", "green", "blue", "red"},
                                   {"1", "2", "3", "4", "5", "3"}},
                                  {});
    const std::string bounded15 = "Bounded 1-5 Likert range";
    const std::string shares = "Shares Likert range with neighbor";
    EXPECT_EQ(results, (std::vector{expected("Q1", Category::likelyScale, 0.99, {bounded15, shares}),
                                    expected("Q2", Category::likelyScale, 0.99, {bounded15, shares}),
                                    expected("Q3", Category::likelyScale, 0.87, {"Bounded 1-7 Likert range"}),
                                    expected("Q4", Category::unclear, 0.55, {noSignals}),
                                    expected("Q5", Category::likelyScale, 0.87, {bounded15})}));

    // A single column told it has a matching neighbour still needs a range of its own.
    EXPECT_EQ(ScaleItemClassifier::classifyColumn("Q6", {"1", "2", "3", "2"}, "", true),
              expected("Q6", Category::likelyScale, 0.99, {"Bounded 1-3 Likert range", shares}));
    EXPECT_EQ(ScaleItemClassifier::classifyColumn("Q6", {"3", "3"}, "", true).reasons, Strings{singleValue});
}

TEST(ScaleItemScoringTest, ScoresAreClampedAfterTheCategoryIsDecided) {
    EXPECT_EQ(classifyOne("I feel supported", {"1", "2", "3", "4", "5", "4"}),
              expected("I feel supported", Category::likelyScale, 1.0,
                       {"Name contains 'feel'", "Bounded 1-5 Likert range"}));
    // 0.75 + 0.05 lands exactly on the pre-select threshold.
    EXPECT_EQ(classifyOne("How satisfied are you", {"Very", "Somewhat", "Not at all", "Very", "Somewhat"}),
              expected("How satisfied are you", Category::likelyScale, 0.8, {"Name contains 'satisfied'"}));
    // Without a signal the neutral 0.5 stays below review.
    EXPECT_EQ(classifyOne("Favourite colour", {"blue", "green", "red"}),
              expected("Favourite colour", Category::likelyInformational, 0.5, {noSignals}));
}

TEST(ScaleItemScoringTest, HeadersWithoutAColumnGetAnEmptyOne) {
    EXPECT_EQ(classify({"A", "B"}, {{"1", "2"}}, {}),
              (std::vector{expected("A", Category::likelyScale, 0.82, {"Bounded 1-2 Likert range"}),
                           expected("B", Category::likelyInformational, 0.3, {singleValue})}));
    EXPECT_TRUE(classify({}, {{"1", "2"}}, {}).empty());
    // A column without a header is no neighbour.
    EXPECT_EQ(classify({"A"}, {{"1", "2"}, {"1", "2"}}, {}).front().reasons, Strings{"Bounded 1-2 Likert range"});
}

TEST(ScaleItemValueRulesTest, BooleanAndSingleValueColumns) {
    EXPECT_EQ(classifyOne("Q9", {"Yes", "yes", "YES"}),
              expected("Q9", Category::likelyInformational, 0.32, {booleanValues}));
    EXPECT_EQ(classifyOne("Q3", {"NA", " n/a ", "-", "missing", "", ".", " NULL "}),
              expected("Q3", Category::likelyInformational, 0.3, {singleValue}));
    EXPECT_EQ(classifyOne("Q4", {"3", "3", "3", "3"}),
              expected("Q4", Category::likelyInformational, 0.3, {singleValue}));
    EXPECT_EQ(classifyOne("Q6", {"0", "1", "1", "0"}),
              expected("Q6", Category::unclear, 0.69, {"Bounded 0-1 Likert range", booleanValues}));
    EXPECT_EQ(classifyOne("Q5", {"y", "maybe"}).reasons, Strings{noSignals});
}

TEST(ScaleItemValueRulesTest, MostlyUniqueValuesAndEmails) {
    EXPECT_EQ(classifyOne("Code", {"a", "b", "c"}).reasons, Strings{noSignals}); // too few to judge
    EXPECT_EQ(classifyOne("Code", {"k1", "k2", "k3", "k4", "k5", "k6", "k7", "k8", "k9", "k1"}),
              expected("Code", Category::likelyIDMetadata, 0.2, {mostlyUnique}));
    EXPECT_EQ(classifyOne("Code", {"k1", "k2", "k3", "k4", "k5", "k6", "k7", "k8", "k1", "k2"}),
              expected("Code", Category::unclear, 0.55, {noSignals}));
    // Twelve distinct answers still earn the categorical bonus; thirteen do not.
    EXPECT_EQ(classifyOne("Code", {"k1", "k2", "k3", "k4", "k5", "k6", "k7", "k8", "k9", "k10", "k11", "k12", "k1",
                                   "k2"}),
              expected("Code", Category::unclear, 0.55, {noSignals}));
    EXPECT_EQ(classifyOne("Code", {"k1", "k2", "k3", "k4", "k5", "k6", "k7", "k8", "k9", "k10", "k11", "k12", "k13",
                                   "k1", "k2"}),
              expected("Code", Category::likelyInformational, 0.5, {noSignals}));

    EXPECT_EQ(classifyOne("Contact", {"a@x.org", "a@x.org", "b@x.org"}),
              expected("Contact", Category::likelyIDMetadata, 0.2, {emails}));
    EXPECT_EQ(classifyOne("Contact", {"a@x.org", "b@x.org", "none given"}).reasons, Strings{noSignals});
}

TEST(ScaleItemValueRulesTest, DatesAndTimestamps) {
    EXPECT_EQ(classifyOne("submitted", {"2024-01-05", "2024-01-06", "2024-01-06 10:30", "5/1/2024", "notes"}),
              expected("submitted", Category::likelyIDMetadata, 0.0, {mostlyUnique, dates}));
    EXPECT_EQ(classifyOne("Q12", {"2024-05-01T09:30", "2024-05-01T09:30", "2024-05-02", "2024-05-02"}),
              expected("Q12", Category::likelyIDMetadata, 0.25, {dates}));
    EXPECT_EQ(classifyOne("Q12", {"09:30", "10:45", "09:30", "11:00", "later"}).reasons, Strings{dates});
    EXPECT_EQ(classifyOne("Q12", {"09:30", "10:45", "09:30", "later"}).reasons, Strings{noSignals});
    // Emails are checked first; a column is never both.
    EXPECT_EQ(classifyOne("Q12", {"2024-01-05@x", "2024-01-05@x", "2024-01-06@x"}).reasons, Strings{emails});
}

TEST(ScaleItemValueRulesTest, LongFreeText) {
    EXPECT_EQ(classifyOne("Q13", {"The lessons were quite good overall", "I would like more time for projects",
                                  "The lessons were quite good overall", "Fine"}),
              expected("Q13", Category::likelyInformational, 0.25, {longText}));
    // One wordy answer in four, or exactly three blanks, is not enough.
    EXPECT_EQ(classifyOne("Q13", {"The lessons were quite good overall", "Fine", "Fine", "Okay"}).reasons,
              Strings{noSignals});
    EXPECT_EQ(classifyOne("Q13", {"good but too long", "good but too long", "fine", "fine"}).reasons,
              Strings{noSignals});

    // Length counts characters, not bytes, and must exceed 40.
    std::string e40, u40;
    for (int i = 0; i < 40; ++i) e40 += "é", u40 += "ü";
    EXPECT_EQ(classifyOne("Q13", {e40, e40, u40, u40}).reasons, Strings{noSignals});
    EXPECT_EQ(classifyOne("Q13", {e40 + "é", e40 + "é", u40 + "ü", u40 + "ü"}).reasons, Strings{longText});
}

TEST(ScaleItemValueRulesTest, NumericRangesThatLookDemographic) {
    const Strings ages{"18", "25", "33", "41", "65", "25"};
    EXPECT_EQ(classifyOne("Q11", ages), expected("Q11", Category::likelyInformational, 0.33, {numericRange}));
    EXPECT_EQ(classifyOne("age", ages), expected("age", Category::likelyInformational, 0.03,
                                                 {"Name contains 'age' (demographic)", numericRange}));

    EXPECT_EQ(classifyOne("Q11", {"1", "6", "12", "6"}).reasons, Strings{numericRange}); // span 11
    EXPECT_EQ(classifyOne("Q11", {"2", "7", "12", "7"}).reasons, Strings{noSignals});    // span 10, max 12
    EXPECT_EQ(classifyOne("Q11", {"-2", "-1", "0", "1", "-1"}).reasons, Strings{numericRange});
    EXPECT_EQ(classifyOne("Q11", {"2", "3", "4.5", "5", "3"}).reasons, Strings{numericRange});

    // At least 85% of the answers must be numbers.
    EXPECT_EQ(classifyOne("Q11", {"18", "25", "33", "18", "25", "unknown"}).reasons, Strings{noSignals});
    EXPECT_EQ(classifyOne("Q11", {"18", "25", "33", "18", "25", "33", "unknown"}).reasons, Strings{numericRange});
}

TEST(ScaleItemValueRulesTest, PenaltyWeightsDecideBetweenIDAndInformational) {
    // Equal weights lean to ID / metadata.
    EXPECT_EQ(classifyOne("Comments", {"The lessons were quite good overall", "I would like more time for projects",
                                       "Nothing", "Fine"}),
              expected("Comments", Category::likelyIDMetadata, 0.0, {mostlyUnique, longText}));
    // A background name plus a count range outweighs uniqueness.
    EXPECT_EQ(classifyOne("age", {"18", "25", "33", "41", "65"}),
              expected("age", Category::likelyInformational, 0.0,
                       {"Name contains 'age' (demographic)", mostlyUnique, numericRange}));
    // Five reasons found, four kept; the weights still count the dropped one.
    EXPECT_EQ(classifyOne("Measured date", {"3.14159265358979323846264338327950288419716939937510"}),
              expected("Measured date", Category::likelyInformational, 0.0,
                       {"Name contains 'date' (ID / metadata)", dates, longText, numericRange}));
}

} // namespace
} // namespace merivante
