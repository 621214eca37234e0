#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <tuple>

#include "MibrelCore/Model/TeskValueTypes.h"

namespace mibrel {

// The address of a passage: a segment of a source, optionally a character range in it.
// Equality compares all four fields, so a whole segment and a part of it differ.
struct TeskResponseRef {
    Uuid sourceID;
    std::string segmentID;
    std::optional<std::int64_t> charStart;
    std::optional<std::int64_t> charEnd;

    bool operator==(const TeskResponseRef&) const = default;

    // "{sourceID}|{segmentID}": offsets are left out, so passages match per segment.
    std::string key() const { return sourceID.uuidString() + "|" + segmentID; }

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = TeskResponseRef;
        return std::tuple{optional("charEnd", &T::charEnd), optional("charStart", &T::charStart),
                          required("segmentID", &T::segmentID), required("sourceID", &T::sourceID)};
    }
};

} // namespace mibrel
