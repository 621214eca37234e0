#pragma once

#include <string>
#include <tuple>

#include "MibrelCore/Model/TeskValueTypes.h"

namespace mibrel {

// One line of the audit trail: an analytic decision and its subject. All keys are required.
struct TeskAuditEvent {
    Uuid id = Uuid::random();
    Date when = platform::now();
    std::string event;  // "code_created", "quote_added", …
    std::string detail; // short subject, may be empty

    bool operator==(const TeskAuditEvent&) const = default;

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = TeskAuditEvent;
        return std::tuple{required("detail", &T::detail), required("event", &T::event), required("id", &T::id),
                          required("when", &T::when)};
    }
};

} // namespace mibrel
