#pragma once

#include <array>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>

#include "MerivanteCore/Dataset/MerivanteEngine.h"
#include "Platform/Foundation/Date.h"
#include "Platform/Json/JsonFields.h"

namespace merivante {

// Whether a package holds its own copy of the data or only points at the original file.
enum class DatasetStorageMode {
    copy,
    pointer,
};

constexpr auto rawValueTable(std::type_identity<DatasetStorageMode>) {
    using enum DatasetStorageMode;
    using P = std::pair<DatasetStorageMode, std::string_view>;
    return std::array{P{copy, "copy"}, P{pointer, "pointer"}};
}

// "project.json" of a folder package: what the project is called and how it keeps its data.
struct MerivanteProjectManifest {
    std::string projectName;
    platform::Date createdAt = platform::now();
    std::string engineVersion{MerivanteEngine::version};
    DatasetStorageMode datasetMode = DatasetStorageMode::copy;

    bool operator==(const MerivanteProjectManifest&) const = default;

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = MerivanteProjectManifest;
        return std::tuple{required("createdAt", &T::createdAt),
                          required("datasetMode", &T::datasetMode),
                          required("engineVersion", &T::engineVersion),
                          required("projectName", &T::projectName)};
    }
};

} // namespace merivante
