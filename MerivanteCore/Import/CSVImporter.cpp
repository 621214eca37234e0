#include "MerivanteCore/Import/CSVImporter.h"

#include <utility>

#include "MerivanteCore/Dataset/ImportReadinessBuilder.h"
#include "MerivanteCore/Import/VariableClassifier.h"
#include "Platform/Files/FileSystem.h"
#include "Platform/Text/TextDecoding.h"

namespace merivante {

CSVImportError CSVImportError::unsupportedFileType(std::string extension) {
    CSVImportError error(Kind::unsupportedFileType, "Merivante Studio currently imports CSV or plain text files, not ." +
                                                        extension + " files.");
    error.m_extension = std::move(extension);
    return error;
}

CSVImportError CSVImportError::noDataRows(std::int64_t columnCount) {
    CSVImportError error(Kind::noDataRows, "The file has " + std::to_string(columnCount) +
                                               " column headers but no data rows. Export the worksheet as a normal CSV "
                                               "with one header row followed by respondent rows.");
    error.m_columnCount = columnCount;
    return error;
}

CSVImportError CSVImportError::unreadableTextEncoding() {
    return {Kind::unreadableTextEncoding, "The file could not be read as a text-based CSV. Try exporting it as UTF-8 CSV."};
}

std::optional<std::string> CSVImporter::decodeText(std::string_view bytes) {
    using platform::text::decodeStrict;
    if (auto text = platform::text::decodeUTF8Strict(bytes)) return text;
    if (bytes.starts_with("\xFF\xFE")) {
        if (auto text = decodeStrict(bytes.substr(2), "UTF-16LE")) return text;
    } else if (bytes.starts_with("\xFE\xFF")) {
        if (auto text = decodeStrict(bytes.substr(2), "UTF-16BE")) return text;
    }
    // Almost any even number of bytes reads as UTF-16, so without a mark it must at least
    // yield a line end; otherwise an accented Latin 1 export would turn into CJK characters.
    for (const char* charset : {"UTF-16LE", "UTF-16BE"}) {
        auto text = decodeStrict(bytes, charset);
        if (text && text->find_first_of("\n\r") != std::string::npos) return text;
    }
    for (const char* charset : {"ISO-8859-1", "windows-1252"}) {
        if (auto text = decodeStrict(bytes, charset)) return text;
    }
    return std::nullopt;
}

ImportedDataset CSVImporter::importCSV(const std::filesystem::path& url) const {
    const std::string extension = platform::files::lowercasedExtension(url);
    if (!extension.empty() && extension != "csv" && extension != "txt" && extension != "tsv") {
        throw CSVImportError::unsupportedFileType(extension);
    }
    const auto text = decodeText(platform::files::readFile(url));
    if (!text) throw CSVImportError::unreadableTextEncoding();
    return importCSV(platform::files::lastPathComponent(url), *text);
}

ImportedDataset CSVImporter::importCSV(std::string_view name, std::string_view content) const {
    CSVParseResult parsed = parser.parse(content);
    if (parsed.rows.empty()) throw CSVImportError::noDataRows(static_cast<std::int64_t>(parsed.headers.size()));
    auto headers = ImportReadinessBuilder::normalizedHeaders(parsed.headers);
    const auto profile = ImportReadinessBuilder::tableProfile(headers.headers.size(), parsed.rows);

    ImportedDataset dataset;
    dataset.name = std::string(name);
    for (std::size_t i = 0; i < profile.columns.size(); ++i) {
        dataset.variables.push_back(VariableClassifier::classify(headers.headers[i], profile.columns[i]));
    }
    dataset.importMetadata =
        ImportReadinessBuilder::metadata(ImportSourceKind::csv, std::nullopt, headers.headers, parsed.rows,
                                         parsed.rowReports, std::move(headers.issues), profile);
    dataset.headers = std::move(headers.headers);
    dataset.rows = std::move(parsed.rows);
    return dataset;
}

} // namespace merivante
