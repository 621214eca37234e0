#include "MerivanteCore/Statistics/DistributionCall.h"

#include <array>
#include <functional>

#include "MerivanteCore/Statistics/MathDistributions.h"

namespace merivante {
namespace {

namespace D = MathDistributions;
using Arguments = const std::vector<double>&;

struct Entry {
    std::string_view name;
    std::string_view argumentNames;
    std::size_t arity;
    double (*call)(Arguments);
};

int count(double value) { return static_cast<int>(value); }

constexpr std::array<Entry, 13> kEntries{{
    {"chiSquareRightTailPValue", "x df", 2, [](Arguments a) { return D::chiSquareRightTailPValue(a[0], a[1]); }},
    {"fRightTailPValue", "f df1 df2", 3, [](Arguments a) { return D::fRightTailPValue(a[0], a[1], a[2]); }},
    {"studentTPValue", "t df", 2, [](Arguments a) { return D::studentTPValue(a[0], a[1]); }},
    {"studentTCDF", "t df", 2, [](Arguments a) { return D::studentTCDF(a[0], a[1]); }},
    {"studentTCritical", "twoTailedAlpha df", 2, [](Arguments a) { return D::studentTCritical(a[0], a[1]); }},
    {"regularizedIncompleteBeta", "a b x", 3,
     [](Arguments a) { return D::regularizedIncompleteBeta(a[0], a[1], a[2]); }},
    {"logGamma", "x", 1, [](Arguments a) { return D::logGamma(a[0]); }},
    {"gammaSeriesP", "a x", 2, [](Arguments a) { return D::gammaSeriesP(a[0], a[1]); }},
    {"gammaContinuedFractionQ", "a x", 2, [](Arguments a) { return D::gammaContinuedFractionQ(a[0], a[1]); }},
    {"betaContinuedFraction", "a b x", 3, [](Arguments a) { return D::betaContinuedFraction(a[0], a[1], a[2]); }},
    {"standardRangeCDF", "k w", 2, [](Arguments a) { return D::standardRangeCDF(count(a[0]), a[1]); }},
    {"studentizedRangeCDF", "q k df", 3,
     [](Arguments a) { return D::studentizedRangeCDF(a[0], count(a[1]), a[2]); }},
    {"studentizedRangeQuantile", "p k df", 3,
     [](Arguments a) { return D::studentizedRangeQuantile(a[0], count(a[1]), a[2]); }},
}};

} // namespace

std::optional<double> callDistribution(std::string_view name, const std::vector<double>& arguments) {
    for (const Entry& entry : kEntries) {
        if (entry.name == name) {
            if (arguments.size() != entry.arity) return std::nullopt;
            return entry.call(arguments);
        }
    }
    return std::nullopt;
}

std::vector<std::string> distributionSignatures() {
    std::vector<std::string> signatures;
    for (const Entry& entry : kEntries) signatures.push_back(std::string(entry.name) + " " + std::string(entry.argumentNames));
    return signatures;
}

} // namespace merivante
