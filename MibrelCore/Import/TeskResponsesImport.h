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
    enum class Kind { unreadable, empty, unclosedQuote };

    // `line` (from 1) is where an unclosed quote opened; the other kinds ignore it.
    explicit ImportError(Kind kind, std::int64_t line = 0);
    Kind kind() const { return m_kind; }

private:
    Kind m_kind;
};

// By the lower-cased ending: csv (separated by commas, or by semicolons or tabs where the
// first line holds more of those), tsv or xlsx; anything else is unreadable. Text files lose
// a leading byte order mark. Throws ImportError.
Table table(const std::filesystem::path& location);

// The delimited reader, walking user-perceived characters. Outside quotes LF, CR LF and a
// lone CR end a row; inside quotes they stay in the cell. A quote that never closes throws
// `unclosedQuote` rather than take the rest of the file into one cell.
Table tableFromDelimited(std::string_view text, std::string_view delimiter);

// The first worksheet ("xl/worksheets/sheet1.xml") with the shared strings resolved.
Table xlsxTable(const std::filesystem::path& location);

// "A1" → 0, "Z9" → 25, "AA3" → 26; case does not matter; never below 0.
std::int64_t columnIndex(std::string_view cellReference);

// An entry of a ZIP archive; absent for a missing entry, an empty one, a broken archive, or
// one that unpacks beyond the bound every archive reader keeps.
std::optional<std::string> unzipEntry(const std::filesystem::path& location, const std::string& entry);

} // namespace mibrel::TeskResponsesImport
