#include "Platform/Json/JsonWriter.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstring>
#include <vector>

#include "Platform/Json/JsonError.h"

namespace platform::json {
namespace {

// Characters a JSON string cannot hold as they are: controls, the quote and the backslash.
constexpr std::array<bool, 256> makeEscapeTable() {
    std::array<bool, 256> table{};
    for (int c = 0; c < 0x20; ++c) table[c] = true;
    table['"'] = true;
    table['\\'] = true;
    return table;
}

constexpr auto kNeedsEscape = makeEscapeTable();

void appendEscaped(std::string& out, char c) {
    switch (c) {
    case '"': out += "\\\""; return;
    case '\\': out += "\\\\"; return;
    case '\b': out += "\\b"; return;
    case '\f': out += "\\f"; return;
    case '\n': out += "\\n"; return;
    case '\r': out += "\\r"; return;
    case '\t': out += "\\t"; return;
    default: break;
    }
    constexpr char hex[] = "0123456789ABCDEF";
    const auto byte = static_cast<unsigned char>(c);
    out += "\\u00";
    out += hex[byte >> 4];
    out += hex[byte & 0x0F];
}

// True when one of the eight bytes is a control, a quote or a backslash (each test
// flags a byte whose value is below a bound, after shifting the byte of interest to zero).
bool wordNeedsEscape(std::uint64_t word) {
    constexpr std::uint64_t ones = 0x0101010101010101ULL;
    constexpr std::uint64_t highs = 0x8080808080808080ULL;
    const std::uint64_t controls = (word - ones * 0x20) & ~word;
    const std::uint64_t quotes = ((word ^ (ones * '"')) - ones) & ~(word ^ (ones * '"'));
    const std::uint64_t backslashes = ((word ^ (ones * '\\')) - ones) & ~(word ^ (ones * '\\'));
    return ((controls | quotes | backslashes) & highs) != 0;
}

// Length of the leading part that needs no escaping, skipping eight bytes at a time.
std::size_t plainPrefixLength(std::string_view text) {
    std::size_t i = 0;
    for (; i + 8 <= text.size(); i += 8) {
        std::uint64_t word = 0;
        std::memcpy(&word, text.data() + i, sizeof word);
        if (wordNeedsEscape(word)) break;
    }
    return i;
}

void appendQuoted(std::string& out, std::string_view text) {
    out += '"';
    const std::size_t plain = plainPrefixLength(text);
    std::size_t run = 0;
    for (std::size_t i = plain; i < text.size(); ++i) {
        if (!kNeedsEscape[static_cast<unsigned char>(text[i])]) continue;
        out.append(text.data() + run, i - run);
        appendEscaped(out, text[i]);
        run = i + 1;
    }
    out.append(text.data() + run, text.size() - run);
    out += '"';
}

} // namespace

// Output looks like: {\n  "key": [\n    1,\n    2\n  ]\n}; empty containers stay "{}" and "[]".
struct JsonWriter::Impl {
    static constexpr std::size_t kChunkSize = 1 << 20;

    struct Level {
        bool isEmpty = true;
    };

    std::string out;
    std::vector<Level> levels;
    bool valueFollowsKey = false;
    bool compact = false;
    std::function<void(std::string_view)> sink;

    void handOver() {
        sink(out);
        out.clear();
    }

    void newLine() {
        if (sink && out.size() >= kChunkSize) handOver();
        if (compact) return;
        out += '\n';
        out.append(levels.size() * 2, ' ');
    }

    // Separates a new member or element from what came before it.
    void beginValue() {
        if (valueFollowsKey) {
            valueFollowsKey = false;
            return;
        }
        if (levels.empty()) return;
        if (!levels.back().isEmpty) out += ',';
        levels.back().isEmpty = false;
        newLine();
    }

    void open(char bracket) {
        beginValue();
        out += bracket;
        levels.push_back({});
    }

    void close(char bracket) {
        const bool wasEmpty = levels.back().isEmpty;
        levels.pop_back();
        if (!wasEmpty) newLine();
        out += bracket;
    }
};

JsonWriter::JsonWriter(Layout layout) : m_impl(std::make_unique<Impl>()) { m_impl->compact = layout == Layout::compact; }

JsonWriter::JsonWriter(std::function<void(std::string_view)> sink) : m_impl(std::make_unique<Impl>()) {
    m_impl->sink = std::move(sink);
    m_impl->out.reserve(Impl::kChunkSize + Impl::kChunkSize / 4);
}

JsonWriter::~JsonWriter() = default;

void JsonWriter::startObject() { m_impl->open('{'); }
void JsonWriter::endObject() { m_impl->close('}'); }
void JsonWriter::startArray() { m_impl->open('['); }
void JsonWriter::endArray() { m_impl->close(']'); }

void JsonWriter::key(std::string_view key) {
    m_impl->beginValue();
    appendQuoted(m_impl->out, key);
    m_impl->out += m_impl->compact ? ":" : ": ";
    m_impl->valueFollowsKey = true;
}

void JsonWriter::string(std::string_view value) {
    m_impl->beginValue();
    appendQuoted(m_impl->out, value);
}

void JsonWriter::plainString(std::string_view value) {
    m_impl->beginValue();
    auto& out = m_impl->out;
    out += '"';
    out += value;
    out += '"';
}

void JsonWriter::integer(std::int64_t value) {
    m_impl->beginValue();
    char digits[24];
    const auto result = std::to_chars(digits, digits + sizeof digits, value);
    m_impl->out.append(digits, result.ptr);
}

void JsonWriter::number(double value) {
    if (!std::isfinite(value)) throw EncodingError("Unable to encode a non-finite number in JSON.");
    m_impl->beginValue();
    // The shortest text that reads back as the same double.
    char digits[32];
    const auto result = std::to_chars(digits, digits + sizeof digits, value);
    m_impl->out.append(digits, result.ptr);
}

void JsonWriter::boolean(bool value) {
    m_impl->beginValue();
    m_impl->out += value ? "true" : "false";
}

void JsonWriter::null() {
    m_impl->beginValue();
    m_impl->out += "null";
}

void JsonWriter::finish() {
    if (m_impl->sink && !m_impl->out.empty()) m_impl->handOver();
}

std::string_view JsonWriter::text() const { return m_impl->out; }
std::string JsonWriter::take() { return std::move(m_impl->out); }

} // namespace platform::json
