#pragma once

#include <string>
#include <tuple>
#include <vector>

#include "MibrelCore/Model/TeskValueTypes.h"

namespace mibrel {

// A group of codes. All keys are required.
struct TeskCategory {
    Uuid id = Uuid::random();
    std::string name;
    std::string memo;
    std::vector<Uuid> codeIDs;
    Date createdAt = platform::now();

    bool operator==(const TeskCategory&) const = default;

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = TeskCategory;
        return std::tuple{required("codeIDs", &T::codeIDs), required("createdAt", &T::createdAt),
                          required("id", &T::id), required("memo", &T::memo), required("name", &T::name)};
    }
};

} // namespace mibrel
