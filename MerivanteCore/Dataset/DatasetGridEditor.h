#pragma once

#include <optional>
#include <string>
#include <vector>

#include "MerivanteCore/Dataset/ImportedDataset.h"

// Keeps a dataset consistent while its grid is edited by hand.
namespace merivante::DatasetGridEditor {

// Header names as an import makes them: blanks named "Column n", repeats numbered.
std::vector<std::string> sanitizeHeaders(const std::vector<std::string>& headers);

// Classifies every column again and rebuilds the metadata from the grid as it now stands,
// keeping the source kind and worksheet name.
void refreshMetadata(ImportedDataset& dataset);

// Variables and metadata made from the grid alone: one row report per row, numbered from 2.
void rebuild(ImportedDataset& dataset, ImportSourceKind sourceKind, const std::optional<std::string>& worksheetName,
             std::vector<ImportReadinessIssue> issues);

} // namespace merivante::DatasetGridEditor
