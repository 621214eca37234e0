#pragma once

#include <map>
#include <set>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "MerivanteCore/Dataset/ImportedDataset.h"
#include "MerivanteCore/Dataset/MerivanteEngine.h"
#include "MerivanteCore/Dataset/ProjectVariableState.h"
#include "Platform/Foundation/Date.h"
#include "Platform/Json/JsonFields.h"

namespace merivante {

// A whole project in one JSON document: the table as text, the user's decisions about each
// variable, the log of transformations and free settings.
struct ProjectArchive {
    static constexpr std::string_view currentSchemaVersion = "1.0";
    static constexpr std::string_view fileExtension = "mvk";
    // Older archives carried the ending that folder packages use now; a folder tells them apart.
    static constexpr std::string_view legacyFileExtension = "merivante";

    std::string schemaVersion{currentSchemaVersion};
    std::string engineVersion{MerivanteEngine::version};
    std::string datasetName;
    std::vector<std::string> headers;
    std::vector<std::vector<std::string>> rows;
    std::vector<ProjectVariableState> variableStates; // one per variable, in the dataset's order
    std::vector<std::string> transformationLog;
    std::map<std::string, std::string> settings;
    platform::Date createdAt{};
    platform::Date modifiedAt{};

    bool operator==(const ProjectArchive&) const = default;

    // Names in the two sets are compared exactly; names no variable has are ignored.
    static ProjectArchive make(const ImportedDataset& dataset, std::vector<std::string> transformationLog,
                               std::map<std::string, std::string> settings,
                               const std::set<std::string>& reverseCodedNames,
                               const std::set<std::string>& unreliableItemNames, platform::Date createdAt,
                               platform::Date modifiedAt);

    // Pretty-printed with sorted keys; dates keep whole seconds only.
    std::string encode() const;
    // Any schema or engine version is read; throws platform::json::DecodingError.
    static ProjectArchive decode(std::string_view data);

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = ProjectArchive;
        return std::tuple{required("createdAt", &T::createdAt),
                          required("datasetName", &T::datasetName),
                          required("engineVersion", &T::engineVersion),
                          required("headers", &T::headers),
                          required("modifiedAt", &T::modifiedAt),
                          required("rows", &T::rows),
                          required("schemaVersion", &T::schemaVersion),
                          required("settings", &T::settings),
                          required("transformationLog", &T::transformationLog),
                          required("variableStates", &T::variableStates)};
    }
};

} // namespace merivante
