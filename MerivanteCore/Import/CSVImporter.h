#pragma once

#include <cstdint>
#include <exception>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "MerivanteCore/Dataset/ImportedDataset.h"
#include "MerivanteCore/Import/CSVParser.h"

namespace merivante {

// Why a delimited text file could not become a dataset; `what()` is the message for the user.
class CSVImportError : public std::exception {
public:
    enum class Kind { unsupportedFileType, noDataRows, unreadableTextEncoding };

    static CSVImportError unsupportedFileType(std::string extension);
    static CSVImportError noDataRows(std::int64_t columnCount);
    static CSVImportError unreadableTextEncoding();

    Kind kind() const { return m_kind; }
    const std::string& extension() const { return m_extension; }
    std::int64_t columnCount() const { return m_columnCount; }
    const std::string& errorDescription() const { return m_description; }
    const char* what() const noexcept override { return m_description.c_str(); }

private:
    CSVImportError(Kind kind, std::string description) : m_kind(kind), m_description(std::move(description)) {}

    Kind m_kind;
    std::string m_description;
    std::string m_extension;
    std::int64_t m_columnCount = 0;
};

// A delimited text file as a survey tool exports it, taken as it comes: the encoding and the
// delimiter are found, ragged rows are fitted, and every repair is reported in the metadata.
struct CSVImporter {
    CSVParser parser;

    // Throws CSVImportError, CSVParserError, or the file error of reading.
    ImportedDataset importCSV(const std::filesystem::path& url) const;
    // Throws CSVImportError or CSVParserError.
    ImportedDataset importCSV(std::string_view name, std::string_view content) const;

    // The first of UTF-8, UTF-16 with a byte order mark, UTF-16LE, UTF-16BE, ISO Latin 1 and
    // Windows-1252 that reads the bytes; UTF-16 without a mark only when it yields a line end.
    static std::optional<std::string> decodeText(std::string_view bytes);
};

} // namespace merivante
