#pragma once

#include <optional>
#include <string>
#include <tuple>

#include "MerivanteCore/Dataset/DataVariable.h"
#include "MerivanteCore/Dataset/ScaleRange.h"
#include "MerivanteCore/Dataset/VariableKind.h"
#include "Platform/Json/JsonFields.h"

namespace merivante {

// What the user decided about one variable. Counts, summaries and samples are left out:
// they are derived from the table again whenever the archive is opened.
struct ProjectVariableState {
    std::string name;
    std::optional<std::string> label;
    VariableKind assignedType = VariableKind::textResponse;
    std::optional<std::string> assignedConstruct;
    std::optional<ScaleRange> scaleRange;
    bool includeInReliability = false;
    bool includeInDescriptives = true;
    bool isReverseCoded = false;
    bool isUnreliableFlagged = false;

    bool operator==(const ProjectVariableState&) const = default;

    static ProjectVariableState make(const DataVariable& variable, bool isReverseCoded, bool isUnreliableFlagged) {
        return {variable.name,
                variable.label,
                variable.assignedType,
                variable.assignedConstruct,
                variable.scaleRange,
                variable.includeInReliability,
                variable.includeInDescriptives,
                isReverseCoded,
                isUnreliableFlagged};
    }

    // The two flags came later than the rest, so archives without them still open.
    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = ProjectVariableState;
        return std::tuple{optional("assignedConstruct", &T::assignedConstruct),
                          required("assignedType", &T::assignedType),
                          required("includeInDescriptives", &T::includeInDescriptives),
                          required("includeInReliability", &T::includeInReliability),
                          defaulted("isReverseCoded", &T::isReverseCoded),
                          defaulted("isUnreliableFlagged", &T::isUnreliableFlagged),
                          optional("label", &T::label),
                          required("name", &T::name),
                          optional("scaleRange", &T::scaleRange)};
    }
};

} // namespace merivante
