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
#include "Platform/Json/JsonFields.h"

// The records of a reliability analysis: how missing answers were handled, alpha with its
// item diagnostics and the words that go with it, and omega beside it.
namespace merivante {

// Answers by case: one row per case, one cell per item, absent where the item was not answered.
using ItemMatrix = std::vector<std::vector<std::optional<double>>>;

enum class ReliabilityMissingDataRule { listwiseDeletion, availableItemMean, excludeIfMissingMoreThanThreshold };

constexpr auto rawValueTable(std::type_identity<ReliabilityMissingDataRule>) {
    using enum ReliabilityMissingDataRule;
    using P = std::pair<ReliabilityMissingDataRule, std::string_view>;
    return std::array{P{listwiseDeletion, "listwise deletion"}, P{availableItemMean, "available-item mean"},
                      P{excludeIfMissingMoreThanThreshold, "exclude case if missing more than threshold"}};
}

// The rule's identity in saved settings is its raw value.
inline std::string_view id(ReliabilityMissingDataRule rule) { return platform::rawValue(rule); }

inline std::string_view displayName(ReliabilityMissingDataRule rule) {
    switch (rule) {
    case ReliabilityMissingDataRule::listwiseDeletion: return "Listwise deletion";
    case ReliabilityMissingDataRule::availableItemMean: return "Available-item mean";
    case ReliabilityMissingDataRule::excludeIfMissingMoreThanThreshold: return "Missing threshold";
    }
    return {};
}

enum class ScaleScoreMethod { mean, sum };

constexpr auto rawValueTable(std::type_identity<ScaleScoreMethod>) {
    using P = std::pair<ScaleScoreMethod, std::string_view>;
    return std::array{P{ScaleScoreMethod::mean, "mean"}, P{ScaleScoreMethod::sum, "sum"}};
}

inline std::string_view displayName(ScaleScoreMethod method) {
    return method == ScaleScoreMethod::sum ? "Sum score" : "Mean score";
}

struct ReliabilityMethodMetadata {
    std::string analysisType = "Cronbach alpha";
    std::string formula = "raw-score alpha from sample item variances and sample total-score variance";
    ReliabilityMissingDataRule missingDataRule = ReliabilityMissingDataRule::listwiseDeletion;
    ScaleScoreMethod scaleScoreMethod = ScaleScoreMethod::mean;
    double minimumItemCompletion = 0;
    std::int64_t inputRows = 0;
    std::int64_t casesUsed = 0;
    std::int64_t itemCount = 0;
    std::string engineVersion = "Merivante native 0.1.0";
    std::vector<std::string> reportingNotes{"Cronbach alpha estimates internal consistency, not validity.",
                                            "Item diagnostics use corrected item-total correlations and "
                                            "alpha-if-deleted."};

    bool operator==(const ReliabilityMethodMetadata&) const = default;

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = ReliabilityMethodMetadata;
        return std::tuple{required("analysisType", &T::analysisType),
                          required("casesUsed", &T::casesUsed),
                          required("engineVersion", &T::engineVersion),
                          required("formula", &T::formula),
                          required("inputRows", &T::inputRows),
                          required("itemCount", &T::itemCount),
                          required("minimumItemCompletion", &T::minimumItemCompletion),
                          required("missingDataRule", &T::missingDataRule),
                          required("reportingNotes", &T::reportingNotes),
                          required("scaleScoreMethod", &T::scaleScoreMethod)};
    }
};

struct ReliabilityItemStatistic {
    std::string itemName;
    std::optional<double> mean;
    std::optional<double> standardDeviation;
    std::int64_t missingCount = 0; // over the rows as given, before any were dropped or filled
    std::optional<double> correctedItemTotalCorrelation;
    std::optional<double> alphaIfDeleted;

    bool operator==(const ReliabilityItemStatistic&) const = default;

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = ReliabilityItemStatistic;
        return std::tuple{optional("alphaIfDeleted", &T::alphaIfDeleted),
                          optional("correctedItemTotalCorrelation", &T::correctedItemTotalCorrelation),
                          required("itemName", &T::itemName),
                          optional("mean", &T::mean),
                          required("missingCount", &T::missingCount),
                          optional("standardDeviation", &T::standardDeviation)};
    }
};

struct ReliabilityResult {
    std::string constructName;
    std::vector<std::string> itemNames;
    std::int64_t casesUsed = 0;
    ReliabilityMissingDataRule missingDataRule = ReliabilityMissingDataRule::listwiseDeletion;
    std::optional<double> alpha;
    std::optional<double> averageInterItemCorrelation;
    std::optional<double> scaleScoreMean;
    std::optional<double> scaleScoreStandardDeviation;
    std::vector<ReliabilityItemStatistic> itemStatistics;
    std::vector<std::vector<std::optional<double>>> interItemCorrelationMatrix; // absent cells are written as null
    std::vector<std::string> warnings;
    std::string interpretation;
    std::string recommendedAction;
    std::optional<AnalysisReadiness> readiness;
    std::optional<ReliabilityMethodMetadata> methodMetadata;

    bool operator==(const ReliabilityResult&) const = default;

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = ReliabilityResult;
        return std::tuple{optional("alpha", &T::alpha),
                          optional("averageInterItemCorrelation", &T::averageInterItemCorrelation),
                          required("casesUsed", &T::casesUsed),
                          required("constructName", &T::constructName),
                          required("interItemCorrelationMatrix", &T::interItemCorrelationMatrix),
                          required("interpretation", &T::interpretation),
                          required("itemNames", &T::itemNames),
                          required("itemStatistics", &T::itemStatistics),
                          optional("methodMetadata", &T::methodMetadata),
                          required("missingDataRule", &T::missingDataRule),
                          optional("readiness", &T::readiness),
                          required("recommendedAction", &T::recommendedAction),
                          optional("scaleScoreMean", &T::scaleScoreMean),
                          optional("scaleScoreStandardDeviation", &T::scaleScoreStandardDeviation),
                          required("warnings", &T::warnings)};
    }
};

struct OmegaReliabilityResult {
    std::int64_t itemCount = 0;
    std::int64_t casesUsed = 0;
    double omegaTotal = 0;
    std::vector<double> loadings;
    std::optional<double> cronbachAlpha;
    std::vector<std::string> reportingNotes;
    std::optional<AnalysisReadiness> readiness;

    bool operator==(const OmegaReliabilityResult&) const = default;

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = OmegaReliabilityResult;
        return std::tuple{required("casesUsed", &T::casesUsed),     optional("cronbachAlpha", &T::cronbachAlpha),
                          required("itemCount", &T::itemCount),     required("loadings", &T::loadings),
                          required("omegaTotal", &T::omegaTotal),   optional("readiness", &T::readiness),
                          required("reportingNotes", &T::reportingNotes)};
    }
};

} // namespace merivante
