#include <cmath>

#include <gtest/gtest.h>

#include "MerivanteCore/Dataset/DataTransforms.h"
#include "MerivanteCore/Dataset/DatasetNumbers.h"
#include "MerivanteCore/Dataset/MissingValue.h"
#include "MerivanteCore/Dataset/ScaleRange.h"
#include "MerivanteCore/Dataset/VariableKind.h"
#include "Platform/Foundation/EnumRawValues.h"

namespace merivante {
namespace {

using Column = NumericColumn;
constexpr std::nullopt_t none = std::nullopt;

TEST(MissingValueTest, MarkersAreComparedTrimmedAndLowerCased) {
    EXPECT_TRUE(MissingValue::isMissing("N/A "));
    EXPECT_TRUE(MissingValue::isMissing(" \t\n"));
    EXPECT_TRUE(MissingValue::isMissing("Not Applicable"));
    EXPECT_FALSE(MissingValue::isMissing("0"));
    EXPECT_FALSE(MissingValue::isMissing("none"));
    EXPECT_EQ(MissingValue::normalizedMarker("N/A "), "n/a");
    EXPECT_EQ(MissingValue::normalizedMarker(""), "");
    EXPECT_EQ(MissingValue::displayMarker("  "), "(blank)");
    EXPECT_EQ(MissingValue::displayMarker("Yes"), none);
    EXPECT_EQ(MissingValue::displayMarkers(),
              (std::vector<std::string>{"#n/a", "(blank)", "-", "--", ".", "blank", "missing", "n.a.", "n/a", "na",
                                        "nan", "nil", "no response", "not answered", "not applicable",
                                        "not available", "null"}));
}

TEST(DatasetNumbersTest, TheWholeTrimmedTextMustBeANumber) {
    EXPECT_EQ(parseNumber(" 12.5\n"), 12.5);
    EXPECT_EQ(parseNumber("1e3"), 1000.0);
    EXPECT_EQ(parseNumber("0x10"), 16.0);
    EXPECT_EQ(parseNumber("-4"), -4.0);
    EXPECT_TRUE(std::isinf(*parseNumber("inf")));
    EXPECT_EQ(parseNumber("12abc"), none);
    EXPECT_EQ(parseNumber("1 2"), none);
    EXPECT_EQ(parseNumber("1,5"), none);
    EXPECT_EQ(parseNumber(""), none);

    EXPECT_EQ(cleanText(3), "3");
    EXPECT_EQ(cleanText(-0.0), "0");
    EXPECT_EQ(cleanText(1.5), "1.50");
    EXPECT_EQ(cleanText(2.005), "2.00");
    EXPECT_EQ(cleanText(1e20), "100000000000000000000");
}

TEST(DatasetModelTest, ScaleRangesAndKindsReadAsTheyShouldForResearchers) {
    EXPECT_EQ((ScaleRange{1, 5}).displayText(), "1-5");
    EXPECT_EQ((ScaleRange{1.5, none}).displayText(), "1.50+");
    EXPECT_EQ((ScaleRange{none, 7}).displayText(), "up to 7");
    EXPECT_EQ(ScaleRange{}.displayText(), "Not set");

    EXPECT_EQ(displayName(VariableKind::exclude), "Ignore");
    EXPECT_EQ(platform::rawValue(VariableKind::exclude), "exclude");
    EXPECT_EQ(platform::fromRawValue<VariableKind>("psychometric_item"), VariableKind::psychometricItem);
    EXPECT_TRUE(isReliabilityEligible(VariableKind::rubricItem));
    EXPECT_FALSE(isReliabilityEligible(VariableKind::outcome));
    EXPECT_FALSE(includedInDescriptivesByDefault(VariableKind::administrative));
    EXPECT_TRUE(canServeAsDependentVariable(VariableKind::status));
    EXPECT_FALSE(canServeAsDependentVariable(VariableKind::grouping));
    EXPECT_TRUE(canServeAsIndependentGroupingVariable(VariableKind::testItem));
    EXPECT_FALSE(canServeAsIndependentGroupingVariable(VariableKind::outcome));
}

TEST(DataTransformsTest, RecodesTakeTheFirstMatchingRuleAndKeepPositions) {
    const Column values{1, 2, none, 3, 4};
    const std::vector<ValueRecodeRule> rules{{Uuid(), {1, 2}, 10}, {Uuid(), {2, 3}, 20}, {Uuid(), {4}, none}};
    EXPECT_EQ(DataTransforms::recodeValues(values, rules, false), (Column{10, 10, none, 20, none}));
    EXPECT_EQ(DataTransforms::recodeValues({1, 7}, rules, true), (Column{10, 7}));
    EXPECT_EQ(DataTransforms::recodeValues({7}, rules, false), (Column{none}));

    const std::vector<RangeRecodeRule> ranges{{Uuid(), 0, 2, true, false, 1}, {Uuid(), 2, 4, true, true, 2}};
    EXPECT_EQ(DataTransforms::recodeRanges({0, 1.99, 2, 4, 4.5, none}, ranges, false), (Column{1, 1, 2, 2, none, none}));
    EXPECT_EQ(DataTransforms::recodeRanges({4.5}, ranges, true), (Column{4.5}));

    EXPECT_EQ(DataTransforms::reverseCode({1, 2, 5, 6, none}, 1, 5), (Column{5, 4, 1, none, none}));
}

TEST(DataTransformsTest, CombinationsLeaveGapsRatherThanInventValues) {
    EXPECT_EQ(DataTransforms::pairCombine({6, 4, none}, {2, 0, 1, 9}, PairOp::ratio), (Column{3, none, none, none}));
    EXPECT_EQ(DataTransforms::pairCombine({6, 4}, {2}, PairOp::difference), (Column{4, none}));

    const std::vector<Column> items{{1, none, 4, none}, {3, none, none}, {5, 2}};
    EXPECT_EQ(DataTransforms::rowAggregate(items, AggregateOp::count, 1.0), (Column{3, 1, 1, 0}));
    EXPECT_EQ(DataTransforms::rowAggregate(items, AggregateOp::sum, 0.5), (Column{9, none, none, none}));
    EXPECT_EQ(DataTransforms::rowAggregate(items, AggregateOp::mean, 0.3), (Column{3, 2, 4, none}));
    EXPECT_EQ(DataTransforms::rowAggregate(items, AggregateOp::minimum, 0), (Column{1, 2, 4, none}));
    EXPECT_EQ(DataTransforms::rowAggregate(items, AggregateOp::maximum, 0), (Column{5, 2, 4, none}));
}

} // namespace
} // namespace merivante
