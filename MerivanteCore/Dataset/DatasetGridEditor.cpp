#include "MerivanteCore/Dataset/DatasetGridEditor.h"

#include "MerivanteCore/Dataset/ImportReadinessBuilder.h"
#include "MerivanteCore/Import/VariableClassifier.h"

namespace merivante::DatasetGridEditor {

std::vector<std::string> sanitizeHeaders(const std::vector<std::string>& headers) {
    return ImportReadinessBuilder::normalizedHeaders(headers).headers;
}

void refreshMetadata(ImportedDataset& dataset) {
    const ImportReadinessMetadata previous = dataset.importMetadata;
    rebuild(dataset, previous.sourceKind, previous.worksheetName, {});
}

void rebuild(ImportedDataset& dataset, ImportSourceKind sourceKind, const std::optional<std::string>& worksheetName,
             std::vector<ImportReadinessIssue> issues) {
    const auto profile = ImportReadinessBuilder::tableProfile(dataset.headers.size(), dataset.rows);
    dataset.variables.clear();
    for (std::size_t i = 0; i < profile.columns.size(); ++i) {
        dataset.variables.push_back(VariableClassifier::classify(dataset.headers[i], profile.columns[i]));
    }
    dataset.importMetadata = ImportReadinessBuilder::metadata(
        sourceKind, worksheetName, dataset.headers, dataset.rows,
        ImportReadinessBuilder::positionalReports(dataset.rows, dataset.headers.size()), std::move(issues), profile);
}

} // namespace merivante::DatasetGridEditor
