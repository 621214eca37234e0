#include "MibrelCore/Import/TeskResponsesImport.h"

#include <algorithm>
#include <memory>

#include <zip.h>

#include "MibrelCore/Import/XLSXParsers.h"
#include "Platform/Compression/ZipFileRead.h"
#include "Platform/Files/FileSystem.h"
#include "Platform/Text/Text.h"
#include "Platform/Text/TextDecoding.h"

namespace mibrel::TeskResponsesImport {
namespace {

using Rows = std::vector<std::vector<std::string>>;

std::string describe(ImportError::Kind kind, std::int64_t line) {
    switch (kind) {
    case ImportError::Kind::unreadable: return "Could not read this file. Export it as .csv and try again.";
    case ImportError::Kind::empty: return "This file has no data rows.";
    case ImportError::Kind::unclosedQuote:
        return "A quoted cell in this file never closes: the quote mark on line " + std::to_string(line) +
               " has no partner. Fix that line, or export the table as .csv again.";
    }
    return {};
}

std::string readText(const std::filesystem::path& location) {
    std::string bytes;
    try {
        bytes = platform::files::readFile(location);
    } catch (const platform::files::FileError&) {
        throw ImportError(ImportError::Kind::unreadable);
    }
    auto text = platform::text::decodeDocumentText(bytes);
    if (!text) throw ImportError(ImportError::Kind::unreadable);
    return *text;
}

bool isBlankRow(const std::vector<std::string>& row) {
    return std::all_of(row.begin(), row.end(),
                       [](const std::string& cell) { return platform::text::trimmedOfBlanks(cell).empty(); });
}

// Blank rows go; the first row left is the header, trimmed; at least one data row must remain.
Table tableFromRows(Rows rows) {
    std::erase_if(rows, isBlankRow);
    if (rows.size() < 2) throw ImportError(ImportError::Kind::empty);
    Table table;
    for (const auto& header : rows.front()) table.headers.push_back(platform::text::trimmed(header));
    table.rows.assign(std::make_move_iterator(rows.begin() + 1), std::make_move_iterator(rows.end()));
    return table;
}

bool isLineEnd(std::string_view character) {
    return character == "\n" || character == "\r\n" || character == "\r";
}

// The delimited reader's state as it walks the text.
struct DelimitedWalk {
    std::string_view delimiter;
    bool inQuotes = false;
    bool stepOverQuote = false; // the second quote of a doubled pair inside quotes
    std::int64_t line = 1;      // of the file, counting breaks inside quotes too
    std::int64_t quoteLine = 0; // where the open quote began
    std::string cell;
    std::vector<std::string> row;
    Rows rows;

    void endCell() {
        row.push_back(std::move(cell));
        cell.clear();
    }

    void endRow() {
        endCell();
        rows.push_back(std::move(row));
        row.clear();
    }

    // `next` is the character after this one, or empty at the end.
    void take(std::string_view character, std::string_view next) {
        if (isLineEnd(character)) ++line;
        if (stepOverQuote) {
            stepOverQuote = false;
            return;
        }
        if (inQuotes) {
            if (character != "\"") {
                cell += character; // a line break inside quotes stays as the file has it
            } else if (next == "\"") {
                cell += '"';
                stepOverQuote = true;
            } else {
                inQuotes = false;
            }
        } else if (character == "\"") {
            inQuotes = true;
            quoteLine = line;
        } else if (character == delimiter) {
            endCell();
        } else if (isLineEnd(character)) {
            endRow(); // LF, CR LF and a lone CR alike: the line ends of every platform
        } else {
            cell += character;
        }
    }

    // A quote left open would have swallowed the rest of the file into one cell.
    void finish() {
        if (inQuotes) throw ImportError(ImportError::Kind::unclosedQuote, quoteLine);
        if (!cell.empty() || !row.empty()) endRow();
    }
};

// Spreadsheets in many locales write ".csv" with semicolons, and some exports with tabs:
// the first line decides, by which separator it holds most of outside quotes.
std::string_view csvDelimiter(std::string_view text) {
    std::size_t commas = 0;
    std::size_t semicolons = 0;
    std::size_t tabs = 0;
    bool quoted = false;
    for (const char byte : text) {
        if (byte == '"') quoted = !quoted;
        if (quoted) continue;
        if (byte == '\n' || byte == '\r') break;
        commas += byte == ',';
        semicolons += byte == ';';
        tabs += byte == '\t';
    }
    if (semicolons > commas && semicolons >= tabs) return ";";
    if (tabs > commas && tabs > semicolons) return "\t";
    return ",";
}

} // namespace

ImportError::ImportError(Kind kind, std::int64_t line) : std::runtime_error(describe(kind, line)), m_kind(kind) {}

std::optional<std::int64_t> Table::suggestedTextColumn() const {
    if (headers.empty() || rows.empty()) return std::nullopt;
    std::optional<std::int64_t> best;
    double bestAverage = 0;
    for (std::size_t column = 0; column < headers.size(); ++column) {
        std::size_t total = 0;
        std::size_t count = 0;
        for (const auto& row : rows) {
            if (column >= row.size()) continue;
            total += platform::text::characterCount(row[column]);
            ++count;
        }
        if (count == 0) continue;
        const double average = static_cast<double>(total) / static_cast<double>(count);
        if (!best || average > bestAverage) {
            best = static_cast<std::int64_t>(column);
            bestAverage = average;
        }
    }
    return best;
}

Table table(const std::filesystem::path& location) {
    const std::string extension = platform::files::lowercasedExtension(location);
    if (extension == "csv") {
        const std::string text = readText(location);
        return tableFromDelimited(text, csvDelimiter(text));
    }
    if (extension == "tsv") return tableFromDelimited(readText(location), "\t");
    if (extension == "xlsx") return xlsxTable(location);
    throw ImportError(ImportError::Kind::unreadable);
}

Table tableFromDelimited(std::string_view text, std::string_view delimiter) {
    DelimitedWalk walk{delimiter};
    // Each character is taken with the one after it, for the doubled quote inside quotes.
    std::string_view previous;
    bool havePrevious = false;
    platform::text::forEachCharacter(text, [&](std::string_view character) {
        if (havePrevious) walk.take(previous, character);
        previous = character;
        havePrevious = true;
    });
    if (havePrevious) walk.take(previous, {});
    walk.finish();
    return tableFromRows(std::move(walk.rows));
}

Table xlsxTable(const std::filesystem::path& location) {
    XLSXSharedStringsParser shared;
    if (auto strings = unzipEntry(location, "xl/sharedStrings.xml")) platform::xml::parse(*strings, shared);
    const auto sheet = unzipEntry(location, "xl/worksheets/sheet1.xml");
    if (!sheet) throw ImportError(ImportError::Kind::unreadable);
    XLSXSheetParser parser(std::move(shared.strings));
    if (!platform::xml::parse(*sheet, parser)) throw ImportError(ImportError::Kind::unreadable);
    return tableFromRows(std::move(parser.rows));
}

std::int64_t columnIndex(std::string_view cellReference) {
    std::int64_t n = 0;
    for (char c : cellReference) {
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
        if (c < 'A' || c > 'Z') break;
        n = n * 26 + (c - 'A' + 1);
    }
    return std::max<std::int64_t>(n - 1, 0);
}

std::optional<std::string> unzipEntry(const std::filesystem::path& location, const std::string& entry) {
    std::error_code sizeError;
    const auto archiveSize = std::filesystem::file_size(location, sizeError);
    if (sizeError) return std::nullopt;
    int error = 0;
    std::unique_ptr<zip_t, decltype(&zip_discard)> archive(zip_open(location.c_str(), ZIP_RDONLY, &error), zip_discard);
    if (!archive) return std::nullopt;
    std::unique_ptr<zip_file_t, decltype(&zip_fclose)> file(zip_fopen(archive.get(), entry.c_str(), 0), zip_fclose);
    if (!file) return std::nullopt;
    auto unpacked = platform::compression::readZipFile(file.get(), platform::compression::unpackLimit(archiveSize));
    if (!unpacked.isComplete() || unpacked.bytes.empty()) return std::nullopt;
    return std::move(unpacked.bytes);
}

} // namespace mibrel::TeskResponsesImport
