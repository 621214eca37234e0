#pragma once

#include <string>
#include <tuple>

#include "MibrelCore/Model/TeskValueTypes.h"

namespace mibrel {

// A note pinned to a moment of a recording.
struct TeskMediaNote {
    Uuid id = Uuid::random();
    double timestamp = 0; // seconds from the start
    std::string text;
    Date createdAt = platform::now();

    bool operator==(const TeskMediaNote&) const = default;

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = TeskMediaNote;
        return std::tuple{required("createdAt", &T::createdAt), required("id", &T::id), required("text", &T::text),
                          required("timestamp", &T::timestamp)};
    }
};

} // namespace mibrel
