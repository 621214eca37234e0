#include "MibrelCore/Storage/TeskProjectError.h"

namespace mibrel {

TeskProjectError TeskProjectError::unsupportedVersion(std::int64_t version) {
    return TeskProjectError(Kind::unsupportedVersion, "Project format version " + std::to_string(version) +
                                                          " is not supported by this version of Mibrel.");
}

TeskProjectError TeskProjectError::writeFailed(const std::string& reason) {
    return TeskProjectError(Kind::writeFailed, "Could not save project: " + reason);
}

TeskProjectError TeskProjectError::invalidPackage() {
    return TeskProjectError(Kind::invalidPackage, "This file is not a valid Merivante Mibrel project.");
}

} // namespace mibrel
