#include "MerivanteCore/Dataset/ProjectArchive.h"

#include <utility>

#include "Platform/Json/JsonCoding.h"

namespace merivante {

ProjectArchive ProjectArchive::make(const ImportedDataset& dataset, std::vector<std::string> transformationLog,
                                    std::map<std::string, std::string> settings,
                                    const std::set<std::string>& reverseCodedNames,
                                    const std::set<std::string>& unreliableItemNames, platform::Date createdAt,
                                    platform::Date modifiedAt) {
    ProjectArchive archive;
    archive.datasetName = dataset.name;
    archive.headers = dataset.headers;
    archive.rows = dataset.rows;
    archive.variableStates.reserve(dataset.variables.size());
    for (const DataVariable& variable : dataset.variables) {
        archive.variableStates.push_back(ProjectVariableState::make(variable, reverseCodedNames.contains(variable.name),
                                                                    unreliableItemNames.contains(variable.name)));
    }
    archive.transformationLog = std::move(transformationLog);
    archive.settings = std::move(settings);
    archive.createdAt = createdAt;
    archive.modifiedAt = modifiedAt;
    return archive;
}

std::string ProjectArchive::encode() const { return platform::json::encode(*this); }

ProjectArchive ProjectArchive::decode(std::string_view data) {
    return platform::json::decode<ProjectArchive>(std::string(data));
}

} // namespace merivante
