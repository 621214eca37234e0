#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "MerivanteCore/Dataset/DataVariable.h"
#include "MerivanteCore/Dataset/ImportReadiness.h"
#include "Platform/Json/JsonFields.h"

namespace merivante {

// What every reader produces: the table as text, one variable per column, and the import's
// findings. Numbers and missingness are derived from the text, whatever the source was.
struct ImportedDataset {
    std::string name;
    std::vector<std::string> headers; // unique
    std::vector<std::vector<std::string>> rows; // each as long as `headers` after import
    std::vector<DataVariable> variables; // one per header, in order
    ImportReadinessMetadata importMetadata;

    bool operator==(const ImportedDataset&) const = default;

    std::int64_t rowCount() const { return static_cast<std::int64_t>(rows.size()); }
    std::int64_t columnCount() const { return static_cast<std::int64_t>(headers.size()); }

    // The column of the first header with this name; a short row gives "", an unknown name nothing.
    std::vector<std::string> values(std::string_view variableName) const;
    // The same column as numbers; a missing marker or a non-number is absent.
    std::vector<std::optional<double>> numericValues(std::string_view variableName) const;

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = ImportedDataset;
        return std::tuple{required("headers", &T::headers), defaulted("importMetadata", &T::importMetadata),
                          required("name", &T::name), required("rows", &T::rows),
                          required("variables", &T::variables)};
    }

    // Datasets saved without their import findings get them rebuilt from the table.
    static void finishDecoding(ImportedDataset& dataset, const platform::json::JsonObjectReader& reader);
};

} // namespace merivante
