#pragma once

#include <cstdint>
#include <string>
#include <tuple>
#include <vector>

#include "MibrelCore/Model/TeskWorkspace.h"

namespace mibrel {

// Which parts of a good codebook entry one code has. Warnings never enter the score: a
// code can score 1.0 and still not be ready.
struct TeskCodeReadiness {
    Uuid codeID;
    std::string codeName;
    std::vector<std::string> completed;
    std::vector<std::string> missing;
    std::vector<std::string> warnings;

    const Uuid& id() const { return codeID; }
    std::int64_t completedCount() const { return static_cast<std::int64_t>(completed.size()); }
    std::int64_t totalCount() const { return static_cast<std::int64_t>(completed.size() + missing.size()); }
    double score() const {
        return totalCount() < 1 ? 0.0 : static_cast<double>(completedCount()) / static_cast<double>(totalCount());
    }
    bool isReady() const { return missing.empty() && warnings.empty(); }

    bool operator==(const TeskCodeReadiness&) const = default;

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = TeskCodeReadiness;
        return std::tuple{required("codeID", &T::codeID), required("codeName", &T::codeName),
                          required("completed", &T::completed), required("missing", &T::missing),
                          required("warnings", &T::warnings)};
    }
};

namespace TeskCodeReadinessEngine {

TeskCodeReadiness readiness(const TeskCode& code, const TeskWorkspace& workspace);
// One per code, in codebook order.
std::vector<TeskCodeReadiness> readiness(const TeskWorkspace& workspace);

} // namespace TeskCodeReadinessEngine

} // namespace mibrel
