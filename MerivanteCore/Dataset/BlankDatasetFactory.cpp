#include "MerivanteCore/Dataset/BlankDatasetFactory.h"

#include <algorithm>

#include "MerivanteCore/Dataset/DatasetGridEditor.h"
#include "MerivanteCore/Dataset/ImportReadinessBuilder.h"

namespace merivante::BlankDatasetFactory {

ImportedDataset make(std::string name, std::int64_t rows, std::int64_t columns,
                     const std::optional<std::vector<std::string>>& headers) {
    const auto columnCount = static_cast<std::size_t>(std::clamp<std::int64_t>(columns, 1, 200));
    const auto rowCount = static_cast<std::size_t>(std::clamp<std::int64_t>(rows, 1, 10'000));
    std::vector<std::string> names;
    if (headers && headers->size() == columnCount) {
        names = *headers;
    } else {
        for (std::size_t i = 1; i <= columnCount; ++i) names.push_back("Var" + std::to_string(i));
    }
    auto normalized = ImportReadinessBuilder::normalizedHeaders(names);
    ImportedDataset dataset;
    dataset.name = std::move(name);
    dataset.headers = std::move(normalized.headers);
    dataset.rows.assign(rowCount, std::vector<std::string>(columnCount));
    DatasetGridEditor::rebuild(dataset, ImportSourceKind::blank, "New dataset", std::move(normalized.issues));
    return dataset;
}

} // namespace merivante::BlankDatasetFactory
