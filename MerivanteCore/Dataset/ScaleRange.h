#pragma once

#include <optional>
#include <string>
#include <tuple>

#include "Platform/Json/JsonFields.h"

namespace merivante {

// The responses a scale item permits.
struct ScaleRange {
    std::optional<double> minimum;
    std::optional<double> maximum;

    bool operator==(const ScaleRange&) const = default;

    // "Not set", "1+", "up to 5", "1-5".
    std::string displayText() const;

    static constexpr auto jsonFields() {
        using namespace platform::json;
        return std::tuple{optional("maximum", &ScaleRange::maximum), optional("minimum", &ScaleRange::minimum)};
    }
};

} // namespace merivante
