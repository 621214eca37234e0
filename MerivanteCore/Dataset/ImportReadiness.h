#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "Platform/Json/JsonFields.h"

// What an import found and changed: the records every reader fills in the same way.
namespace merivante {

enum class ImportSourceKind { csv, xlsx, blank, unknown };
enum class ImportReadinessSeverity { warning, error };
enum class ImportReadinessIssueKind { emptyHeader, duplicateHeader, rowColumnMismatch };

constexpr auto rawValueTable(std::type_identity<ImportSourceKind>) {
    using enum ImportSourceKind;
    using P = std::pair<ImportSourceKind, std::string_view>;
    return std::array{P{csv, "csv"}, P{xlsx, "xlsx"}, P{blank, "blank"}, P{unknown, "unknown"}};
}
constexpr auto rawValueTable(std::type_identity<ImportReadinessSeverity>) {
    using P = std::pair<ImportReadinessSeverity, std::string_view>;
    return std::array{P{ImportReadinessSeverity::warning, "warning"}, P{ImportReadinessSeverity::error, "error"}};
}
constexpr auto rawValueTable(std::type_identity<ImportReadinessIssueKind>) {
    using enum ImportReadinessIssueKind;
    using P = std::pair<ImportReadinessIssueKind, std::string_view>;
    return std::array{P{emptyHeader, "emptyHeader"}, P{duplicateHeader, "duplicateHeader"},
                      P{rowColumnMismatch, "rowColumnMismatch"}};
}

struct ImportReadinessIssue {
    ImportReadinessSeverity severity = ImportReadinessSeverity::warning;
    ImportReadinessIssueKind kind = ImportReadinessIssueKind::emptyHeader;
    std::string message;
    std::optional<std::int64_t> sourceRowNumber; // the header row is row 1
    std::optional<std::int64_t> columnIndex;     // from 1
    std::optional<std::string> header;
    std::optional<std::int64_t> expectedColumnCount;
    std::optional<std::int64_t> actualColumnCount;

    bool operator==(const ImportReadinessIssue&) const = default;

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = ImportReadinessIssue;
        return std::tuple{optional("actualColumnCount", &T::actualColumnCount), optional("columnIndex", &T::columnIndex),
                          optional("expectedColumnCount", &T::expectedColumnCount), optional("header", &T::header),
                          required("kind", &T::kind), required("message", &T::message),
                          required("severity", &T::severity), optional("sourceRowNumber", &T::sourceRowNumber)};
    }
};

struct ImportRowNormalizationReport {
    std::int64_t sourceRowNumber = 0;
    std::int64_t originalColumnCount = 0;
    std::int64_t normalizedColumnCount = 0;
    std::int64_t extraFieldCount = 0;  // cells cut from a long row
    std::int64_t paddedFieldCount = 0; // blanks added to a short row

    bool operator==(const ImportRowNormalizationReport&) const = default;

    static ImportRowNormalizationReport make(std::int64_t sourceRowNumber, std::int64_t original, std::int64_t normalized) {
        return {sourceRowNumber, original, normalized, std::max<std::int64_t>(original - normalized, 0),
                std::max<std::int64_t>(normalized - original, 0)};
    }

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = ImportRowNormalizationReport;
        return std::tuple{required("extraFieldCount", &T::extraFieldCount),
                          required("normalizedColumnCount", &T::normalizedColumnCount),
                          required("originalColumnCount", &T::originalColumnCount),
                          required("paddedFieldCount", &T::paddedFieldCount),
                          required("sourceRowNumber", &T::sourceRowNumber)};
    }
};

// A data row as read, with its row number in the file (the header row is 1).
struct ImportSourceRow {
    std::int64_t sourceRowNumber = 0;
    std::vector<std::string> values;

    bool operator==(const ImportSourceRow&) const = default;
};

struct ImportRowSummary {
    std::int64_t dataRowIndex = 0; // from 1 among the kept rows
    std::int64_t sourceRowNumber = 0;
    std::int64_t missingCount = 0;
    std::int64_t nonMissingCount = 0;
    std::int64_t originalColumnCount = 0;
    std::int64_t normalizedColumnCount = 0;
    std::int64_t extraFieldCount = 0;
    std::int64_t paddedFieldCount = 0;

    bool operator==(const ImportRowSummary&) const = default;

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = ImportRowSummary;
        return std::tuple{required("dataRowIndex", &T::dataRowIndex), required("extraFieldCount", &T::extraFieldCount),
                          required("missingCount", &T::missingCount), required("nonMissingCount", &T::nonMissingCount),
                          required("normalizedColumnCount", &T::normalizedColumnCount),
                          required("originalColumnCount", &T::originalColumnCount),
                          required("paddedFieldCount", &T::paddedFieldCount),
                          required("sourceRowNumber", &T::sourceRowNumber)};
    }
};

struct NumericSummary {
    double minimum = 0;
    double maximum = 0;
    double mean = 0;

    bool operator==(const NumericSummary&) const = default;

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = NumericSummary;
        return std::tuple{required("maximum", &T::maximum), required("mean", &T::mean), required("minimum", &T::minimum)};
    }
};

struct ImportColumnSummary {
    std::int64_t columnIndex = 0; // from 1
    std::string header;
    std::int64_t missingCount = 0;
    std::int64_t nonMissingCount = 0;
    std::int64_t uniqueNonMissingCount = 0; // after trimming and lower-casing
    std::int64_t numericCount = 0;
    std::int64_t textCount = 0;
    std::map<std::string, std::int64_t> observedMissingMarkers;
    std::vector<std::string> sampleValues; // the first four answers, verbatim
    std::optional<NumericSummary> numericSummary;

    bool operator==(const ImportColumnSummary&) const = default;

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = ImportColumnSummary;
        return std::tuple{required("columnIndex", &T::columnIndex),
                          required("header", &T::header),
                          required("missingCount", &T::missingCount),
                          required("nonMissingCount", &T::nonMissingCount),
                          required("numericCount", &T::numericCount),
                          optional("numericSummary", &T::numericSummary),
                          required("observedMissingMarkers", &T::observedMissingMarkers),
                          required("sampleValues", &T::sampleValues),
                          required("textCount", &T::textCount),
                          required("uniqueNonMissingCount", &T::uniqueNonMissingCount)};
    }
};

struct ImportReadinessMetadata {
    ImportSourceKind sourceKind = ImportSourceKind::unknown;
    std::optional<std::string> worksheetName;
    std::int64_t expectedColumnCount = 0;
    std::int64_t rowCount = 0;
    std::int64_t columnCount = 0;
    std::int64_t totalCellCount = 0;
    std::int64_t missingCellCount = 0;
    std::int64_t nonMissingCellCount = 0;
    std::vector<std::string> missingValueMarkers;
    std::map<std::string, std::int64_t> observedMissingMarkers;
    std::vector<ImportRowSummary> rowSummaries;
    std::vector<ImportColumnSummary> columnSummaries;
    std::vector<ImportReadinessIssue> issues; // header issues, then row issues

    bool operator==(const ImportReadinessMetadata&) const = default;

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = ImportReadinessMetadata;
        return std::tuple{required("columnCount", &T::columnCount),
                          required("columnSummaries", &T::columnSummaries),
                          required("expectedColumnCount", &T::expectedColumnCount),
                          required("issues", &T::issues),
                          required("missingCellCount", &T::missingCellCount),
                          required("missingValueMarkers", &T::missingValueMarkers),
                          required("nonMissingCellCount", &T::nonMissingCellCount),
                          required("observedMissingMarkers", &T::observedMissingMarkers),
                          required("rowCount", &T::rowCount),
                          required("rowSummaries", &T::rowSummaries),
                          required("sourceKind", &T::sourceKind),
                          required("totalCellCount", &T::totalCellCount),
                          optional("worksheetName", &T::worksheetName)};
    }
};

} // namespace merivante
