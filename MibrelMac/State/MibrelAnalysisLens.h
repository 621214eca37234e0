#pragma once

#include <array>
#include <string_view>
#include <type_traits>
#include <utility>

namespace mibrel {

// The views of the Analysis tool, in order; the raw value is the label shown.
enum class MibrelAnalysisLens {
    overview,
    codeFrequency,
    codeSourceMatrix,
    cooccurrence,
    wordFrequency,
    themeCoverage,
    codingStripes
};

constexpr auto rawValueTable(std::type_identity<MibrelAnalysisLens>) {
    using enum MibrelAnalysisLens;
    using P = std::pair<MibrelAnalysisLens, std::string_view>;
    return std::array{P{overview, "Corpus Overview"},    P{codeFrequency, "Code Frequency"},
                      P{codeSourceMatrix, "Code x Source"}, P{cooccurrence, "Co-occurrence"},
                      P{wordFrequency, "Word Frequency"}, P{themeCoverage, "Theme Coverage"},
                      P{codingStripes, "Coding Stripes"}};
}

} // namespace mibrel
