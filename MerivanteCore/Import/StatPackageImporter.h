#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "MerivanteCore/Dataset/ImportedDataset.h"
#include "MerivanteCore/Import/StatPackageImportError.h"

namespace merivante {

// The door for files written by statistical packages and by sibling survey tools: reads the
// file, calls its reader, and builds the dataset. Each import throws StatPackageImportError,
// or the file error of reading.
struct StatPackageImporter {
    ImportedDataset importSPSS(const std::filesystem::path& url) const;
    ImportedDataset importStata(const std::filesystem::path& url) const;
    ImportedDataset importMvkb(const std::filesystem::path& url) const;
    ImportedDataset importMvkbField(const std::filesystem::path& url) const;

    // Readers give rectangular rows, so they are taken as they are; the headers are made
    // unique and each variable keeps the label the file gave it.
    ImportedDataset build(std::string name, const std::vector<std::string>& variableNames,
                          const std::map<std::string, std::string>& variableLabels,
                          std::vector<std::vector<std::string>> rows) const;
};

} // namespace merivante
