#include "MerivanteCore/Import/CSVParser.h"

#include <algorithm>
#include <array>
#include <exception>
#include <initializer_list>
#include <iterator>
#include <thread>

#include "MerivanteCore/Dataset/ImportReadinessBuilder.h"
#include "Platform/Text/Text.h"

// The parser works on bytes: every character it acts on (quote, delimiter, line end) is
// ASCII, and an ASCII byte counts as that character only when it is a character on its own
// (a comma carrying a combining accent is text). CR LF and lone CR read as LF throughout,
// inside quotes as well.
namespace merivante {
namespace {

using Records = std::vector<std::vector<std::string>>;
using ByteSet = std::array<bool, 256>;

ByteSet byteSet(std::initializer_list<char> bytes) {
    ByteSet set{};
    for (const char byte : bytes) set[static_cast<unsigned char>(byte)] = true;
    return set;
}

// The first byte at or after `at` in the set, or the text's size.
std::size_t findFirst(std::string_view text, std::size_t at, const ByteSet& set) {
    while (at < text.size() && !set[static_cast<unsigned char>(text[at])]) ++at;
    return at;
}

class RecordWalker {
public:
    RecordWalker(std::string_view text, char delimiter)
        : m_text(text), m_delimiter(delimiter), m_plainStops(byteSet({delimiter, '\n', '\r'})),
          m_quotedStops(byteSet({'"', '\r'})) {}

    // Stops early when a record ends exactly at `stop`; stoppedAtBoundary() tells whether it did.
    Records walk(std::size_t stop = std::string_view::npos) {
        while (m_at < m_text.size()) {
            if (m_at == stop && m_field.empty() && m_row.empty()) {
                m_stoppedAtBoundary = true;
                return std::move(m_records);
            }
            if (m_field.empty() && isAlone('"')) {
                ++m_at;
                if (!walkQuoted()) throw CSVParserError::unterminatedQuote;
            } else {
                walkPlain();
            }
        }
        if (!m_field.empty() || !m_row.empty()) endRecord();
        return std::move(m_records);
    }

    bool stoppedAtBoundary() const { return m_stoppedAtBoundary; }

private:
    bool isAlone(char character) const { return m_text[m_at] == character && standsAlone(m_at); }

    // Only a non-ASCII neighbour can join an ASCII character into a larger one.
    bool standsAlone(std::size_t at) const {
        const bool plainBefore = at == 0 || static_cast<unsigned char>(m_text[at - 1]) < 0x80;
        const bool plainAfter = at + 1 >= m_text.size() || static_cast<unsigned char>(m_text[at + 1]) < 0x80;
        return (plainBefore && plainAfter) || platform::text::isStandaloneAsciiCharacter(m_text, at);
    }

    // Inside quotes up to the closing quote; false when the text ends first. What follows
    // the closing quote is read as plain text of the same field ("ab"cd gives abcd).
    bool walkQuoted() {
        while (m_at < m_text.size()) {
            const std::size_t stop = findFirst(m_text, m_at, m_quotedStops);
            if (stop == m_text.size()) break;
            m_field.append(m_text, m_at, stop - m_at);
            m_at = stop;
            if (m_text[m_at] == '\r') {
                appendLineEnd();
            } else if (!isAlone('"')) {
                m_field += m_text[m_at++];
            } else if (m_at + 1 < m_text.size() && m_text[m_at + 1] == '"' && standsAlone(m_at + 1)) {
                m_field += '"';
                m_at += 2;
            } else {
                ++m_at;
                return true;
            }
        }
        return false;
    }

    // Plain text up to the end of the field; a quote here is an ordinary character.
    void walkPlain() {
        while (m_at < m_text.size()) {
            const std::size_t stop = findFirst(m_text, m_at, m_plainStops);
            if (stop == m_text.size()) {
                m_field.append(m_text, m_at);
                m_at = m_text.size();
                return;
            }
            m_field.append(m_text, m_at, stop - m_at);
            m_at = stop;
            if (m_text[m_at] == '\n' || m_text[m_at] == '\r') {
                skipLineEnd();
                endRecord();
                return;
            }
            if (isAlone(m_delimiter)) {
                ++m_at;
                endField();
                return;
            }
            m_field += m_text[m_at++];
        }
    }

    void skipLineEnd() { m_at += (m_text[m_at] == '\r' && m_at + 1 < m_text.size() && m_text[m_at + 1] == '\n') ? 2 : 1; }

    void appendLineEnd() {
        skipLineEnd();
        m_field += '\n';
    }

    void endField() {
        m_row.emplace_back(std::move(m_field));
        m_field.clear();
    }

    // A record of one blank field is a blank line, and is dropped; ",,," is kept.
    void endRecord() {
        endField();
        const std::size_t width = m_row.size();
        if (!(width == 1 && platform::text::isBlank(m_row[0]))) m_records.push_back(std::move(m_row));
        m_row.clear();
        m_row.reserve(width); // the next record is most likely as wide
    }

    std::string_view m_text;
    char m_delimiter;
    ByteSet m_plainStops;
    ByteSet m_quotedStops;
    std::size_t m_at = 0;
    bool m_stoppedAtBoundary = false;
    std::string m_field;
    std::vector<std::string> m_row;
    Records m_records;
};

// The first `wanted` non-blank lines; any Unicode line break separates them.
std::vector<std::string_view> leadingLines(std::string_view text, std::size_t wanted) {
    std::vector<std::string_view> lines;
    std::size_t start = 0;
    const auto endLine = [&](std::size_t end, std::size_t next) {
        if (end > start) lines.push_back(text.substr(start, end - start));
        start = next;
    };
    for (std::size_t at = 0; at < text.size() && lines.size() < wanted; ++at) {
        const auto byte = static_cast<unsigned char>(text[at]);
        if (byte >= '\n' && byte <= '\r') {
            endLine(at, at + 1);
        } else if (byte == 0xC2 && text.substr(at, 2) == "\xC2\x85") {
            endLine(at, at + 2);
        } else if (byte == 0xE2 && (text.substr(at, 3) == "\xE2\x80\xA8" || text.substr(at, 3) == "\xE2\x80\xA9")) {
            endLine(at, at + 3);
        }
    }
    if (lines.size() < wanted && start < text.size()) endLine(text.size(), text.size());
    return lines;
}

// Large texts are read in two halves at once. The second half starts after a line end, and
// counts only if the first half, read from the start, ends a record at that very line end;
// a quoted field running across it sends the first reader on to the end alone.
Records readRecords(std::string_view text, char delimiter) {
    constexpr std::size_t kSplitSize = 4 << 20;
    const std::size_t lineEnd = text.size() < kSplitSize ? std::string_view::npos : text.find('\n', text.size() / 2);
    if (lineEnd == std::string_view::npos) return RecordWalker(text, delimiter).walk();
    Records second;
    std::exception_ptr secondFailure;
    std::thread reader([&] {
        try {
            second = RecordWalker(text.substr(lineEnd + 1), delimiter).walk();
        } catch (...) {
            secondFailure = std::current_exception();
        }
    });
    RecordWalker first(text, delimiter);
    Records records;
    try {
        records = first.walk(lineEnd + 1);
    } catch (...) {
        reader.join();
        throw;
    }
    reader.join();
    if (!first.stoppedAtBoundary()) return records;
    if (secondFailure) std::rethrow_exception(secondFailure);
    records.reserve(records.size() + second.size());
    std::move(second.begin(), second.end(), std::back_inserter(records));
    return records;
}

std::string cleanHeader(std::string header) {
    for (std::size_t at; (at = header.find("\xEF\xBB\xBF")) != std::string::npos;) header.erase(at, 3);
    return platform::text::trimmed(header);
}

} // namespace

char CSVParser::detectDelimiter(std::string_view content) {
    constexpr std::array<char, 3> candidates{',', '\t', ';'};
    std::array<std::size_t, 3> counts{};
    for (const std::string_view line : leadingLines(content, 8)) {
        bool inQuotes = false;
        for (std::size_t i = 0; i < line.size(); ++i) {
            const char byte = line[i];
            if ((byte != '"' && byte != ',' && byte != ';' && byte != '\t') ||
                !platform::text::isStandaloneAsciiCharacter(line, i)) {
                continue;
            }
            if (byte == '"') {
                if (inQuotes && i + 1 < line.size() && line[i + 1] == '"' &&
                    platform::text::isStandaloneAsciiCharacter(line, i + 1)) {
                    ++i;
                } else {
                    inQuotes = !inQuotes;
                }
            } else if (!inQuotes) {
                for (std::size_t c = 0; c < candidates.size(); ++c) counts[c] += byte == candidates[c];
            }
        }
    }
    // The earlier candidate wins a tie, so no delimiter at all means a comma.
    const auto best = std::max_element(counts.begin(), counts.end());
    return candidates[static_cast<std::size_t>(best - counts.begin())];
}

CSVParseResult CSVParser::parse(std::string_view content) const {
    Records records = readRecords(content, detectDelimiter(content));
    if (records.empty() || records.front().empty()) throw CSVParserError::emptyFile;

    CSVParseResult result;
    for (std::string& header : records.front()) result.headers.push_back(cleanHeader(std::move(header)));
    std::vector<ImportSourceRow> rows;
    rows.reserve(records.size() - 1);
    for (std::size_t i = 1; i < records.size(); ++i) {
        rows.push_back({static_cast<std::int64_t>(i + 1), std::move(records[i])});
    }
    records = {};
    auto normalized = ImportReadinessBuilder::normalizeRows(result.headers.size(), std::move(rows));
    result.rows = std::move(normalized.rows);
    result.rowReports = std::move(normalized.reports);
    return result;
}

} // namespace merivante
