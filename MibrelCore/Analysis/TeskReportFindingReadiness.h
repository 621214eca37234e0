#pragma once

#include <cstdint>
#include <string>
#include <tuple>
#include <vector>

#include "MibrelCore/Model/TeskValueTypes.h"

namespace mibrel {

// What would weaken one staged finding in the report.
struct TeskReportFindingReadiness {
    Uuid themeID;
    std::string title;
    std::string claim;
    std::int64_t applicationCount = 0;
    std::int64_t sourceSpread = 0;
    std::int64_t quoteCount = 0;
    std::vector<std::string> warnings;

    const Uuid& id() const { return themeID; }
    bool isReady() const { return warnings.empty(); }
    bool operator==(const TeskReportFindingReadiness&) const = default;

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = TeskReportFindingReadiness;
        return std::tuple{required("applicationCount", &T::applicationCount), required("claim", &T::claim),
                          required("quoteCount", &T::quoteCount), required("sourceSpread", &T::sourceSpread),
                          required("themeID", &T::themeID), required("title", &T::title),
                          required("warnings", &T::warnings)};
    }
};

} // namespace mibrel
