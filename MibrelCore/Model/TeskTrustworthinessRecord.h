#pragma once

#include <string>
#include <tuple>
#include <vector>

#include "MibrelCore/Model/TeskMemberCheck.h"
#include "MibrelCore/Model/TeskValueTypes.h"

namespace mibrel {

// Notes for the trustworthiness section. Every key may be missing, so partial
// records from older files load.
struct TeskTrustworthinessRecord {
    std::string reflexivityNotes;
    std::string limitationsNotes;
    std::string negativeCaseNotes;
    std::string auditTrailNotes;
    std::vector<TeskMemberCheck> memberChecks;

    bool operator==(const TeskTrustworthinessRecord&) const = default;

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = TeskTrustworthinessRecord;
        return std::tuple{defaulted("auditTrailNotes", &T::auditTrailNotes),
                          defaulted("limitationsNotes", &T::limitationsNotes),
                          defaulted("memberChecks", &T::memberChecks),
                          defaulted("negativeCaseNotes", &T::negativeCaseNotes),
                          defaulted("reflexivityNotes", &T::reflexivityNotes)};
    }
};

} // namespace mibrel
