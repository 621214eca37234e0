#include "MerivanteCore/Import/SPSSReader.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <initializer_list>
#include <map>
#include <vector>

#include "MerivanteCore/Dataset/DatasetNumbers.h"
#include "Platform/Text/Text.h"
#include "Platform/Text/TextDecoding.h"

namespace merivante::SPSSReader {

std::optional<std::string_view> ByteReader::readBytes(std::int64_t count) {
    if (count < 0 || static_cast<std::uint64_t>(count) > remaining()) return std::nullopt;
    const std::string_view bytes = m_bytes.substr(m_position, static_cast<std::size_t>(count));
    m_position += bytes.size();
    return bytes;
}

std::optional<std::int32_t> ByteReader::readInt32LE() {
    const auto bytes = readBytes(4);
    if (!bytes) return std::nullopt;
    std::uint32_t value = 0;
    for (int i = 3; i >= 0; --i) value = (value << 8) | static_cast<unsigned char>((*bytes)[i]);
    return static_cast<std::int32_t>(value);
}

std::optional<double> ByteReader::readDoubleLE() {
    const auto bytes = readBytes(8);
    if (!bytes) return std::nullopt;
    double value;
    std::memcpy(&value, bytes->data(), 8); // the host is little-endian
    return value;
}

namespace {

enum class TextEncoding { utf8, windows1252, latin1, ascii };

const std::string_view kBlanks = "        ";

std::optional<std::string> decodeAs(std::string_view bytes, TextEncoding encoding) {
    // Every encoding here agrees with ASCII on its first half.
    if (platform::text::isAscii(bytes)) return std::string(bytes);
    switch (encoding) {
    case TextEncoding::utf8: return platform::text::decodeUTF8Strict(bytes);
    case TextEncoding::windows1252: return platform::text::decodeStrict(bytes, "windows-1252");
    case TextEncoding::latin1: return platform::text::decodeStrict(bytes, "ISO-8859-1");
    case TextEncoding::ascii: return std::nullopt;
    }
    return std::nullopt;
}

std::optional<std::string> decodeFirst(std::string_view bytes, std::initializer_list<TextEncoding> chain) {
    for (const TextEncoding encoding : chain) {
        if (auto text = decodeAs(bytes, encoding)) return text;
    }
    return std::nullopt;
}

// Names and labels are read before the file's encoding is known, so they take a fixed order.
std::optional<std::string> decodeFixed(std::string_view bytes) {
    if (bytes.empty()) return std::string();
    return decodeFirst(bytes, {TextEncoding::windows1252, TextEncoding::utf8, TextEncoding::latin1});
}

struct VariableRecord {
    std::string shortName;
    std::int32_t typeCode = 0;
    std::int64_t printFormatType = 0;
    std::int64_t printDecimals = 0;
    std::optional<std::string> label;
};

struct LabelValue {
    std::string_view raw;
    bool isNumeric = true;
};

struct ValueLabelSet {
    std::vector<LabelValue> values;
    std::vector<std::string> labels;
    std::vector<std::int64_t> varIndices;
};

struct Dictionary {
    std::vector<VariableRecord> variables;
    std::vector<ValueLabelSet> valueLabelSets;
    double bias = 100;
    bool compressed = false;
    bool bigEndian = false;
    TextEncoding stringEncoding = TextEncoding::windows1252;
    std::map<std::string, std::string> longNames;
    std::map<std::string, std::int64_t> veryLongStrings;
    std::optional<std::string> encodingName;
    std::vector<std::string> notes;
};

struct RealVar {
    std::string name;
    std::int32_t typeCode = 0;
    std::optional<std::string> label;
    std::int64_t printType = 0;
    std::int64_t printDecimals = 0;
    std::vector<std::size_t> slotIndices;
};

// One 8-byte slot of a case. String bytes point into the file or at a run of blanks.
struct SlotValue {
    bool isString = false;
    std::optional<double> number;
    std::string_view bytes;
};

std::optional<double> decodeDouble(std::string_view raw, bool bigEndian) {
    std::array<char, 8> bytes;
    std::memcpy(bytes.data(), raw.data(), 8);
    if (bigEndian) std::reverse(bytes.begin(), bytes.end());
    double value;
    std::memcpy(&value, bytes.data(), 8);
    if (std::isnan(value)) return std::nullopt;
    return value;
}

std::int32_t int32At(std::string_view bytes, std::size_t offset) {
    std::uint32_t value = 0;
    for (int i = 3; i >= 0; --i) value = (value << 8) | static_cast<unsigned char>(bytes[offset + i]);
    return static_cast<std::int32_t>(value);
}

bool skip(ByteReader& reader, std::int64_t count) { return reader.readBytes(count).has_value(); }

bool readHeader(ByteReader& reader, Dictionary& dictionary) {
    const auto magic = reader.readBytes(4);
    if (!magic || *magic != "$FL2") return false;
    if (!skip(reader, 60) || !reader.readInt32LE() || !skip(reader, 4)) return false;
    const auto compression = reader.readInt32LE();
    if (!compression || !skip(reader, 4) || !reader.readInt32LE()) return false;
    const auto bias = reader.readDoubleLE();
    if (!bias || !skip(reader, 84)) return false;
    dictionary.compressed = *compression != 0;
    dictionary.bias = *bias;
    return true;
}

bool readVariableRecord(ByteReader& reader, Dictionary& dictionary) {
    const auto typeCode = reader.readInt32LE();
    const auto hasLabel = reader.readInt32LE();
    const auto missingCount = reader.readInt32LE();
    const auto printFormat = reader.readInt32LE();
    if (!typeCode || !hasLabel || !missingCount || !printFormat || !reader.readInt32LE()) return false;
    const auto name = reader.readBytes(8);
    if (!name) return false;
    VariableRecord record{.shortName = platform::text::trimmedOfBlanks(decodeFixed(*name).value_or("")),
                          .typeCode = *typeCode,
                          .printFormatType = (*printFormat >> 16) & 0xFF,
                          .printDecimals = *printFormat & 0xFF};
    if (*hasLabel == 1) {
        const auto length = reader.readInt32LE();
        if (!length || *length < 0) return false;
        const auto padded = reader.readBytes((static_cast<std::int64_t>(*length) + 3) / 4 * 4);
        if (!padded) return false;
        record.label = decodeFixed(padded->substr(0, static_cast<std::size_t>(*length)));
    }
    if (!skip(reader, 8 * std::abs(static_cast<std::int64_t>(*missingCount)))) return false;
    dictionary.variables.push_back(std::move(record));
    return true;
}

bool readValueLabelRecord(ByteReader& reader, Dictionary& dictionary) {
    const auto count = reader.readInt32LE();
    if (!count || *count < 0) return false;
    ValueLabelSet set;
    for (std::int32_t i = 0; i < *count; ++i) {
        const auto raw = reader.readBytes(8);
        const auto length = reader.readBytes(1);
        if (!raw || !length) return false;
        const auto n = static_cast<unsigned char>((*length)[0]);
        const auto text = reader.readBytes((n + 8) / 8 * 8 - 1);
        if (!text) return false;
        set.values.push_back({*raw, true});
        set.labels.push_back(decodeFixed(text->substr(0, n)).value_or(""));
    }
    const auto indexType = reader.readInt32LE();
    if (!indexType || *indexType != 4) return false;
    const auto indexCount = reader.readInt32LE();
    if (!indexCount || *indexCount < 0) return false;
    for (std::int32_t i = 0; i < *indexCount; ++i) {
        const auto index = reader.readInt32LE();
        if (!index) return false;
        set.varIndices.push_back(static_cast<std::int64_t>(*index) - 1);
    }
    dictionary.valueLabelSets.push_back(std::move(set));
    return true;
}

std::vector<std::string_view> piecesOf(std::string_view text, char separator) {
    std::vector<std::string_view> pieces;
    std::size_t start = 0;
    while (start <= text.size()) {
        const std::size_t end = std::min(text.find(separator, start), text.size());
        if (end > start) pieces.push_back(text.substr(start, end - start));
        start = end + 1;
    }
    return pieces;
}

void readLongNames(std::string_view bytes, Dictionary& dictionary) {
    const std::string text = decodeFirst(bytes, {dictionary.stringEncoding, TextEncoding::utf8, TextEncoding::latin1,
                                                 TextEncoding::windows1252})
                                 .value_or("");
    for (const std::string_view piece : piecesOf(text, '\t')) {
        const std::size_t equals = piece.find('=');
        if (equals == std::string_view::npos || equals == 0 || equals + 1 == piece.size()) continue;
        dictionary.longNames[platform::text::uppercased(platform::text::trimmedOfBlanks(piece.substr(0, equals)))] =
            platform::text::trimmedOfBlanks(piece.substr(equals + 1));
    }
    if (!dictionary.longNames.empty()) dictionary.notes.push_back("Applied long variable names (subtype 13).");
}

std::optional<std::int64_t> parseInteger(std::string_view text) {
    if (text.starts_with('+')) text.remove_prefix(1);
    std::int64_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size() || text.empty()) return std::nullopt;
    return value;
}

void readVeryLongStrings(std::string_view bytes, Dictionary& dictionary) {
    const std::string text = decodeFixed(bytes).value_or("");
    for (const std::string_view piece : piecesOf(text, '\0')) {
        const std::size_t equals = piece.find('=');
        if (equals == std::string_view::npos) continue;
        const std::string width = platform::text::trimmedOfBlanks(piece.substr(equals + 1));
        if (const auto value = parseInteger(width)) {
            dictionary.veryLongStrings[platform::text::uppercased(
                platform::text::trimmedOfBlanks(piece.substr(0, equals)))] = *value;
        }
    }
    if (!dictionary.veryLongStrings.empty()) {
        dictionary.notes.push_back("Detected very-long-string variables (subtype 14).");
    }
}

bool readExtensionRecord(ByteReader& reader, Dictionary& dictionary) {
    const auto subtype = reader.readInt32LE();
    const auto size = reader.readInt32LE();
    const auto count = reader.readInt32LE();
    if (!subtype || !size || !count) return false;
    const auto bytes = reader.readBytes(static_cast<std::int64_t>(*size) * *count);
    if (!bytes) return false;
    switch (*subtype) {
    case 3:
        if (bytes->size() >= 32 && int32At(*bytes, 24) == 1) {
            dictionary.bigEndian = true;
            dictionary.notes.push_back("Big-endian system file detected.");
        }
        break;
    case 13: readLongNames(*bytes, dictionary); break;
    case 14: readVeryLongStrings(*bytes, dictionary); break;
    case 20:
        if (const auto name = decodeFirst(*bytes, {TextEncoding::ascii, TextEncoding::utf8, TextEncoding::latin1})) {
            dictionary.encodingName = platform::text::trimmed(*name);
        }
        break;
    default: break;
    }
    return true;
}

bool readDictionary(ByteReader& reader, Dictionary& dictionary) {
    while (true) {
        const auto type = reader.readInt32LE();
        if (!type) return false;
        switch (*type) {
        case 2:
            if (!readVariableRecord(reader, dictionary)) return false;
            break;
        case 3:
            if (!readValueLabelRecord(reader, dictionary)) return false;
            break;
        case 6: {
            const auto lines = reader.readInt32LE();
            if (!lines || *lines < 0 || !skip(reader, static_cast<std::int64_t>(*lines) * 80)) return false;
            break;
        }
        case 7:
            if (!readExtensionRecord(reader, dictionary)) return false;
            break;
        case 999: return skip(reader, 4);
        default: return false;
        }
    }
}

void resolveEncoding(Dictionary& dictionary) {
    if (!dictionary.encodingName) {
        dictionary.stringEncoding = TextEncoding::windows1252;
        dictionary.notes.push_back("No encoding record; defaulted to windows-1252.");
        return;
    }
    struct Known {
        std::string_view name;
        TextEncoding encoding;
        const char* note;
    };
    static constexpr std::array<Known, 10> known{{
        {"utf-8", TextEncoding::utf8, "Encoding: UTF-8."},
        {"utf8", TextEncoding::utf8, "Encoding: UTF-8."},
        {"windows-1252", TextEncoding::windows1252, "Encoding: windows-1252."},
        {"cp1252", TextEncoding::windows1252, "Encoding: windows-1252."},
        {"cp-1252", TextEncoding::windows1252, "Encoding: windows-1252."},
        {"iso-8859-1", TextEncoding::latin1, "Encoding: ISO-8859-1."},
        {"latin1", TextEncoding::latin1, "Encoding: ISO-8859-1."},
        {"iso8859-1", TextEncoding::latin1, "Encoding: ISO-8859-1."},
        {"ascii", TextEncoding::ascii, "Encoding: ASCII."},
        {"us-ascii", TextEncoding::ascii, "Encoding: ASCII."},
    }};
    const std::string name = platform::text::lowercased(*dictionary.encodingName);
    for (const Known& entry : known) {
        if (entry.name == name) {
            dictionary.stringEncoding = entry.encoding;
            dictionary.notes.push_back(entry.note);
            return;
        }
    }
    dictionary.stringEncoding = TextEncoding::windows1252;
    dictionary.notes.push_back("Unknown encoding '" + *dictionary.encodingName + "'; fell back to windows-1252.");
}

// Continuation slots fold into the string before them; names are made unique ignoring case.
std::vector<RealVar> realVariables(const std::vector<VariableRecord>& records) {
    std::vector<RealVar> variables;
    for (std::size_t i = 0; i < records.size(); ++i) {
        const VariableRecord& record = records[i];
        if (record.typeCode == -1) continue;
        RealVar variable{record.shortName, record.typeCode, record.label, record.printFormatType,
                         record.printDecimals, {i}};
        if (record.typeCode >= 1) {
            for (std::size_t j = i + 1; j < records.size() && records[j].typeCode == -1; ++j) {
                variable.slotIndices.push_back(j);
            }
        }
        variables.push_back(std::move(variable));
    }
    std::map<std::string, int> sightings;
    for (std::size_t n = 0; n < variables.size(); ++n) {
        std::string& name = variables[n].name;
        if (name.empty()) name = "VAR" + std::to_string(n + 1);
        const int count = ++sightings[platform::text::uppercased(name)];
        if (count > 1) name += "_" + std::to_string(count);
    }
    return variables;
}

bool isDateFormat(std::int64_t printType) {
    static constexpr std::array<std::int64_t, 11> dateFormats{20, 22, 23, 24, 25, 26, 27, 28, 29, 38, 39};
    return std::find(dateFormats.begin(), dateFormats.end(), printType) != dateFormats.end();
}

std::string renderNumber(double value, const RealVar& variable) {
    if (isDateFormat(variable.printType)) {
        if (auto date = formatSPSSDate(value)) return *date;
    }
    return trimNumber(value, variable.printDecimals);
}

// Bytes with their trailing blanks and NULs removed; a multibyte character never ends in
// either, so trimming before decoding is the same as after.
std::string_view withoutTrailingPadding(std::string_view bytes) {
    const std::size_t end = bytes.find_last_not_of(std::string_view(" \0", 2));
    return end == std::string_view::npos ? std::string_view() : bytes.substr(0, end + 1);
}

std::string decodeData(std::string_view bytes, TextEncoding encoding) {
    return decodeFirst(bytes, {encoding, TextEncoding::utf8, TextEncoding::latin1}).value_or("");
}

void collectValueLabels(const Dictionary& dictionary, const std::vector<RealVar>& variables, TabularImport& result) {
    std::map<std::size_t, std::size_t> variableOfSlot;
    for (std::size_t v = 0; v < variables.size(); ++v) {
        for (const std::size_t slot : variables[v].slotIndices) variableOfSlot[slot] = v;
    }
    for (const ValueLabelSet& set : dictionary.valueLabelSets) {
        for (const std::int64_t index : set.varIndices) {
            const auto found = index < 0 ? variableOfSlot.end() : variableOfSlot.find(static_cast<std::size_t>(index));
            if (found == variableOfSlot.end()) continue;
            const RealVar& variable = variables[found->second];
            auto& labels = result.valueLabels[variable.name];
            for (std::size_t i = 0; i < std::min(set.values.size(), set.labels.size()); ++i) {
                const std::string_view raw = set.values[i].raw;
                std::string text;
                if (variable.typeCode != 0) {
                    text = platform::text::trimmedOfBlanks(decodeData(raw, dictionary.stringEncoding));
                } else if (raw.size() >= 8) {
                    if (const auto number = decodeDouble(raw, dictionary.bigEndian)) text = renderNumber(*number, variable);
                }
                labels[text] = set.labels[i];
            }
        }
    }
}

enum class CaseResult { ok, end, failed };

// The plain layout: every slot is 8 bytes of the stream.
CaseResult nextPlainCase(ByteReader& reader, const Dictionary& dictionary, std::vector<SlotValue>& slots) {
    if (reader.remaining() < 8 || reader.remaining() < 8 * slots.size()) return CaseResult::end;
    for (std::size_t i = 0; i < slots.size(); ++i) {
        const std::string_view raw = *reader.readBytes(8);
        if (dictionary.variables[i].typeCode != 0) {
            slots[i] = {true, std::nullopt, raw};
        } else {
            slots[i] = {false, decodeDouble(raw, dictionary.bigEndian), {}};
        }
    }
    return CaseResult::ok;
}

// The bytecode layout: blocks of 8 command bytes, each followed by the raw values it calls for.
class CompressedCases {
public:
    CompressedCases(ByteReader& reader, const Dictionary& dictionary) : m_reader(reader), m_dictionary(dictionary) {}

    CaseResult next(std::vector<SlotValue>& slots) {
        for (std::size_t i = 0; i < slots.size(); ++i) {
            const auto code = nextCode();
            if (!code || *code == 252) return CaseResult::end;
            const bool isString = m_dictionary.variables[i].typeCode != 0;
            if (*code == 253) {
                const auto raw = m_reader.readBytes(8);
                if (!raw) return CaseResult::failed;
                slots[i] = isString ? SlotValue{true, std::nullopt, *raw}
                                    : SlotValue{false, decodeDouble(*raw, m_dictionary.bigEndian), {}};
            } else if (isString) {
                slots[i] = {true, std::nullopt, kBlanks};
            } else if (*code == 254) {
                slots[i] = {false, decodeDouble(kBlanks, m_dictionary.bigEndian), {}};
            } else if (*code == 255) {
                slots[i] = {false, std::nullopt, {}};
            } else {
                slots[i] = {false, static_cast<double>(*code) - m_dictionary.bias, {}};
            }
        }
        return CaseResult::ok;
    }

private:
    // The next command other than 0, which only pads a block; absent when the stream ends.
    std::optional<unsigned char> nextCode() {
        while (true) {
            if (m_position == m_block.size()) {
                const auto block = m_reader.readBytes(8);
                if (!block) return std::nullopt;
                m_block = *block;
                m_position = 0;
            }
            const auto code = static_cast<unsigned char>(m_block[m_position++]);
            if (code != 0) return code;
        }
    }

    ByteReader& m_reader;
    const Dictionary& m_dictionary;
    std::string_view m_block;
    std::size_t m_position = 0;
};

void appendRow(const std::vector<SlotValue>& slots, const std::vector<RealVar>& variables, TextEncoding encoding,
               std::vector<std::vector<std::string>>& rows) {
    std::vector<std::string>& row = rows.emplace_back();
    row.reserve(variables.size());
    std::string joined;
    for (const RealVar& variable : variables) {
        if (variable.typeCode == 0) {
            const SlotValue& slot = slots[variable.slotIndices.front()];
            row.push_back(slot.isString || !slot.number ? std::string() : renderNumber(*slot.number, variable));
            continue;
        }
        joined.clear();
        for (const std::size_t index : variable.slotIndices) {
            if (slots[index].isString) joined += slots[index].bytes;
        }
        row.push_back(decodeData(withoutTrailingPadding(joined), encoding));
    }
}

// Cases are decoded and rendered one at a time; a truncated case ends the data quietly.
bool readRows(ByteReader& reader, const Dictionary& dictionary, const std::vector<RealVar>& variables,
              TabularImport& result) {
    std::vector<SlotValue> slots(dictionary.variables.size());
    if (slots.empty()) return true;
    CompressedCases compressed(reader, dictionary);
    while (true) {
        const CaseResult status =
            dictionary.compressed ? compressed.next(slots) : nextPlainCase(reader, dictionary, slots);
        if (status == CaseResult::failed) return false;
        if (status == CaseResult::end) return true;
        appendRow(slots, variables, dictionary.stringEncoding, result.rows);
    }
}

// The bias comes from the file unchecked: it may be any double.
std::string truncatedText(double value) {
    char text[400];
    std::snprintf(text, sizeof text, "%.0f", std::trunc(value));
    return text;
}

} // namespace

std::optional<TabularImport> read(std::string_view data) {
    ByteReader reader(data);
    Dictionary dictionary;
    if (!readHeader(reader, dictionary) || !readDictionary(reader, dictionary)) return std::nullopt;
    resolveEncoding(dictionary);
    for (VariableRecord& record : dictionary.variables) {
        const auto longName = dictionary.longNames.find(platform::text::uppercased(record.shortName));
        if (longName != dictionary.longNames.end()) record.shortName = longName->second;
    }
    const std::vector<RealVar> variables = realVariables(dictionary.variables);
    TabularImport result;
    if (!readRows(reader, dictionary, variables, result)) return std::nullopt;
    for (const RealVar& variable : variables) {
        result.variableNames.push_back(variable.name);
        if (variable.label && !variable.label->empty()) result.variableLabels[variable.name] = *variable.label;
    }
    collectValueLabels(dictionary, variables, result);
    result.notes = std::move(dictionary.notes);
    result.notes.push_back(dictionary.compressed ? "Decoded bytecode-compressed data (bias " +
                                                       truncatedText(dictionary.bias) + ")."
                                                 : "Decoded uncompressed data.");
    result.notes.push_back("Parsed " + std::to_string(variables.size()) + " variables, " +
                           std::to_string(result.rows.size()) + " cases.");
    return result;
}

namespace {

// Days since 1970-01-01 to a proleptic Gregorian date (H. Hinnant's civil_from_days).
std::array<std::int64_t, 3> civilFromDays(std::int64_t days) {
    days += 719468;
    const std::int64_t era = (days >= 0 ? days : days - 146096) / 146097;
    const std::int64_t dayOfEra = days - era * 146097;
    const std::int64_t yearOfEra = (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
    const std::int64_t dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const std::int64_t monthIndex = (5 * dayOfYear + 2) / 153;
    const std::int64_t day = dayOfYear - (153 * monthIndex + 2) / 5 + 1;
    const std::int64_t month = monthIndex < 10 ? monthIndex + 3 : monthIndex - 9;
    return {yearOfEra + era * 400 + (month <= 2 ? 1 : 0), month, day};
}

} // namespace

std::optional<std::string> formatSPSSDate(double seconds) {
    if (!(seconds > 0)) return std::nullopt;
    const double unixSeconds = std::floor(seconds - 12219379200.0);
    // Years 1583 to 9998 lie well inside this window; it keeps the conversion below exact.
    if (!(unixSeconds > -2e10 && unixSeconds < 3e11)) return std::nullopt;
    const auto whole = static_cast<std::int64_t>(unixSeconds);
    const std::int64_t days = whole >= 0 ? whole / 86400 : -((-whole + 86399) / 86400);
    const auto [year, month, day] = civilFromDays(days);
    if (year < 1583 || year > 9998) return std::nullopt;
    // "%04d-%02d-%02d", written by hand: a file may hold millions of dates.
    std::string text = "0000-00-00";
    const auto digits = [&text](std::size_t end, std::int64_t value) {
        for (std::size_t at = end; value > 0; value /= 10) text[--at] = static_cast<char>('0' + value % 10);
    };
    digits(4, year);
    digits(7, month);
    digits(10, day);
    return text;
}

std::string trimNumber(double value, std::int64_t decimals) {
    if (auto whole = wholeNumberText(value)) return *whole;
    if (decimals >= 1 && decimals <= 10) {
        char text[400];
        const auto end = std::to_chars(text, text + sizeof text, value, std::chars_format::fixed,
                                       static_cast<int>(decimals)).ptr;
        return {text, end};
    }
    // The shortest text has no trailing zeros in its fraction to remove.
    return shortestText(value);
}

} // namespace merivante::SPSSReader
