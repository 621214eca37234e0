#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "MerivanteCore/Dataset/ColumnProfile.h"
#include "MerivanteCore/Dataset/ImportReadiness.h"

// Shared by every reader: repairs headers and rows as they come and reports each repair.
namespace merivante::ImportReadinessBuilder {

struct NormalizedHeaders {
    std::vector<std::string> headers; // blanks named "Column n", repeats numbered
    std::vector<ImportReadinessIssue> issues;
};

struct NormalizedRows {
    std::vector<std::vector<std::string>> rows; // each exactly `columnCount` cells
    std::vector<ImportRowNormalizationReport> reports; // in step with `rows`
};

NormalizedHeaders normalizedHeaders(const std::vector<std::string>& headers);

// Rows holding nothing but missing markers are dropped without a word; the others are
// cut or padded to `columnCount`.
NormalizedRows normalizeRows(std::size_t columnCount, std::vector<ImportSourceRow> rows);

ImportReadinessMetadata metadata(ImportSourceKind sourceKind, const std::optional<std::string>& worksheetName,
                                 const std::vector<std::string>& headers,
                                 const std::vector<std::vector<std::string>>& rows,
                                 const std::vector<ImportRowNormalizationReport>& rowReports,
                                 std::vector<ImportReadinessIssue> issues);

// One report per row in grid order, numbered from 2 as if the rows came straight from a
// file under a header row; for datasets made or edited without a source file.
std::vector<ImportRowNormalizationReport> positionalReports(const std::vector<std::vector<std::string>>& rows,
                                                            std::size_t columnCount);

// One profile per column, a short row giving "", and the missing cells of each row.
// Importers classify their variables from it and hand it to `metadata`, so that the table
// is read once.
TableProfile tableProfile(std::size_t columnCount, const std::vector<std::vector<std::string>>& rows);

ImportReadinessMetadata metadata(ImportSourceKind sourceKind, const std::optional<std::string>& worksheetName,
                                 const std::vector<std::string>& headers,
                                 const std::vector<std::vector<std::string>>& rows,
                                 const std::vector<ImportRowNormalizationReport>& rowReports,
                                 std::vector<ImportReadinessIssue> issues, const TableProfile& profile);

} // namespace merivante::ImportReadinessBuilder
