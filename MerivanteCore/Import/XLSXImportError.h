#pragma once

#include <cstdint>
#include <exception>
#include <string>
#include <utility>

namespace merivante {

// Why an Excel workbook could not become a dataset; `what()` is the message for the user.
class XLSXImportError : public std::exception {
public:
    enum class Kind {
        unzipFailed,
        noDataRows,
        xmlParseFailed,
        missingWorkbook,
        missingWorksheet,
        noReadableWorksheet,
        noHeaderRow
    };

    static XLSXImportError unzipFailed(std::string detail);
    static XLSXImportError noDataRows(std::int64_t columnCount);
    static XLSXImportError xmlParseFailed(std::string detail);
    static XLSXImportError missingWorkbook();
    static XLSXImportError missingWorksheet();
    static XLSXImportError noReadableWorksheet();
    static XLSXImportError noHeaderRow();

    Kind kind() const { return m_kind; }
    // The archive's or the parser's own words, for unzipFailed and xmlParseFailed.
    const std::string& detail() const { return m_detail; }
    std::int64_t columnCount() const { return m_columnCount; }
    const std::string& errorDescription() const { return m_description; }
    const char* what() const noexcept override { return m_description.c_str(); }

private:
    XLSXImportError(Kind kind, std::string description) : m_kind(kind), m_description(std::move(description)) {}

    Kind m_kind;
    std::string m_description;
    std::string m_detail;
    std::int64_t m_columnCount = 0;
};

} // namespace merivante
