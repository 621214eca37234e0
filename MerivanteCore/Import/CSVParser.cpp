#include "MerivanteCore/Import/CSVParser.h"

#include <algorithm>
#include <array>

#include "MerivanteCore/Dataset/ImportReadinessBuilder.h"
#include "Platform/Text/Text.h"

namespace merivante {
namespace {

// Every line end becomes "\n" first, inside quoted fields too.
std::string normalizedLineEnds(std::string_view content) {
    std::string text;
    text.reserve(content.size());
    for (std::size_t i = 0; i < content.size(); ++i) {
        if (content[i] != '\r') {
            text += content[i];
        } else {
            text += '\n';
            if (i + 1 < content.size() && content[i + 1] == '\n') ++i;
        }
    }
    return text;
}

bool isAscii(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

// Calls `visit` with each user-perceived character; plain ASCII (no CR left) is one byte each.
template <class Visit>
void forEachCharacter(std::string_view text, Visit&& visit) {
    if (isAscii(text)) {
        for (std::size_t i = 0; i < text.size(); ++i) visit(text.substr(i, 1));
    } else {
        platform::text::forEachCharacter(text, visit);
    }
}

// The record walk, one character at a time. A quote inside quotes waits for the next
// character to tell an escaped quote from the closing one.
class RecordWalker {
public:
    explicit RecordWalker(char delimiter) : m_delimiter(delimiter) {}

    void step(std::string_view character) {
        if (m_pendingQuote) {
            m_pendingQuote = false;
            if (character == "\"") {
                m_field += '"';
                return;
            }
            m_inQuotes = false; // the quote closed the field's quoted part
        }
        if (m_inQuotes) {
            if (character == "\"") m_pendingQuote = true;
            else m_field += character;
            return;
        }
        if (character == "\"" && m_field.empty()) m_inQuotes = true;
        else if (character.size() == 1 && character[0] == m_delimiter) endField();
        else if (character == "\n") endRecord();
        else m_field += character;
    }

    std::vector<std::vector<std::string>> finish() {
        if (m_pendingQuote) m_inQuotes = false;
        if (m_inQuotes) throw CSVParserError::unterminatedQuote;
        if (!m_field.empty() || !m_row.empty()) endRecord();
        return std::move(m_records);
    }

private:
    void endField() {
        m_row.push_back(std::move(m_field));
        m_field.clear();
    }

    // A record of one blank field is a blank line, and is dropped; ",,," is kept.
    void endRecord() {
        endField();
        if (!(m_row.size() == 1 && platform::text::trimmed(m_row[0]).empty())) m_records.push_back(std::move(m_row));
        m_row.clear();
    }

    char m_delimiter;
    bool m_inQuotes = false;
    bool m_pendingQuote = false;
    std::string m_field;
    std::vector<std::string> m_row;
    std::vector<std::vector<std::string>> m_records;
};

bool isLineBreak(std::string_view character) {
    return character == "\n" || character == "\v" || character == "\f" || character == "\r" ||
           character == "\xC2\x85" || character == "\xE2\x80\xA8" || character == "\xE2\x80\xA9";
}

// Enough of the text for the first eight non-blank lines: the delimiter is judged on those.
std::string_view leadingLines(std::string_view text, int wanted) {
    int lines = 0;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find('\n', at), text.size());
        lines += end > at;
        if (lines > wanted) return text.substr(0, end);
        at = end + 1;
    }
    return text;
}

std::string cleanHeader(std::string header) {
    for (std::size_t at; (at = header.find("\xEF\xBB\xBF")) != std::string::npos;) header.erase(at, 3);
    return platform::text::trimmed(header);
}

} // namespace

char CSVParser::detectDelimiter(std::string_view content) {
    constexpr std::array<char, 3> candidates{',', '\t', ';'};
    std::array<std::size_t, 3> counts{};
    std::vector<std::string> lines(1);
    forEachCharacter(content, [&](std::string_view character) {
        if (isLineBreak(character)) {
            if (!lines.back().empty()) lines.emplace_back();
        } else {
            lines.back() += character;
        }
    });
    if (lines.back().empty()) lines.pop_back();
    if (lines.size() > 8) lines.resize(8);
    for (const std::string& line : lines) {
        bool inQuotes = false;
        for (std::size_t i = 0; i < line.size(); ++i) {
            if (line[i] == '"') {
                if (inQuotes && i + 1 < line.size() && line[i + 1] == '"') ++i;
                else inQuotes = !inQuotes;
            } else if (!inQuotes) {
                for (std::size_t c = 0; c < candidates.size(); ++c) counts[c] += line[i] == candidates[c];
            }
        }
    }
    // The earlier candidate wins a tie, so no delimiter at all means a comma.
    const auto best = std::max_element(counts.begin(), counts.end());
    return candidates[static_cast<std::size_t>(best - counts.begin())];
}

CSVParseResult CSVParser::parse(std::string_view content) const {
    const std::string text = normalizedLineEnds(content);
    RecordWalker walker(detectDelimiter(leadingLines(text, 8)));
    forEachCharacter(text, [&walker](std::string_view character) { walker.step(character); });
    std::vector<std::vector<std::string>> records = walker.finish();
    if (records.empty() || records.front().empty()) throw CSVParserError::emptyFile;

    CSVParseResult result;
    for (std::string& header : records.front()) result.headers.push_back(cleanHeader(std::move(header)));
    std::vector<ImportSourceRow> rows;
    for (std::size_t i = 1; i < records.size(); ++i) {
        rows.push_back({static_cast<std::int64_t>(i + 1), std::move(records[i])});
    }
    auto normalized = ImportReadinessBuilder::normalizeRows(result.headers.size(), rows);
    result.rows = std::move(normalized.rows);
    result.rowReports = std::move(normalized.reports);
    return result;
}

} // namespace merivante
