#pragma once

#include <string>
#include <tuple>

#include "MibrelCore/Model/TeskValueTypes.h"

namespace mibrel {

// The setting and positionality every code and theme is read against.
struct TeskContextLens {
    std::string setting;
    std::string population;
    std::string culturalContext;
    std::string institutionalContext;
    std::string positionality;
    std::string consequences;

    bool operator==(const TeskContextLens&) const = default;

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = TeskContextLens;
        return std::tuple{required("consequences", &T::consequences), required("culturalContext", &T::culturalContext),
                          required("institutionalContext", &T::institutionalContext),
                          required("population", &T::population), required("positionality", &T::positionality),
                          required("setting", &T::setting)};
    }
};

} // namespace mibrel
