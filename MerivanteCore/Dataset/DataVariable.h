#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "MerivanteCore/Dataset/ImportReadiness.h"
#include "MerivanteCore/Dataset/ScaleRange.h"
#include "MerivanteCore/Dataset/VariableKind.h"
#include "Platform/Foundation/Uuid.h"
#include "Platform/Json/JsonFields.h"

namespace merivante {

// One column of a dataset with what was found in it and what the user decided about it.
struct DataVariable {
    platform::Uuid id;
    std::string name; // the column's header
    std::optional<std::string> label;
    VariableKind inferredType = VariableKind::textResponse;
    VariableKind assignedType = VariableKind::textResponse;
    std::optional<std::string> assignedConstruct;
    std::optional<ScaleRange> scaleRange;
    bool includeInReliability = false;
    bool includeInDescriptives = true;
    std::int64_t missingCount = 0;
    std::int64_t nonMissingCount = 0;
    std::int64_t uniqueCount = 0;
    std::optional<NumericSummary> numericSummary;
    std::vector<std::string> sampleValues;
    std::vector<std::string> warnings;

    bool operator==(const DataVariable&) const = default;

    // Also resets both inclusion choices to the kind's defaults: a new role discards the old picks.
    void assignType(VariableKind kind);

    bool isOutcomeSelectionCandidate() const;
    bool isGroupingSelectionCandidate(std::int64_t rowCount) const;

    // 12 levels for small datasets, half the rows from 24 rows on, never more than 30.
    static std::int64_t maximumGroupingLevelCount(std::int64_t rowCount);

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = DataVariable;
        return std::tuple{optional("assignedConstruct", &T::assignedConstruct),
                          required("assignedType", &T::assignedType),
                          required("id", &T::id),
                          required("includeInDescriptives", &T::includeInDescriptives),
                          required("includeInReliability", &T::includeInReliability),
                          required("inferredType", &T::inferredType),
                          optional("label", &T::label),
                          required("missingCount", &T::missingCount),
                          required("name", &T::name),
                          required("nonMissingCount", &T::nonMissingCount),
                          optional("numericSummary", &T::numericSummary),
                          required("sampleValues", &T::sampleValues),
                          optional("scaleRange", &T::scaleRange),
                          required("uniqueCount", &T::uniqueCount),
                          required("warnings", &T::warnings)};
    }
};

} // namespace merivante
