#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

// Open-ended survey answers from a CSV, TSV or XLSX table, one respondent per row.
namespace mibrel::TeskResponsesImport {

struct Table {
    std::vector<std::string> headers;
    std::vector<std::vector<std::string>> rows; // ragged: each row keeps the cells it had

    bool operator==(const Table&) const = default;

    // The column with the longest average text (leftmost of equals); absent without headers or rows.
    std::optional<std::int64_t> suggestedTextColumn() const;
};

class ImportError : public std::runtime_error {
public:
    enum class Kind { unreadable, empty };

    explicit ImportError(Kind kind);
    Kind kind() const { return m_kind; }

private:
    Kind m_kind;
};

// By the lower-cased ending: csv, tsv or xlsx; anything else is unreadable. Throws ImportError.
Table table(const std::filesystem::path& location);

// The delimited reader, walking user-perceived characters (so a CR LF pair is one character,
// which ends no row: a CR LF file without quotes reads as one row and is refused as empty).
Table tableFromDelimited(std::string_view text, std::string_view delimiter);

// The first worksheet ("xl/worksheets/sheet1.xml") with the shared strings resolved.
Table xlsxTable(const std::filesystem::path& location);

// "A1" → 0, "Z9" → 25, "AA3" → 26; case does not matter; never below 0.
std::int64_t columnIndex(std::string_view cellReference);

// An entry of a ZIP archive; absent for a missing entry, an empty one or a broken archive.
std::optional<std::string> unzipEntry(const std::filesystem::path& location, const std::string& entry);

} // namespace mibrel::TeskResponsesImport
