#pragma once

#include <string>

#include "Platform/Foundation/Uuid.h"

namespace mibrel {

// The segment in focus in Read & Code.
struct MibrelCodingSelection {
    platform::Uuid sourceID;
    std::string segmentID;

    bool operator==(const MibrelCodingSelection&) const = default;
};

} // namespace mibrel
