#include "MerivanteCore/Import/StatPackageImporter.h"

#include "MerivanteCore/Dataset/ImportReadinessBuilder.h"
#include "MerivanteCore/Import/MvkbFieldReader.h"
#include "MerivanteCore/Import/MvkbReader.h"
#include "MerivanteCore/Import/SPSSReader.h"
#include "MerivanteCore/Import/StataReader.h"
#include "MerivanteCore/Import/VariableClassifier.h"
#include "Platform/Files/FileSystem.h"

namespace merivante {
namespace {

std::optional<std::string> nonEmptyLabel(const std::map<std::string, std::string>& labels, const std::string& name) {
    const auto found = labels.find(name);
    if (found == labels.end() || found->second.empty()) return std::nullopt;
    return found->second;
}

std::vector<ImportRowNormalizationReport> rowReports(const std::vector<std::vector<std::string>>& rows,
                                                     std::size_t columnCount) {
    std::vector<ImportRowNormalizationReport> reports;
    reports.reserve(rows.size());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        reports.push_back(ImportRowNormalizationReport::make(static_cast<std::int64_t>(i + 2),
                                                             static_cast<std::int64_t>(rows[i].size()),
                                                             static_cast<std::int64_t>(columnCount)));
    }
    return reports;
}

// A package names its dataset by its title; without one, the file name serves.
std::string datasetName(const std::string& title, const std::filesystem::path& url) {
    return title.empty() ? platform::files::lastPathComponent(url) : title;
}

} // namespace

ImportedDataset StatPackageImporter::importSPSS(const std::filesystem::path& url) const {
    auto result = SPSSReader::read(platform::files::readFile(url));
    if (!result) throw StatPackageImportError::unreadableSPSS();
    return build(platform::files::lastPathComponent(url), result->variableNames, result->variableLabels,
                 std::move(result->rows));
}

ImportedDataset StatPackageImporter::importStata(const std::filesystem::path& url) const {
    auto result = StataReader::read(platform::files::readFile(url));
    if (!result) throw StatPackageImportError::unreadableStata();
    return build(platform::files::lastPathComponent(url), result->variableNames, result->variableLabels,
                 std::move(result->rows));
}

ImportedDataset StatPackageImporter::importMvkb(const std::filesystem::path& url) const {
    const auto package = MvkbReader::read(platform::files::readFile(url));
    if (!package) throw StatPackageImportError::unreadableMvkb();
    if (package->rows.empty() || package->headers.empty()) {
        throw StatPackageImportError::mvkbHasNoData(
            package->notes.empty()
                ? "This survey package has no embedded data. Import the matching data file to continue."
                : package->notes.front());
    }
    return build(datasetName(package->title, url), package->headers, {}, package->rows);
}

ImportedDataset StatPackageImporter::importMvkbField(const std::filesystem::path& url) const {
    const auto package = MvkbFieldReader::read(platform::files::readFile(url));
    if (!package) throw StatPackageImportError::unreadableMvkbField();
    if (package->rows.empty() || package->headers.empty()) {
        throw StatPackageImportError::mvkbHasNoData("This field package has no quantitative data to import.");
    }
    return build(datasetName(package->title, url), package->headers, package->labels, package->rows);
}

ImportedDataset StatPackageImporter::build(std::string name, const std::vector<std::string>& variableNames,
                                           const std::map<std::string, std::string>& variableLabels,
                                           std::vector<std::vector<std::string>> rows) const {
    if (rows.empty()) throw StatPackageImportError::noDataRows(static_cast<std::int64_t>(variableNames.size()));
    auto headers = ImportReadinessBuilder::normalizedHeaders(variableNames);
    const auto profile = ImportReadinessBuilder::tableProfile(headers.headers.size(), rows);

    ImportedDataset dataset;
    dataset.name = std::move(name);
    for (std::size_t i = 0; i < headers.headers.size(); ++i) {
        DataVariable variable = VariableClassifier::classify(headers.headers[i], profile.columns[i]);
        if (!variable.label || variable.label->empty()) {
            variable.label = nonEmptyLabel(variableLabels, i < variableNames.size() ? variableNames[i] : "");
            if (!variable.label) variable.label = nonEmptyLabel(variableLabels, headers.headers[i]);
        }
        dataset.variables.push_back(std::move(variable));
    }
    const auto reports = rowReports(rows, headers.headers.size());
    dataset.importMetadata = ImportReadinessBuilder::metadata(ImportSourceKind::unknown, std::nullopt, headers.headers,
                                                              rows, reports, std::move(headers.issues), profile);
    dataset.headers = std::move(headers.headers);
    dataset.rows = std::move(rows);
    return dataset;
}

} // namespace merivante
