#pragma once

#include <string>
#include <tuple>

#include "MibrelCore/Model/TeskValueTypes.h"

namespace mibrel {

// A finding taken back to participants, and what they said.
struct TeskMemberCheck {
    Uuid id = Uuid::random();
    std::string date; // free text, as the researcher wrote it
    std::string finding;
    std::string outcome;
    std::string feedback;

    bool operator==(const TeskMemberCheck&) const = default;

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = TeskMemberCheck;
        return std::tuple{required("date", &T::date), required("feedback", &T::feedback),
                          required("finding", &T::finding), required("id", &T::id), required("outcome", &T::outcome)};
    }
};

} // namespace mibrel
