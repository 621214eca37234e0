#include "MerivanteCore/Dataset/ImportReadinessBuilder.h"

#include <algorithm>
#include <set>

#include "MerivanteCore/Dataset/DatasetNumbers.h"
#include "MerivanteCore/Dataset/MissingValue.h"
#include "Platform/Text/Text.h"

namespace merivante::ImportReadinessBuilder {
namespace {

using Rows = std::vector<std::vector<std::string>>;

ImportReadinessIssue headerIssue(ImportReadinessIssueKind kind, std::string message, std::int64_t column,
                                 const std::string& header) {
    ImportReadinessIssue issue{ImportReadinessSeverity::warning, kind, std::move(message)};
    issue.columnIndex = column;
    issue.header = header;
    return issue;
}

std::int64_t count(std::size_t n) { return static_cast<std::int64_t>(n); }

std::int64_t missingCells(const std::vector<std::string>& row) {
    return count(static_cast<std::size_t>(
        std::count_if(row.begin(), row.end(), [](const std::string& cell) { return MissingValue::isMissing(cell); })));
}

ImportColumnSummary columnSummary(const Rows& rows, std::size_t index, const std::string& header) {
    ImportColumnSummary summary{count(index + 1), header};
    std::set<std::string> distinct;
    double sum = 0;
    for (const auto& row : rows) {
        const std::string value = index < row.size() ? row[index] : std::string();
        if (const auto marker = MissingValue::displayMarker(value)) {
            ++summary.observedMissingMarkers[*marker];
            ++summary.missingCount;
            continue;
        }
        ++summary.nonMissingCount;
        if (summary.sampleValues.size() < 4) summary.sampleValues.push_back(value);
        distinct.insert(platform::text::lowercased(platform::text::trimmed(value)));
        if (const auto number = parseNumber(value)) {
            if (!summary.numericSummary) summary.numericSummary = NumericSummary{*number, *number, 0};
            summary.numericSummary->minimum = std::min(summary.numericSummary->minimum, *number);
            summary.numericSummary->maximum = std::max(summary.numericSummary->maximum, *number);
            sum += *number;
            ++summary.numericCount;
        }
    }
    if (summary.numericSummary) summary.numericSummary->mean = sum / static_cast<double>(summary.numericCount);
    summary.uniqueNonMissingCount = count(distinct.size());
    summary.textCount = summary.nonMissingCount - summary.numericCount;
    return summary;
}

ImportRowSummary rowSummary(const std::vector<std::string>& row, std::size_t index,
                            const std::vector<ImportRowNormalizationReport>& reports, std::int64_t headerCount) {
    const ImportRowNormalizationReport report =
        index < reports.size() ? reports[index]
                               : ImportRowNormalizationReport::make(count(index + 2), count(row.size()), headerCount);
    const std::int64_t missing = missingCells(row);
    return {count(index + 1),           report.sourceRowNumber,
            missing,                    std::max<std::int64_t>(headerCount - missing, 0),
            report.originalColumnCount, report.normalizedColumnCount,
            report.extraFieldCount,     report.paddedFieldCount};
}

std::optional<ImportReadinessIssue> rowIssue(const ImportRowNormalizationReport& report) {
    const std::string row = "Row " + std::to_string(report.sourceRowNumber) + " has ";
    std::string message;
    if (report.extraFieldCount >= 1) {
        message = row + std::to_string(report.extraFieldCount) +
                  " more field(s) than the header; extra values were not imported.";
    } else if (report.paddedFieldCount >= 1) {
        message = row + std::to_string(report.paddedFieldCount) +
                  " fewer field(s) than the header; missing cells were padded as blank.";
    } else {
        return std::nullopt;
    }
    ImportReadinessIssue issue{ImportReadinessSeverity::warning, ImportReadinessIssueKind::rowColumnMismatch, message};
    issue.sourceRowNumber = report.sourceRowNumber;
    issue.expectedColumnCount = report.normalizedColumnCount;
    issue.actualColumnCount = report.originalColumnCount;
    return issue;
}

} // namespace

// A renamed header is not checked against the others: "a", "a", "a 2" gives "a", "a 2", "a 2".
NormalizedHeaders normalizedHeaders(const std::vector<std::string>& headers) {
    NormalizedHeaders result;
    std::map<std::string, int> seen;
    for (std::size_t i = 0; i < headers.size(); ++i) {
        const auto column = count(i + 1);
        const std::string trimmed = platform::text::trimmed(headers[i]);
        const std::string base = trimmed.empty() ? "Column " + std::to_string(column) : trimmed;
        const int sightings = ++seen[base];
        std::string unique = sightings == 1 ? base : base + " " + std::to_string(sightings);
        if (trimmed.empty()) {
            result.issues.push_back(headerIssue(ImportReadinessIssueKind::emptyHeader,
                                                "Column " + std::to_string(column) +
                                                    " had a blank header and was named " + unique + ".",
                                                column, unique));
        } else if (sightings > 1) {
            result.issues.push_back(headerIssue(ImportReadinessIssueKind::duplicateHeader,
                                                "Duplicate header " + base + " at column " + std::to_string(column) +
                                                    " was renamed " + unique + ".",
                                                column, unique));
        }
        result.headers.push_back(std::move(unique));
    }
    return result;
}

NormalizedRows normalizeRows(std::size_t columnCount, const std::vector<ImportSourceRow>& rows) {
    NormalizedRows result;
    for (const ImportSourceRow& row : rows) {
        if (missingCells(row.values) == count(row.values.size())) continue;
        std::vector<std::string> cells(row.values.begin(), row.values.begin() + static_cast<std::ptrdiff_t>(
                                                                                   std::min(columnCount, row.values.size())));
        cells.resize(columnCount);
        result.rows.push_back(std::move(cells));
        result.reports.push_back(
            ImportRowNormalizationReport::make(row.sourceRowNumber, count(row.values.size()), count(columnCount)));
    }
    return result;
}

ImportReadinessMetadata metadata(ImportSourceKind sourceKind, const std::optional<std::string>& worksheetName,
                                 const std::vector<std::string>& headers, const Rows& rows,
                                 const std::vector<ImportRowNormalizationReport>& rowReports,
                                 std::vector<ImportReadinessIssue> issues) {
    ImportReadinessMetadata result;
    result.sourceKind = sourceKind;
    result.worksheetName = worksheetName;
    result.expectedColumnCount = result.columnCount = count(headers.size());
    result.rowCount = count(rows.size());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        result.rowSummaries.push_back(rowSummary(rows[i], i, rowReports, result.columnCount));
    }
    for (std::size_t i = 0; i < headers.size(); ++i) {
        result.columnSummaries.push_back(columnSummary(rows, i, headers[i]));
        result.missingCellCount += result.columnSummaries.back().missingCount;
        for (const auto& [marker, seen] : result.columnSummaries.back().observedMissingMarkers) {
            result.observedMissingMarkers[marker] += seen;
        }
    }
    for (const ImportRowNormalizationReport& report : rowReports) {
        if (auto issue = rowIssue(report)) issues.push_back(std::move(*issue));
    }
    result.issues = std::move(issues);
    result.totalCellCount = result.rowCount * result.columnCount;
    result.nonMissingCellCount = result.totalCellCount - result.missingCellCount;
    result.missingValueMarkers = MissingValue::displayMarkers();
    return result;
}

} // namespace merivante::ImportReadinessBuilder
