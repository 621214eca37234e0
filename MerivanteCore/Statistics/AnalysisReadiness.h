#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "Platform/Json/JsonFields.h"

// Whether an analysis can run on the data it was given, and what to keep in mind when it does.
namespace merivante {

enum class AnalysisReadinessStatus { ready, caution, blocked };

constexpr auto rawValueTable(std::type_identity<AnalysisReadinessStatus>) {
    using enum AnalysisReadinessStatus;
    using P = std::pair<AnalysisReadinessStatus, std::string_view>;
    return std::array{P{ready, "ready"}, P{caution, "caution"}, P{blocked, "blocked"}};
}

struct AnalysisReadinessIssue {
    AnalysisReadinessStatus status = AnalysisReadinessStatus::ready;
    std::string message;

    bool operator==(const AnalysisReadinessIssue&) const = default;

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = AnalysisReadinessIssue;
        return std::tuple{required("message", &T::message), required("status", &T::status)};
    }
};

struct AnalysisReadiness {
    AnalysisReadinessStatus status = AnalysisReadinessStatus::ready;
    std::string minimumRequired;
    std::int64_t totalRows = 0;
    std::int64_t validCases = 0;
    std::optional<std::int64_t> usableGroups;
    std::vector<AnalysisReadinessIssue> issues;

    bool operator==(const AnalysisReadiness&) const = default;

    // The status follows from the issues: the worst of them, or ready when there are none.
    static AnalysisReadiness make(std::string minimumRequired, std::int64_t totalRows, std::int64_t validCases,
                                  std::optional<std::int64_t> usableGroups, std::vector<AnalysisReadinessIssue> issues) {
        AnalysisReadinessStatus status = AnalysisReadinessStatus::ready;
        for (const AnalysisReadinessIssue& issue : issues) {
            if (issue.status == AnalysisReadinessStatus::blocked) status = AnalysisReadinessStatus::blocked;
            else if (issue.status == AnalysisReadinessStatus::caution && status == AnalysisReadinessStatus::ready)
                status = AnalysisReadinessStatus::caution;
        }
        return {status, std::move(minimumRequired), totalRows, validCases, usableGroups, std::move(issues)};
    }

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = AnalysisReadiness;
        return std::tuple{required("issues", &T::issues), required("minimumRequired", &T::minimumRequired),
                          required("status", &T::status), required("totalRows", &T::totalRows),
                          optional("usableGroups", &T::usableGroups), required("validCases", &T::validCases)};
    }
};

} // namespace merivante
