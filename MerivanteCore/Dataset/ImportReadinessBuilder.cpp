#include "MerivanteCore/Dataset/ImportReadinessBuilder.h"

#include <algorithm>
#include <thread>

#include "MerivanteCore/Dataset/ColumnProfile.h"
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

ImportColumnSummary columnSummary(const ColumnProfile& profile, std::size_t index, const std::string& header) {
    ImportColumnSummary summary{count(index + 1), header};
    summary.missingCount = profile.missingCount;
    summary.nonMissingCount = profile.nonMissingCount();
    summary.uniqueNonMissingCount = profile.uniqueCount;
    summary.numericCount = profile.numericCount;
    summary.textCount = summary.nonMissingCount - summary.numericCount;
    summary.observedMissingMarkers = profile.observedMissingMarkers;
    summary.sampleValues = profile.sampleValues;
    summary.numericSummary = profile.numericSummary;
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

NormalizedRows normalizeRows(std::size_t columnCount, std::vector<ImportSourceRow> rows) {
    NormalizedRows result;
    for (ImportSourceRow& row : rows) {
        if (std::all_of(row.values.begin(), row.values.end(), MissingValue::isMissing)) continue;
        const auto originalCount = count(row.values.size());
        row.values.resize(columnCount);
        result.rows.push_back(std::move(row.values));
        result.reports.push_back(ImportRowNormalizationReport::make(row.sourceRowNumber, originalCount, count(columnCount)));
    }
    return result;
}

std::vector<ImportRowNormalizationReport> positionalReports(const Rows& rows, std::size_t columnCount) {
    std::vector<ImportRowNormalizationReport> reports;
    reports.reserve(rows.size());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        reports.push_back(ImportRowNormalizationReport::make(count(i + 2), count(rows[i].size()), count(columnCount)));
    }
    return reports;
}

// Row by row, so each row's cells are read while in cache. On large tables the columns are
// shared between two threads, each with builders of its own so that neither writes to
// memory the other is reading.
std::vector<ColumnProfile> columnProfiles(std::size_t columnCount, const Rows& rows) {
    const auto profileColumns = [&rows, columnCount](std::size_t first, std::size_t step) {
        std::vector<ColumnProfileBuilder> builders((columnCount - first + step - 1) / step);
        for (const auto& row : rows) {
            for (std::size_t column = first, i = 0; column < columnCount; column += step, ++i) {
                builders[i].add(column < row.size() ? std::string_view(row[column]) : std::string_view());
            }
        }
        std::vector<ColumnProfile> profiles;
        for (ColumnProfileBuilder& builder : builders) profiles.push_back(builder.finish());
        return profiles;
    };
    if (columnCount < 2 || rows.size() * columnCount < 100'000) return profileColumns(0, 1);
    std::vector<ColumnProfile> odd;
    std::thread helper([&] { odd = profileColumns(1, 2); });
    std::vector<ColumnProfile> even = profileColumns(0, 2);
    helper.join();
    std::vector<ColumnProfile> profiles;
    profiles.reserve(columnCount);
    for (std::size_t column = 0; column < columnCount; ++column) {
        profiles.push_back(std::move(column % 2 == 0 ? even[column / 2] : odd[column / 2]));
    }
    return profiles;
}

ImportReadinessMetadata metadata(ImportSourceKind sourceKind, const std::optional<std::string>& worksheetName,
                                 const std::vector<std::string>& headers, const Rows& rows,
                                 const std::vector<ImportRowNormalizationReport>& rowReports,
                                 std::vector<ImportReadinessIssue> issues) {
    return metadata(sourceKind, worksheetName, headers, rows, rowReports, std::move(issues),
                    columnProfiles(headers.size(), rows));
}

ImportReadinessMetadata metadata(ImportSourceKind sourceKind, const std::optional<std::string>& worksheetName,
                                 const std::vector<std::string>& headers, const Rows& rows,
                                 const std::vector<ImportRowNormalizationReport>& rowReports,
                                 std::vector<ImportReadinessIssue> issues, const std::vector<ColumnProfile>& profiles) {
    ImportReadinessMetadata result;
    result.sourceKind = sourceKind;
    result.worksheetName = worksheetName;
    result.expectedColumnCount = result.columnCount = count(headers.size());
    result.rowCount = count(rows.size());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        result.rowSummaries.push_back(rowSummary(rows[i], i, rowReports, result.columnCount));
    }
    for (std::size_t i = 0; i < headers.size(); ++i) {
        result.columnSummaries.push_back(columnSummary(profiles[i], i, headers[i]));
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
