#include "MerivanteCore/Dataset/ImportReadinessBuilder.h"

#include <algorithm>
#include <array>
#include <numeric>
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

// `profiledMissing` counts the cells under the headers, which are the row's own cells
// unless the row is ragged.
ImportRowSummary rowSummary(const std::vector<std::string>& row, std::size_t index,
                            const std::vector<ImportRowNormalizationReport>& reports, std::int64_t headerCount,
                            std::int64_t profiledMissing) {
    const ImportRowNormalizationReport report =
        index < reports.size() ? reports[index]
                               : ImportRowNormalizationReport::make(count(index + 2), count(row.size()), headerCount);
    const std::int64_t missing = count(row.size()) == headerCount ? profiledMissing : missingCells(row);
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

// A column of mostly distinct answers (identifiers, timestamps) costs several times one of
// a few repeated answers; the first rows tell which is which.
std::vector<double> estimatedColumnCosts(std::size_t columnCount, const Rows& rows) {
    const std::size_t sample = std::min<std::size_t>(rows.size(), 1000);
    std::vector<double> costs;
    for (std::size_t column = 0; column < columnCount; ++column) {
        DistinctTextSet distinct;
        for (std::size_t row = 0; row < sample; ++row) {
            if (column < rows[row].size()) distinct.insert(rows[row][column]);
        }
        costs.push_back(1.0 + 3.0 * static_cast<double>(distinct.size()) / static_cast<double>(std::max<std::size_t>(sample, 1)));
    }
    return costs;
}

// Two lists of columns of about equal cost, the dearest placed first.
std::array<std::vector<std::size_t>, 2> balancedColumns(const std::vector<double>& costs) {
    std::vector<std::size_t> order(costs.size());
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) { return costs[a] > costs[b]; });
    std::array<std::vector<std::size_t>, 2> lists;
    std::array<double, 2> load{};
    for (const std::size_t column : order) {
        const std::size_t lighter = load[0] <= load[1] ? 0 : 1;
        lists[lighter].push_back(column);
        load[lighter] += costs[column];
    }
    return lists;
}

// Row by row, so each row's cells are read while in cache. On large tables the columns are
// shared between two threads, each with builders and row counts of its own so that neither
// writes to memory the other is reading.
TableProfile tableProfile(std::size_t columnCount, const Rows& rows) {
    const auto profileColumns = [&rows](const std::vector<std::size_t>& columns) {
        std::vector<ColumnProfileBuilder> builders(columns.size());
        TableProfile part;
        part.rowMissingCounts.reserve(rows.size());
        for (const auto& row : rows) {
            std::int64_t missing = 0;
            for (std::size_t i = 0; i < columns.size(); ++i) {
                const std::size_t column = columns[i];
                missing += builders[i].add(column < row.size() ? std::string_view(row[column]) : std::string_view());
            }
            part.rowMissingCounts.push_back(missing);
        }
        for (ColumnProfileBuilder& builder : builders) part.columns.push_back(builder.finish());
        return part;
    };
    if (columnCount < 2 || rows.size() * columnCount < 100'000) {
        std::vector<std::size_t> all(columnCount);
        std::iota(all.begin(), all.end(), 0);
        return profileColumns(all);
    }
    const auto lists = balancedColumns(estimatedColumnCosts(columnCount, rows));
    TableProfile second;
    std::thread helper([&] { second = profileColumns(lists[1]); });
    TableProfile first = profileColumns(lists[0]);
    helper.join();

    TableProfile profile;
    profile.rowMissingCounts = std::move(first.rowMissingCounts);
    for (std::size_t row = 0; row < rows.size(); ++row) profile.rowMissingCounts[row] += second.rowMissingCounts[row];
    profile.columns.resize(columnCount);
    for (std::size_t i = 0; i < lists[0].size(); ++i) profile.columns[lists[0][i]] = std::move(first.columns[i]);
    for (std::size_t i = 0; i < lists[1].size(); ++i) profile.columns[lists[1][i]] = std::move(second.columns[i]);
    return profile;
}

ImportReadinessMetadata metadata(ImportSourceKind sourceKind, const std::optional<std::string>& worksheetName,
                                 const std::vector<std::string>& headers, const Rows& rows,
                                 const std::vector<ImportRowNormalizationReport>& rowReports,
                                 std::vector<ImportReadinessIssue> issues) {
    return metadata(sourceKind, worksheetName, headers, rows, rowReports, std::move(issues),
                    tableProfile(headers.size(), rows));
}

ImportReadinessMetadata metadata(ImportSourceKind sourceKind, const std::optional<std::string>& worksheetName,
                                 const std::vector<std::string>& headers, const Rows& rows,
                                 const std::vector<ImportRowNormalizationReport>& rowReports,
                                 std::vector<ImportReadinessIssue> issues, const TableProfile& profile) {
    ImportReadinessMetadata result;
    result.sourceKind = sourceKind;
    result.worksheetName = worksheetName;
    result.expectedColumnCount = result.columnCount = count(headers.size());
    result.rowCount = count(rows.size());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        result.rowSummaries.push_back(
            rowSummary(rows[i], i, rowReports, result.columnCount, profile.rowMissingCounts[i]));
    }
    for (std::size_t i = 0; i < headers.size(); ++i) {
        result.columnSummaries.push_back(columnSummary(profile.columns[i], i, headers[i]));
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
