#include "MerivanteCore/Dataset/ImportedDataset.h"

#include <algorithm>

#include "MerivanteCore/Dataset/DatasetNumbers.h"
#include "MerivanteCore/Dataset/ImportReadinessBuilder.h"
#include "MerivanteCore/Dataset/MissingValue.h"

namespace merivante {

std::vector<std::string> ImportedDataset::values(std::string_view variableName) const {
    const auto header = std::find(headers.begin(), headers.end(), variableName);
    if (header == headers.end()) return {};
    const auto index = static_cast<std::size_t>(header - headers.begin());
    std::vector<std::string> column;
    column.reserve(rows.size());
    for (const auto& row : rows) column.push_back(index < row.size() ? row[index] : std::string());
    return column;
}

std::vector<std::optional<double>> ImportedDataset::numericValues(std::string_view variableName) const {
    std::vector<std::optional<double>> numbers;
    for (const std::string& value : values(variableName)) {
        numbers.push_back(MissingValue::isMissing(value) ? std::nullopt : parseNumber(value));
    }
    return numbers;
}

void ImportedDataset::finishDecoding(ImportedDataset& dataset, const platform::json::JsonObjectReader& reader) {
    if (reader.find("importMetadata")) return;
    dataset.importMetadata = ImportReadinessBuilder::metadata(
        ImportSourceKind::unknown, std::nullopt, dataset.headers, dataset.rows,
        ImportReadinessBuilder::positionalReports(dataset.rows, dataset.headers.size()), {});
}

} // namespace merivante
