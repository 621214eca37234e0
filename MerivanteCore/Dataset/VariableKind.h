#pragma once

#include <array>
#include <string_view>
#include <type_traits>
#include <utility>

namespace merivante {

// What a column is for; every selection of variables for an analysis rests on it.
enum class VariableKind {
    demographicBackground,
    status,
    psychometricItem,
    testItem,
    rubricItem,
    outcome,
    grouping,
    textResponse,
    administrative,
    exclude,
};

constexpr auto rawValueTable(std::type_identity<VariableKind>) {
    using enum VariableKind;
    using P = std::pair<VariableKind, std::string_view>;
    return std::array{P{demographicBackground, "demographic_background"},
                      P{status, "status"},
                      P{psychometricItem, "psychometric_item"},
                      P{testItem, "test_item"},
                      P{rubricItem, "rubric_item"},
                      P{outcome, "outcome"},
                      P{grouping, "grouping"},
                      P{textResponse, "text_response"},
                      P{administrative, "administrative"},
                      P{exclude, "exclude"}};
}

// "Ignore" for exclude, on purpose.
std::string_view displayName(VariableKind kind);

constexpr bool isReliabilityEligible(VariableKind kind) {
    return kind == VariableKind::psychometricItem || kind == VariableKind::testItem || kind == VariableKind::rubricItem;
}

constexpr bool isIgnoredForAnalysis(VariableKind kind) {
    return kind == VariableKind::administrative || kind == VariableKind::exclude;
}

constexpr bool includedInDescriptivesByDefault(VariableKind kind) { return !isIgnoredForAnalysis(kind); }

constexpr bool canServeAsDependentVariable(VariableKind kind) {
    return kind == VariableKind::status || isReliabilityEligible(kind) || kind == VariableKind::outcome;
}

constexpr bool canServeAsIndependentGroupingVariable(VariableKind kind) {
    return kind == VariableKind::demographicBackground || kind == VariableKind::status || isReliabilityEligible(kind) ||
           kind == VariableKind::grouping;
}

} // namespace merivante
