#pragma once

#include <string>
#include <tuple>

#include "MibrelCore/Model/TeskValueTypes.h"

namespace mibrel {

// A theme staged for the report, with the writer's overrides. All keys are required.
struct TeskReportFinding {
    Uuid id = Uuid::random();
    Uuid themeID;
    std::string titleOverride;
    std::string claimOverride;
    std::string writerNote;
    bool includeExemplarQuotes = true;
    bool includeSupportingQuotes = true;
    bool includeCounterExamples = true;
    Date createdAt = platform::now();

    bool operator==(const TeskReportFinding&) const = default;

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = TeskReportFinding;
        return std::tuple{required("claimOverride", &T::claimOverride),
                          required("createdAt", &T::createdAt),
                          required("id", &T::id),
                          required("includeCounterExamples", &T::includeCounterExamples),
                          required("includeExemplarQuotes", &T::includeExemplarQuotes),
                          required("includeSupportingQuotes", &T::includeSupportingQuotes),
                          required("themeID", &T::themeID),
                          required("titleOverride", &T::titleOverride),
                          required("writerNote", &T::writerNote)};
    }
};

} // namespace mibrel
