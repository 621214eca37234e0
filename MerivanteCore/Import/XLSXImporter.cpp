#include "MerivanteCore/Import/XLSXImporter.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include <zip.h>

#include "MerivanteCore/Dataset/ImportReadinessBuilder.h"
#include "MerivanteCore/Dataset/MissingValue.h"
#include "MerivanteCore/Import/SharedStringsParser.h"
#include "MerivanteCore/Import/VariableClassifier.h"
#include "MerivanteCore/Import/WorkbookRelationshipsParser.h"
#include "MerivanteCore/Import/WorkbookSheetParser.h"
#include "MerivanteCore/Import/WorksheetParser.h"
#include "MerivanteCore/Import/XLSXImportError.h"
#include "Platform/Compression/ZipFileRead.h"
#include "Platform/Files/FileSystem.h"
#include "Platform/Text/Text.h"

namespace merivante {
namespace {

struct ArchiveDiscard {
    void operator()(zip_t* archive) const { zip_discard(archive); }
};

struct FileClose {
    void operator()(zip_file_t* file) const { zip_fclose(file); }
};

// The workbook's parts, read straight from its bytes. Every failure of the archive itself
// is an unzip failure in libzip's words.
class WorkbookArchive {
public:
    explicit WorkbookArchive(std::string_view bytes) : m_limit(platform::compression::unpackLimit(bytes.size())) {
        zip_error_t error;
        zip_error_init(&error);
        m_archive.reset(open(bytes, &error));
        const std::string detail = m_archive ? std::string() : platform::text::trimmed(zip_error_strerror(&error));
        zip_error_fini(&error);
        if (!m_archive) throw XLSXImportError::unzipFailed(detail);
    }

    // Absent when the archive has no such part.
    std::optional<std::string> part(const std::string& name) const {
        const zip_int64_t index = zip_name_locate(m_archive.get(), name.c_str(), 0);
        if (index < 0) return std::nullopt;
        std::unique_ptr<zip_file_t, FileClose> file(zip_fopen_index(m_archive.get(), static_cast<zip_uint64_t>(index), 0));
        if (!file) throw XLSXImportError::unzipFailed(platform::text::trimmed(zip_strerror(m_archive.get())));
        auto unpacked = platform::compression::readZipFile(file.get(), m_limit);
        switch (unpacked.status) {
        case platform::compression::Unpacked::Status::complete: return std::move(unpacked.bytes);
        case platform::compression::Unpacked::Status::tooLarge:
            throw XLSXImportError::unzipFailed("Its part " + name + " unpacks to far more than any workbook holds.");
        case platform::compression::Unpacked::Status::corrupt: break;
        }
        throw XLSXImportError::unzipFailed(platform::text::trimmed(zip_file_strerror(file.get())));
    }

private:
    static zip_t* open(std::string_view bytes, zip_error_t* error) {
        // libzip opens an empty file as an empty archive; an empty workbook file is not one.
        if (bytes.empty()) {
            zip_error_set(error, ZIP_ER_NOZIP, 0);
            return nullptr;
        }
        zip_source_t* source = zip_source_buffer_create(bytes.data(), bytes.size(), 0, error);
        if (!source) return nullptr;
        zip_t* archive = zip_open_from_source(source, ZIP_RDONLY, error);
        // On success the archive owns the source; on failure it is still ours.
        if (!archive) zip_source_free(source);
        return archive;
    }

    std::unique_ptr<zip_t, ArchiveDiscard> m_archive;
    std::size_t m_limit; // what one part may unpack to
};

// A relationship target as a part name: from the package root when it starts with "/",
// otherwise from "xl". Absent when ".." climbs out of the package.
std::optional<std::string> partName(std::string_view target) {
    const bool fromRoot = target.starts_with('/');
    std::vector<std::string_view> segments;
    if (!fromRoot) segments.emplace_back("xl");
    while (!target.empty()) {
        const auto slash = target.find('/');
        const auto segment = target.substr(0, slash);
        target = slash == std::string_view::npos ? std::string_view() : target.substr(slash + 1);
        if (segment.empty() || segment == ".") continue;
        if (segment != "..") {
            segments.push_back(segment);
        } else if (segments.empty()) {
            return std::nullopt;
        } else {
            segments.pop_back();
        }
    }
    std::string name;
    for (const auto segment : segments) {
        if (!name.empty()) name += '/';
        name += segment;
    }
    return name;
}

std::optional<std::string> worksheetPartName(const WorkbookSheet& sheet,
                                             const std::map<std::string, std::string>& relationships) {
    const auto target = relationships.find(sheet.relationshipID);
    if (target == relationships.end()) return "xl/worksheets/sheet1.xml";
    return partName(target->second);
}

// Codebook sheets go last, so they are read only when no other sheet gives a dataset.
std::vector<WorkbookSheet> candidateOrder(std::vector<WorkbookSheet> sheets) {
    std::stable_partition(sheets.begin(), sheets.end(), [](const WorkbookSheet& sheet) {
        return !platform::text::localizedCaseInsensitiveContains(sheet.name, "codebook");
    });
    return sheets;
}

bool hasSeveralMeaningfulCells(const ImportSourceRow& row) {
    return std::count_if(row.values.begin(), row.values.end(),
                         [](const std::string& value) { return !MissingValue::isMissing(value); }) > 1;
}

} // namespace

ImportedDataset XLSXImporter::importXLSX(const std::filesystem::path& url) const {
    return importXLSX(platform::files::lastPathComponent(url), platform::files::readFile(url));
}

ImportedDataset XLSXImporter::importXLSX(std::string_view name, std::string_view bytes) const {
    const WorkbookArchive archive(bytes);
    const auto workbook = archive.part("xl/workbook.xml");
    if (!workbook) throw XLSXImportError::missingWorkbook();
    const auto sheets = candidateOrder(WorkbookSheetParser::parse(*workbook));

    std::map<std::string, std::string> relationships;
    if (const auto part = archive.part("xl/_rels/workbook.xml.rels")) relationships = WorkbookRelationshipsParser::parse(*part);
    std::vector<std::string> sharedStrings;
    if (const auto part = archive.part("xl/sharedStrings.xml")) sharedStrings = SharedStringsParser::parse(*part);

    std::optional<XLSXImportError> lastFailure;
    bool hadCandidate = false;
    for (const auto& sheet : sheets) {
        const auto partPath = worksheetPartName(sheet, relationships);
        const auto worksheet = partPath ? archive.part(*partPath) : std::nullopt;
        if (!worksheet) continue;
        hadCandidate = true;
        auto rows = WorksheetParser::parse(*worksheet, sharedStrings);
        try {
            return dataset(std::move(rows), name, sheet.name);
        } catch (const XLSXImportError& failure) {
            lastFailure = failure;
        }
    }
    if (lastFailure) throw *lastFailure;
    if (hadCandidate) throw XLSXImportError::noReadableWorksheet();
    throw XLSXImportError::missingWorksheet();
}

ImportedDataset XLSXImporter::dataset(std::vector<ImportSourceRow> rows, std::string_view sourceName,
                                      std::string_view sheetName) {
    // Title rows hold a single text, so the headers are the first row with more than one.
    const auto headerRow = std::find_if(rows.begin(), rows.end(), hasSeveralMeaningfulCells);
    if (headerRow == rows.end()) throw XLSXImportError::noHeaderRow();
    auto headers = ImportReadinessBuilder::normalizedHeaders(headerRow->values);
    if (headers.headers.empty()) throw XLSXImportError::noHeaderRow();

    const auto columnCount = headers.headers.size();
    std::vector<ImportSourceRow> dataRows(std::make_move_iterator(std::next(headerRow)),
                                          std::make_move_iterator(rows.end()));
    auto normalized = ImportReadinessBuilder::normalizeRows(columnCount, std::move(dataRows));
    if (normalized.rows.empty()) throw XLSXImportError::noDataRows(static_cast<std::int64_t>(columnCount));
    const auto profile = ImportReadinessBuilder::tableProfile(columnCount, normalized.rows);

    ImportedDataset dataset;
    dataset.name = std::string(sourceName);
    for (std::size_t i = 0; i < columnCount; ++i) {
        dataset.variables.push_back(VariableClassifier::classify(headers.headers[i], profile.columns[i]));
    }
    dataset.importMetadata = ImportReadinessBuilder::metadata(ImportSourceKind::xlsx, std::string(sheetName),
                                                              headers.headers, normalized.rows, normalized.reports,
                                                              std::move(headers.issues), profile);
    dataset.headers = std::move(headers.headers);
    dataset.rows = std::move(normalized.rows);
    return dataset;
}

} // namespace merivante
