#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "MerivanteCore/Statistics/AnalysisReadiness.h"
#include "Platform/Foundation/Date.h"
#include "Platform/Json/JsonFields.h"

// The records of a one-way group comparison: what was computed, what was chosen and why.
namespace merivante {

struct NamedNumericGroup {
    std::string name;
    std::vector<double> values;

    bool operator==(const NamedNumericGroup&) const = default;

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = NamedNumericGroup;
        return std::tuple{required("name", &T::name), required("values", &T::values)};
    }
};

enum class WarningLevel { info, caution, serious };

constexpr auto rawValueTable(std::type_identity<WarningLevel>) {
    using enum WarningLevel;
    using P = std::pair<WarningLevel, std::string_view>;
    return std::array{P{info, "info"}, P{caution, "caution"}, P{serious, "serious"}};
}

struct AssumptionWarning {
    WarningLevel level = WarningLevel::info;
    std::string message;

    bool operator==(const AssumptionWarning&) const = default;

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = AssumptionWarning;
        return std::tuple{required("level", &T::level), required("message", &T::message)};
    }
};

enum class ANOVAVariant { classicOneWay, welch, brownForsythe, kruskalWallis };

constexpr auto rawValueTable(std::type_identity<ANOVAVariant>) {
    using enum ANOVAVariant;
    using P = std::pair<ANOVAVariant, std::string_view>;
    return std::array{P{classicOneWay, "classic_one_way_anova"}, P{welch, "welch_anova"},
                      P{brownForsythe, "brown_forsythe_anova"}, P{kruskalWallis, "kruskal_wallis"}};
}

constexpr std::string_view displayName(ANOVAVariant variant) {
    switch (variant) {
    case ANOVAVariant::classicOneWay: return "Classic one-way ANOVA";
    case ANOVAVariant::welch: return "Welch ANOVA";
    case ANOVAVariant::brownForsythe: return "Brown-Forsythe ANOVA";
    case ANOVAVariant::kruskalWallis: return "Kruskal-Wallis";
    }
    return {};
}

struct ANOVAResult {
    ANOVAVariant variant = ANOVAVariant::classicOneWay;
    double f = 0;
    std::int64_t dfBetween = 0;
    std::int64_t dfWithin = 0;
    double dfNumerator = 0;
    double dfDenominator = 0;
    double pValue = 1;
    double etaSquared = 0;
    double ssBetween = 0;
    double ssWithin = 0;

    bool operator==(const ANOVAResult&) const = default;

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = ANOVAResult;
        return std::tuple{required("dfBetween", &T::dfBetween),   required("dfDenominator", &T::dfDenominator),
                          required("dfNumerator", &T::dfNumerator), required("dfWithin", &T::dfWithin),
                          required("etaSquared", &T::etaSquared),   required("f", &T::f),
                          required("pValue", &T::pValue),           required("ssBetween", &T::ssBetween),
                          required("ssWithin", &T::ssWithin),       required("variant", &T::variant)};
    }
};

enum class PostHocMethod { tukeyHSD, gamesHowell, holmPairwiseT, bonferroniPairwiseT, dunn };

constexpr auto rawValueTable(std::type_identity<PostHocMethod>) {
    using enum PostHocMethod;
    using P = std::pair<PostHocMethod, std::string_view>;
    return std::array{P{tukeyHSD, "tukey_hsd"}, P{gamesHowell, "games_howell"}, P{holmPairwiseT, "holm_pairwise_t"},
                      P{bonferroniPairwiseT, "bonferroni_pairwise_t"}, P{dunn, "dunn"}};
}

constexpr std::string_view displayName(PostHocMethod method) {
    switch (method) {
    case PostHocMethod::tukeyHSD: return "Tukey HSD";
    case PostHocMethod::gamesHowell: return "Games-Howell";
    case PostHocMethod::holmPairwiseT: return "Holm pairwise t-tests";
    case PostHocMethod::bonferroniPairwiseT: return "Bonferroni pairwise t-tests";
    case PostHocMethod::dunn: return "Dunn test";
    }
    return {};
}

enum class LeveneCenter { mean, median };

constexpr auto rawValueTable(std::type_identity<LeveneCenter>) {
    using P = std::pair<LeveneCenter, std::string_view>;
    return std::array{P{LeveneCenter::mean, "mean"}, P{LeveneCenter::median, "median"}};
}

struct GroupSummary {
    std::string groupLabel;
    std::int64_t n = 0; // valid values
    std::int64_t missingN = 0;
    std::optional<double> mean, median, standardDeviation, variance, standardError, minimum, maximum;
    std::optional<double> confidenceIntervalLower, confidenceIntervalUpper; // 95% for the mean
    std::vector<double> validValues;

    bool operator==(const GroupSummary&) const = default;

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = GroupSummary;
        return std::tuple{optional("confidenceIntervalLower", &T::confidenceIntervalLower),
                          optional("confidenceIntervalUpper", &T::confidenceIntervalUpper),
                          required("groupLabel", &T::groupLabel),
                          optional("maximum", &T::maximum),
                          optional("mean", &T::mean),
                          optional("median", &T::median),
                          optional("minimum", &T::minimum),
                          required("missingN", &T::missingN),
                          required("n", &T::n),
                          optional("standardDeviation", &T::standardDeviation),
                          optional("standardError", &T::standardError),
                          required("validValues", &T::validValues),
                          optional("variance", &T::variance)};
    }
};

struct HomogeneityTestResult {
    std::string testName;
    double statistic = 0;
    double df1 = 0;
    double df2 = 0;
    double pValue = 1;
    std::string interpretation;
    WarningLevel warningLevel = WarningLevel::info;

    bool operator==(const HomogeneityTestResult&) const = default;

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = HomogeneityTestResult;
        return std::tuple{required("df1", &T::df1),
                          required("df2", &T::df2),
                          required("interpretation", &T::interpretation),
                          required("pValue", &T::pValue),
                          required("statistic", &T::statistic),
                          required("testName", &T::testName),
                          required("warningLevel", &T::warningLevel)};
    }
};

struct PairwiseComparisonResult {
    std::string groupA;
    std::string groupB;
    double meanDifference = 0;
    double standardError = 0;
    double testStatistic = 0;
    std::optional<double> degreesOfFreedom;
    double rawPValue = 1;
    double adjustedPValue = 1;
    std::optional<double> confidenceIntervalLower, confidenceIntervalUpper, effectSize, hedgesG;
    PostHocMethod method = PostHocMethod::tukeyHSD;
    std::string interpretation;

    bool operator==(const PairwiseComparisonResult&) const = default;

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = PairwiseComparisonResult;
        return std::tuple{required("adjustedPValue", &T::adjustedPValue),
                          optional("confidenceIntervalLower", &T::confidenceIntervalLower),
                          optional("confidenceIntervalUpper", &T::confidenceIntervalUpper),
                          optional("degreesOfFreedom", &T::degreesOfFreedom),
                          optional("effectSize", &T::effectSize),
                          required("groupA", &T::groupA),
                          required("groupB", &T::groupB),
                          optional("hedgesG", &T::hedgesG),
                          required("interpretation", &T::interpretation),
                          required("meanDifference", &T::meanDifference),
                          required("method", &T::method),
                          required("rawPValue", &T::rawPValue),
                          required("standardError", &T::standardError),
                          required("testStatistic", &T::testStatistic)};
    }
};

struct EffectSizeResult {
    std::optional<double> etaSquared, omegaSquared, epsilonSquared;
    std::string interpretation;

    bool operator==(const EffectSizeResult&) const = default;

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = EffectSizeResult;
        return std::tuple{optional("epsilonSquared", &T::epsilonSquared), optional("etaSquared", &T::etaSquared),
                          required("interpretation", &T::interpretation),
                          optional("omegaSquared", &T::omegaSquared)};
    }
};

struct GroupComparisonInterpretation {
    std::string summary;
    std::string testChoiceReason;
    std::string postHocSummary;
    std::vector<std::string> limitations;
    std::vector<std::string> whatNotToClaim;

    bool operator==(const GroupComparisonInterpretation&) const = default;

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = GroupComparisonInterpretation;
        return std::tuple{required("limitations", &T::limitations), required("postHocSummary", &T::postHocSummary),
                          required("summary", &T::summary), required("testChoiceReason", &T::testChoiceReason),
                          required("whatNotToClaim", &T::whatNotToClaim)};
    }
};

// A plain record of every decision, for the report of the analysis.
struct GroupComparisonMethodFile {
    std::string analysisType;
    std::string outcomeVariable;
    std::string groupingVariable;
    std::vector<std::string> groupsIncluded;
    std::string missingDataRule;
    double alphaLevel = 0.05;
    double confidenceLevel = 0.95;
    std::string varianceTestUsed;
    std::string assumptionDecisionRule;
    ANOVAVariant anovaVariantUsed = ANOVAVariant::classicOneWay;
    std::vector<ANOVAVariant> omnibusTestsComputed;
    PostHocMethod postHocMethodUsed = PostHocMethod::tukeyHSD;
    PostHocMethod recommendedPostHocMethod = PostHocMethod::tukeyHSD;
    std::string postHocImplementationNote;
    std::string effectSizeMethod;
    std::vector<std::string> effectSizeMethods;
    std::string readinessSummary;
    platform::Date timestamp{};
    std::string engineVersion;
    std::vector<AssumptionWarning> warnings;

    bool operator==(const GroupComparisonMethodFile&) const = default;

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = GroupComparisonMethodFile;
        return std::tuple{required("alphaLevel", &T::alphaLevel),
                          required("analysisType", &T::analysisType),
                          required("anovaVariantUsed", &T::anovaVariantUsed),
                          required("assumptionDecisionRule", &T::assumptionDecisionRule),
                          required("confidenceLevel", &T::confidenceLevel),
                          required("effectSizeMethod", &T::effectSizeMethod),
                          required("effectSizeMethods", &T::effectSizeMethods),
                          required("engineVersion", &T::engineVersion),
                          required("groupingVariable", &T::groupingVariable),
                          required("groupsIncluded", &T::groupsIncluded),
                          required("missingDataRule", &T::missingDataRule),
                          required("omnibusTestsComputed", &T::omnibusTestsComputed),
                          required("outcomeVariable", &T::outcomeVariable),
                          required("postHocImplementationNote", &T::postHocImplementationNote),
                          required("postHocMethodUsed", &T::postHocMethodUsed),
                          required("readinessSummary", &T::readinessSummary),
                          required("recommendedPostHocMethod", &T::recommendedPostHocMethod),
                          required("timestamp", &T::timestamp),
                          required("varianceTestUsed", &T::varianceTestUsed),
                          required("warnings", &T::warnings)};
    }
};

struct GroupComparisonAnalysisResult {
    std::string outcomeName;
    std::string groupName;
    AnalysisReadiness readiness;
    std::vector<GroupSummary> groupSummaries; // every group, the too-small ones included
    std::int64_t missingGroupRows = 0;
    std::vector<HomogeneityTestResult> homogeneityTests;
    ANOVAVariant selectedVariant = ANOVAVariant::classicOneWay;
    ANOVAResult selectedANOVA;
    std::optional<ANOVAResult> classicANOVA, welchANOVA, brownForsytheANOVA, kruskalWallis;
    PostHocMethod postHocMethod = PostHocMethod::tukeyHSD;
    PostHocMethod recommendedPostHocMethod = PostHocMethod::tukeyHSD;
    std::vector<PairwiseComparisonResult> pairwiseComparisons;
    std::vector<PairwiseComparisonResult> bonferroniComparisons;
    EffectSizeResult effectSizes;
    std::vector<AssumptionWarning> warnings;
    GroupComparisonInterpretation interpretation;
    GroupComparisonMethodFile methodFile;

    bool operator==(const GroupComparisonAnalysisResult&) const = default;

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = GroupComparisonAnalysisResult;
        return std::tuple{required("bonferroniComparisons", &T::bonferroniComparisons),
                          optional("brownForsytheANOVA", &T::brownForsytheANOVA),
                          optional("classicANOVA", &T::classicANOVA),
                          required("effectSizes", &T::effectSizes),
                          required("groupName", &T::groupName),
                          required("groupSummaries", &T::groupSummaries),
                          required("homogeneityTests", &T::homogeneityTests),
                          required("interpretation", &T::interpretation),
                          optional("kruskalWallis", &T::kruskalWallis),
                          required("methodFile", &T::methodFile),
                          required("missingGroupRows", &T::missingGroupRows),
                          required("outcomeName", &T::outcomeName),
                          required("pairwiseComparisons", &T::pairwiseComparisons),
                          required("postHocMethod", &T::postHocMethod),
                          required("readiness", &T::readiness),
                          required("recommendedPostHocMethod", &T::recommendedPostHocMethod),
                          required("selectedANOVA", &T::selectedANOVA),
                          required("selectedVariant", &T::selectedVariant),
                          required("warnings", &T::warnings),
                          optional("welchANOVA", &T::welchANOVA)};
    }
};

struct TTestResult {
    double t = 0;
    double degreesOfFreedom = 0;
    double pValue = 1;
    double effectSizeD = 0;
    double meanDifference = 0;

    bool operator==(const TTestResult&) const = default;

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = TTestResult;
        return std::tuple{required("degreesOfFreedom", &T::degreesOfFreedom), required("effectSizeD", &T::effectSizeD),
                          required("meanDifference", &T::meanDifference), required("pValue", &T::pValue),
                          required("t", &T::t)};
    }
};

struct ANOVAPairwiseComparison {
    std::string groupI;
    std::string groupJ;
    double meanDifference = 0;
    double standardError = 0;
    double pValue = 1;
    double lowerBound = 0;
    double upperBound = 0;

    bool operator==(const ANOVAPairwiseComparison&) const = default;

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = ANOVAPairwiseComparison;
        return std::tuple{required("groupI", &T::groupI), required("groupJ", &T::groupJ),
                          required("lowerBound", &T::lowerBound), required("meanDifference", &T::meanDifference),
                          required("pValue", &T::pValue), required("standardError", &T::standardError),
                          required("upperBound", &T::upperBound)};
    }
};

} // namespace merivante
