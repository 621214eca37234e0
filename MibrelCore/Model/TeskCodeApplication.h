#pragma once

#include <optional>
#include <string>
#include <tuple>

#include "MibrelCore/Model/TeskResponseRef.h"
#include "MibrelCore/Model/TeskValueTypes.h"

namespace mibrel {

// One code applied to one passage. All keys are required except the excerpt.
struct TeskCodeApplication {
    Uuid id = Uuid::random();
    TeskResponseRef response;
    Uuid codeID;
    std::optional<std::string> excerpt;
    std::string memo;
    Date createdAt = platform::now();

    bool operator==(const TeskCodeApplication&) const = default;

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = TeskCodeApplication;
        return std::tuple{required("codeID", &T::codeID), required("createdAt", &T::createdAt),
                          optional("excerpt", &T::excerpt), required("id", &T::id), required("memo", &T::memo),
                          required("response", &T::response)};
    }
};

} // namespace mibrel
