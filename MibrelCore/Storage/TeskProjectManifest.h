#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <tuple>

#include "MibrelCore/Model/TeskValueTypes.h"

namespace mibrel {

// "manifest.json": what makes a folder a project, and which format it is in.
struct TeskProjectManifest {
    static constexpr std::int64_t currentFormatVersion = 1;

    std::int64_t formatVersion = currentFormatVersion;
    // Fixed names of the format, not the running program's version.
    std::string app = "Merivante Mibrel";
    std::string appVersion = "1.0.0";
    std::string title;
    std::optional<std::string> summary;
    Date createdAt = platform::now();
    Date updatedAt = createdAt;

    bool operator==(const TeskProjectManifest&) const = default;

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = TeskProjectManifest;
        return std::tuple{required("app", &T::app),
                          required("appVersion", &T::appVersion),
                          required("createdAt", &T::createdAt),
                          required("formatVersion", &T::formatVersion),
                          optional("summary", &T::summary),
                          required("title", &T::title),
                          required("updatedAt", &T::updatedAt)};
    }
};

} // namespace mibrel
