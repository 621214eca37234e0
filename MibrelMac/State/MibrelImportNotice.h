#pragma once

#include <string>

#include "MibrelCore/Model/TeskValueTypes.h"

namespace mibrel {

// What the last import brought in, for the shell to announce.
struct MibrelImportNotice {
    Uuid id = Uuid::random();
    Uuid sourceID;
    std::string title;
    std::string detail;

    bool operator==(const MibrelImportNotice&) const = default;
};

} // namespace mibrel
