#include "MerivanteCore/Statistics/OmegaReliabilityAnalyzer.h"

#include <cmath>
#include <string>
#include <utility>

#include "MerivanteCore/Statistics/LatentVariableSupport.h"
#include "MerivanteCore/Statistics/ReliabilityAnalyzer.h"

namespace merivante::OmegaReliabilityAnalyzer {
namespace {

std::optional<double> omegaTotal(const std::vector<double>& loadings) {
    double sum = 0, unique = 0;
    for (double loading : loadings) {
        sum += loading;
        unique += 1 - loading * loading;
    }
    const double denominator = sum * sum + unique;
    if (!(denominator > 0)) return std::nullopt;
    const double omega = sum * sum / denominator;
    return std::isfinite(omega) ? std::optional<double>(omega) : std::nullopt;
}

std::vector<std::string> reportingNotes(double omega, std::optional<double> alpha) {
    std::vector<std::string> notes{"Omega is internal-consistency evidence, not validity.",
                                   "This estimate assumes a single common factor (one-factor congeneric model).",
                                   "Omega does not assume equal item loadings; Cronbach alpha does (tau-equivalence)."};
    if (!alpha) return notes;
    const double difference = omega - *alpha;
    if (std::fabs(difference) < 0.0001)
        notes.emplace_back("Omega and alpha agree here, consistent with near-equal loadings.");
    else if (difference > 0)
        notes.emplace_back(
            "Omega exceeds alpha, consistent with unequal loadings where alpha underestimates reliability.");
    else
        notes.emplace_back("Alpha exceeds omega here; inspect dimensionality and item loadings.");
    return notes;
}

} // namespace

std::optional<OmegaReliabilityResult> analyze(const std::vector<std::vector<std::optional<double>>>& items) {
    auto prepared = LatentVariableSupport::prepare(items);
    if (!prepared) return std::nullopt;
    auto loadings = LatentVariableSupport::singleFactorLoadings(prepared->correlation, prepared->itemCount);
    if (!loadings) return std::nullopt;
    const auto omega = omegaTotal(*loadings);
    if (!omega) return std::nullopt;
    OmegaReliabilityResult result;
    result.itemCount = static_cast<std::int64_t>(prepared->itemCount);
    result.casesUsed = static_cast<std::int64_t>(prepared->completeRows.size());
    result.omegaTotal = *omega;
    result.loadings = std::move(*loadings);
    result.cronbachAlpha = ReliabilityAnalyzer::cronbachAlpha(prepared->completeRows);
    result.reportingNotes = reportingNotes(*omega, result.cronbachAlpha);
    result.readiness =
        LatentVariableSupport::readiness("McDonald omega", result.itemCount, prepared->totalRows, result.casesUsed);
    return result;
}

} // namespace merivante::OmegaReliabilityAnalyzer
