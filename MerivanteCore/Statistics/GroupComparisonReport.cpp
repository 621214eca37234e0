#include <algorithm>

#include "MerivanteCore/Statistics/GroupComparisonEngine.h"
#include "Platform/Foundation/EnumRawValues.h"

namespace merivante::GroupComparisonEngine {
namespace {

std::string effectWording(double value) {
    if (value < 0.01) return "The estimated effect appears very small; context matters.";
    if (value < 0.06) return "The estimated effect appears small; context matters.";
    if (value < 0.14) return "The estimated effect appears moderate; context matters.";
    return "The estimated effect appears large by conventional rules of thumb; context still matters.";
}

std::int64_t validGroupCount(const GroupComparisonAnalysisResult& result) {
    return std::count_if(result.groupSummaries.begin(), result.groupSummaries.end(),
                         [](const GroupSummary& summary) { return summary.n >= 2; });
}

std::string testChoiceReason(const GroupComparisonAnalysisResult& result, const GroupFlags& flags) {
    if (result.selectedVariant != ANOVAVariant::welch)
        return "Merivante used classic one-way ANOVA because the default homogeneity check did not flag unequal "
               "variances.";
    return std::string("Merivante used Welch ANOVA because group variances were flagged as unequal") +
           (flags.unevenSizes ? " and group sizes were uneven" : "") + ".";
}

std::string postHocSummary(const GroupComparisonAnalysisResult& result) {
    const std::string name(displayName(result.postHocMethod));
    std::vector<std::string> differing;
    for (const PairwiseComparisonResult& pair : result.pairwiseComparisons)
        if (pair.adjustedPValue < 0.05) differing.push_back(pair.groupA + " vs " + pair.groupB);
    if (differing.empty()) return "No " + name + " comparison is below p = .05.";
    std::string text;
    for (std::size_t i = 0; i < std::min<std::size_t>(differing.size(), 4); ++i)
        text += (i == 0 ? "" : "; ") + differing[i];
    return text + " differ after " + name + " adjustment.";
}

std::string readinessSummary(AnalysisReadinessStatus status) {
    switch (status) {
    case AnalysisReadinessStatus::ready: return "Ready";
    case AnalysisReadinessStatus::caution: return "Ready with cautions";
    case AnalysisReadinessStatus::blocked: break;
    }
    return "Blocked";
}

} // namespace

EffectSizeResult effectSizes(const GroupComparisonAnalysisResult& result) {
    EffectSizeResult sizes;
    const auto& classic = result.classicANOVA;
    if (classic && classic->ssBetween > 0 && classic->ssWithin > 0) {
        const double mse = classic->ssWithin / static_cast<double>(classic->dfWithin);
        sizes.etaSquared = classic->etaSquared;
        sizes.omegaSquared =
            std::max((classic->ssBetween - static_cast<double>(classic->dfBetween) * mse) /
                         (classic->ssBetween + classic->ssWithin + mse),
                     0.0);
    }
    if (result.kruskalWallis) sizes.epsilonSquared = result.kruskalWallis->etaSquared;
    const double worded = classic                 ? classic->etaSquared
                          : result.kruskalWallis ? result.kruskalWallis->etaSquared
                                                 : result.selectedANOVA.etaSquared;
    sizes.interpretation = effectWording(worded);
    return sizes;
}

std::vector<AssumptionWarning> warnings(const ReportInputs& inputs) {
    using enum WarningLevel;
    std::vector<AssumptionWarning> found;
    const auto& summaries = inputs.grouped.summaries;
    if (inputs.grouped.validGroups().size() < 2) found.push_back({serious, "Fewer than two valid groups are available."});
    for (const GroupSummary& summary : summaries)
        if (summary.n < 2) found.push_back({serious, summary.groupLabel + " has fewer than two valid outcome values."});
    if (inputs.grouped.validCases() < 30)
        found.push_back({caution, "Total valid N is below 30; treat results as exploratory."});
    if (inputs.flags.unevenSizes) found.push_back({caution, "Group sizes are uneven."});
    if (inputs.grouped.missingGroupRows >= 1)
        found.push_back({caution, std::to_string(inputs.grouped.missingGroupRows) +
                                      " rows were excluded because the group value was missing."});
    if (inputs.flags.missingDataImbalance)
        found.push_back({caution, "Missing outcome data are imbalanced across groups."});
    if (inputs.flags.varianceRatioAboveFour)
        found.push_back({caution, "The largest group variance is more than four times the smallest group variance."});
    if (inputs.bfP < 0.05)
        found.push_back({serious, (inputs.decisionTest ? inputs.decisionTest->testName : std::string("Variance")) +
                                      " test flags unequal variances."});
    if (inputs.flags.ordinalOrSkew)
        found.push_back({caution, "Skew or outlier patterns suggest reviewing Kruskal-Wallis as a sensitivity analysis."});
    if (!found.empty())
        found.push_back({info, "A p-value is available, but assumption warnings should be reported with the result."});
    return found;
}

GroupComparisonInterpretation interpretation(const GroupComparisonAnalysisResult& result, const GroupFlags& flags) {
    GroupComparisonInterpretation text;
    const std::string groups = std::to_string(validGroupCount(result)) + " groups using " +
                               std::string(displayName(result.selectedVariant)) + ".";
    text.summary = (result.selectedANOVA.pValue < 0.05 ? "Merivante found evidence that average "
                                                       : "Merivante did not find evidence that average ") +
                   result.outcomeName + " differs across " + groups;
    text.testChoiceReason = testChoiceReason(result, flags);
    text.postHocSummary = postHocSummary(result);
    for (const AssumptionWarning& warning : result.warnings)
        if (warning.level != WarningLevel::info) text.limitations.push_back(warning.message);
    if (flags.ordinalOrSkew)
        text.limitations.push_back("Kruskal-Wallis should be treated as a sensitivity check when assumptions are weak.");
    text.whatNotToClaim = {"Do not claim causation from this group comparison alone.",
                           "Do not claim which groups differ from the omnibus test without post-hoc evidence.",
                           "Do not ignore assumption warnings when reporting statistical significance."};
    return text;
}

GroupComparisonMethodFile methodFile(const GroupComparisonAnalysisResult& result,
                                     const std::optional<HomogeneityTestResult>& decisionTest,
                                     const std::string& missingDataRule) {
    GroupComparisonMethodFile file;
    file.analysisType = "one-way group comparison";
    file.outcomeVariable = result.outcomeName;
    file.groupingVariable = result.groupName;
    for (const GroupSummary& summary : result.groupSummaries)
        if (summary.n >= 2) file.groupsIncluded.push_back(summary.groupLabel);
    file.missingDataRule = missingDataRule;
    file.varianceTestUsed = decisionTest ? decisionTest->testName : "not available";
    file.assumptionDecisionRule = "Brown-Forsythe p < .05 selects Welch ANOVA as the primary omnibus test; otherwise "
                                  "classic one-way ANOVA is selected when available.";
    file.anovaVariantUsed = result.selectedVariant;
    const std::optional<ANOVAResult>* computed[] = {&result.classicANOVA, &result.welchANOVA,
                                                    &result.brownForsytheANOVA, &result.kruskalWallis};
    for (const auto* test : computed)
        if (*test) file.omnibusTestsComputed.push_back((*test)->variant);
    file.postHocMethodUsed = result.postHocMethod;
    file.recommendedPostHocMethod = result.recommendedPostHocMethod;
    file.postHocImplementationNote =
        "Tukey HSD (Tukey-Kramer for unequal n) is used when variances are equal, Games-Howell when they are not, and "
        "Dunn's test (Holm-adjusted) for the rank-based Kruskal-Wallis path. Tukey and Games-Howell use the "
        "studentized range distribution; all three are validated against R. Holm and Bonferroni pairwise t-tests "
        "remain available.";
    file.effectSizeMethod = "eta squared; omega squared; Kruskal-Wallis epsilon squared; pairwise Cohen's d/Hedges g";
    if (result.classicANOVA) {
        file.effectSizeMethods.push_back("eta squared from classic one-way ANOVA sums of squares");
        file.effectSizeMethods.push_back("omega squared from classic one-way ANOVA mean square error");
    }
    if (result.kruskalWallis) file.effectSizeMethods.push_back("epsilon squared from Kruskal-Wallis H");
    file.effectSizeMethods.push_back("pairwise Cohen's d and Hedges g for two-group contrasts");
    file.readinessSummary = readinessSummary(result.readiness.status);
    file.timestamp = platform::now();
    file.engineVersion = "Merivante native 0.1.0";
    file.warnings = result.warnings;
    return file;
}

} // namespace merivante::GroupComparisonEngine
