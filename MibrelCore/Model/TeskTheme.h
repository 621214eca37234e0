#pragma once

#include <string>
#include <tuple>
#include <vector>

#include "MibrelCore/Model/TeskValueTypes.h"

namespace mibrel {

// An analytic theme built from codes and categories. Every key may be missing.
struct TeskTheme {
    Uuid id = Uuid::random();
    std::string name;
    std::string memo;
    std::string interpretiveClaim;
    std::vector<Uuid> codeIDs;
    std::vector<Uuid> categoryIDs;
    std::string contextLens;
    std::string counterEvidence;
    Date createdAt = platform::now();

    bool operator==(const TeskTheme&) const = default;

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = TeskTheme;
        return std::tuple{defaulted("categoryIDs", &T::categoryIDs), defaulted("codeIDs", &T::codeIDs),
                          defaulted("contextLens", &T::contextLens), defaulted("counterEvidence", &T::counterEvidence),
                          defaulted("createdAt", &T::createdAt),     defaulted("id", &T::id),
                          defaulted("interpretiveClaim", &T::interpretiveClaim),
                          defaulted("memo", &T::memo),               defaulted("name", &T::name)};
    }
};

} // namespace mibrel
