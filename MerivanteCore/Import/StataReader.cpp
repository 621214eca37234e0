#include "MerivanteCore/Import/StataReader.h"

#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <map>
#include <vector>

#include "MerivanteCore/Dataset/DatasetNumbers.h"
#include "Platform/Text/Text.h"
#include "Platform/Text/TextDecoding.h"

namespace merivante::StataReader {

VarType VarType::fromCode(std::uint16_t code) {
    switch (code) {
    case 65530: return {Kind::byte};
    case 65529: return {Kind::int_};
    case 65528: return {Kind::long_};
    case 65527: return {Kind::float_};
    case 65526: return {Kind::double_};
    case 32768: return {Kind::strL};
    default: return {Kind::str, code};
    }
}

bool ByteReader::peekMatches(std::string_view text) const { return m_bytes.substr(m_position).starts_with(text); }

bool ByteReader::skipPast(std::string_view text) {
    if (!peekMatches(text)) return false;
    m_position += text.size();
    return true;
}

std::optional<std::string_view> ByteReader::read(std::size_t count) {
    if (count > remaining()) return std::nullopt;
    const std::string_view bytes = m_bytes.substr(m_position, count);
    m_position += count;
    return bytes;
}

std::optional<std::string> ByteReader::readTagText(std::string_view name) {
    const std::string opening = "<" + std::string(name) + ">";
    const std::string closing = "</" + std::string(name) + ">";
    const std::size_t start = m_position;
    if (!skipPast(opening)) return std::nullopt;
    const std::size_t end = m_bytes.find(closing, m_position);
    if (end == std::string_view::npos) {
        m_position = start;
        return std::nullopt;
    }
    std::string text = platform::text::repairedUTF8(m_bytes.substr(m_position, end - m_position));
    m_position = end + closing.size();
    return text;
}

std::optional<std::uint64_t> ByteReader::readUnsigned(std::size_t width, ByteOrder order) {
    const auto bytes = read(width);
    if (!bytes) return std::nullopt;
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < width; ++i) {
        const std::size_t at = order == ByteOrder::big ? i : width - 1 - i;
        value = (value << 8) | static_cast<unsigned char>((*bytes)[at]);
    }
    return value;
}

bool ByteReader::seek(std::uint64_t position) {
    if (position > m_bytes.size()) return false;
    m_position = static_cast<std::size_t>(position);
    return true;
}

namespace {

constexpr std::array<std::string_view, 14> kMapEntries{
    "stata_data_open", "map",  "variable_types", "varnames",     "sortlist",         "formats",          "value_label_names",
    "variable_labels", "characteristics", "data", "strls", "value_labels", "stata_data_close", "eof"};

enum MapEntry : std::size_t { variableTypes = 2, varnames = 3, valueLabelNames = 6, variableLabels = 7, data = 9,
                              strls = 10, valueLabels = 11 };

std::optional<std::int64_t> parseRelease(const std::string& text) {
    std::int64_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size() || text.empty()) return std::nullopt;
    return value;
}

std::optional<std::int64_t> peekRelease(ByteReader& reader) {
    if (!reader.skipPast("<stata_dta>") || !reader.skipPast("<header>")) return std::nullopt;
    const auto release = reader.readTagText("release");
    return release ? parseRelease(*release) : std::nullopt;
}

// A fixed-width text field: up to the first NUL, repaired, without surrounding blanks.
std::string fieldText(std::string_view bytes) {
    const std::string_view text = bytes.substr(0, bytes.find('\0'));
    if (platform::text::isAscii(text)) {
        // Most cells: the only blanks ASCII has are spaces and tabs, and nothing needs repair.
        const std::size_t start = text.find_first_not_of(" \t");
        if (start == std::string_view::npos) return {};
        return std::string(text.substr(start, text.find_last_not_of(" \t") + 1 - start));
    }
    return platform::text::trimmedOfBlanks(platform::text::repairedUTF8(text));
}

std::optional<std::string> readCountedText(ByteReader& reader, std::string_view tag, std::size_t lengthWidth,
                                           ByteOrder order) {
    if (!reader.skipPast("<" + std::string(tag) + ">")) return std::nullopt;
    const auto length = reader.readUnsigned(lengthWidth, order);
    const auto text = length ? reader.read(*length) : std::nullopt;
    if (!text || !reader.skipPast("</" + std::string(tag) + ">")) return std::nullopt;
    return platform::text::repairedUTF8(*text);
}

std::optional<std::uint64_t> readCount(ByteReader& reader, std::string_view tag, std::size_t width, ByteOrder order) {
    if (!reader.skipPast("<" + std::string(tag) + ">")) return std::nullopt;
    const auto count = reader.readUnsigned(width, order);
    if (!count || !reader.skipPast("</" + std::string(tag) + ">")) return std::nullopt;
    return count;
}

std::optional<Header> readHeader(ByteReader& reader, std::int64_t release) {
    Header header{.release = release};
    const auto order = reader.readTagText("byteorder");
    if (!order) return std::nullopt;
    header.byteOrder = *order == "MSF" ? ByteOrder::big : ByteOrder::little;
    const auto variables = readCount(reader, "K", release == 119 ? 4 : 2, header.byteOrder);
    const auto observations = readCount(reader, "N", release == 117 ? 4 : 8, header.byteOrder);
    if (!variables || !observations || *observations > static_cast<std::uint64_t>(INT64_MAX)) return std::nullopt;
    header.variableCount = static_cast<std::int64_t>(*variables);
    header.observationCount = static_cast<std::int64_t>(*observations);
    auto label = readCountedText(reader, "label", release == 117 ? 1 : 2, header.byteOrder);
    auto timestamp = readCountedText(reader, "timestamp", 1, header.byteOrder);
    if (!label || !timestamp || !reader.skipPast("</header>")) return std::nullopt;
    header.datasetLabel = std::move(*label);
    header.timestamp = std::move(*timestamp);
    return header;
}

struct Layout {
    Header header;
    std::array<std::uint64_t, 14> map{};
    std::vector<VarType> types;
    std::vector<std::string> names;
    std::vector<std::string> valueLabelNames;
    std::map<std::string, std::string> strls;

    std::size_t nameWidth() const { return header.release == 117 ? 33 : 129; }
    std::size_t count() const { return static_cast<std::size_t>(header.variableCount); }
};

bool openSection(ByteReader& reader, const Layout& layout, MapEntry entry) {
    return reader.seek(layout.map[entry]) && reader.skipPast("<" + std::string(kMapEntries[entry]) + ">");
}

bool readMap(ByteReader& reader, Layout& layout) {
    if (!reader.skipPast("<map>")) return false;
    for (std::uint64_t& offset : layout.map) {
        const auto value = reader.readUnsigned(8, layout.header.byteOrder);
        if (!value) return false;
        offset = *value;
    }
    return reader.skipPast("</map>");
}

bool readTypes(ByteReader& reader, Layout& layout) {
    if (!openSection(reader, layout, variableTypes) || reader.remaining() / 2 < layout.count()) return false;
    for (std::size_t i = 0; i < layout.count(); ++i) {
        layout.types.push_back(VarType::fromCode(static_cast<std::uint16_t>(*reader.readUnsigned(2, layout.header.byteOrder))));
    }
    return true;
}

std::optional<std::vector<std::string>> readFields(ByteReader& reader, std::size_t count, std::size_t width) {
    if (reader.remaining() / width < count) return std::nullopt;
    std::vector<std::string> fields;
    fields.reserve(count);
    for (std::size_t i = 0; i < count; ++i) fields.push_back(fieldText(*reader.read(width)));
    return fields;
}

bool readNames(ByteReader& reader, Layout& layout) {
    if (!openSection(reader, layout, varnames)) return false;
    auto names = readFields(reader, layout.count(), layout.nameWidth());
    if (!names) return false;
    layout.names = std::move(*names);
    // Value label names are optional: without them no variable has labels.
    if (openSection(reader, layout, valueLabelNames)) {
        layout.valueLabelNames = readFields(reader, layout.count(), layout.nameWidth()).value_or(std::vector<std::string>());
    }
    return true;
}

bool readVariableLabels(ByteReader& reader, const Layout& layout, StataImport& result) {
    if (!openSection(reader, layout, variableLabels)) return false;
    const auto labels = readFields(reader, layout.count(), layout.header.release == 117 ? 81 : 321);
    if (!labels) return false;
    for (std::size_t i = 0; i < labels->size(); ++i) {
        if (!(*labels)[i].empty()) result.variableLabels[layout.names[i]] = (*labels)[i];
    }
    return true;
}

// Long strings live in their own section, keyed by variable and observation.
void readStrls(ByteReader& reader, Layout& layout) {
    if (!openSection(reader, layout, strls)) return;
    const ByteOrder order = layout.header.byteOrder;
    const std::size_t observationWidth = layout.header.release == 117 ? 4 : 8;
    while (reader.skipPast("GSO")) {
        const auto v = reader.readUnsigned(4, order);
        const auto o = v ? reader.readUnsigned(observationWidth, order) : std::nullopt;
        const auto t = o ? reader.readUnsigned(1, order) : std::nullopt;
        const auto length = t ? reader.readUnsigned(4, order) : std::nullopt;
        const auto contents = length ? reader.read(*length) : std::nullopt;
        if (!contents) return;
        std::string text = *t == 130 ? fieldText(*contents) : platform::text::repairedUTF8(*contents);
        layout.strls[std::to_string(*v) + "_" + std::to_string(*o)] = std::move(text);
    }
}

std::size_t cellWidth(const VarType& type, std::int64_t release) {
    switch (type.kind) {
    case VarType::Kind::str: return static_cast<std::size_t>(type.width);
    case VarType::Kind::byte: return 1;
    case VarType::Kind::int_: return 2;
    case VarType::Kind::long_:
    case VarType::Kind::float_: return 4;
    case VarType::Kind::double_: return 8;
    case VarType::Kind::strL: return release == 117 ? 8 : 12;
    }
    return 0;
}

template <typename Signed>
std::string integerCell(std::uint64_t raw, Signed missingAbove) {
    const auto value = static_cast<Signed>(raw);
    return value > missingAbove ? std::string() : std::to_string(value);
}

std::string strLCell(std::string_view bytes, const Layout& layout) {
    ByteReader key(bytes);
    const ByteOrder order = layout.header.byteOrder;
    const bool narrow = layout.header.release == 117;
    const std::uint64_t v = *key.readUnsigned(narrow ? 2 : 4, order);
    const std::uint64_t o = *key.readUnsigned(narrow ? 6 : 8, order);
    if (v == 0 && o == 0) return {};
    const auto found = layout.strls.find(std::to_string(v) + "_" + std::to_string(o));
    return found == layout.strls.end() ? std::string() : found->second;
}

std::string cellText(std::string_view bytes, const VarType& type, const Layout& layout) {
    const ByteOrder order = layout.header.byteOrder;
    ByteReader cell(bytes);
    switch (type.kind) {
    case VarType::Kind::str: return fieldText(bytes);
    case VarType::Kind::byte: return integerCell<std::int8_t>(*cell.readUnsigned(1, order), 100);
    case VarType::Kind::int_: return integerCell<std::int16_t>(*cell.readUnsigned(2, order), 32740);
    case VarType::Kind::long_: return integerCell<std::int32_t>(*cell.readUnsigned(4, order), 2147483620);
    case VarType::Kind::float_: {
        const float value = std::bit_cast<float>(static_cast<std::uint32_t>(*cell.readUnsigned(4, order)));
        // Compared as a double: the float nearest 1.7014118e38 is the first missing code itself.
        return !std::isfinite(value) || static_cast<double>(value) > 1.7014118e38 ? std::string() : formatNumber(value);
    }
    case VarType::Kind::double_: {
        const double value = std::bit_cast<double>(*cell.readUnsigned(8, order));
        // 8.98846567431158e307 reads as 2^1023, which is the missing value "." itself, so the
        // bound is taken as the largest number below it.
        return !std::isfinite(value) || value > std::nextafter(8.98846567431158e307, 0.0) ? std::string()
                                                                                          : formatNumber(value);
    }
    case VarType::Kind::strL: return strLCell(bytes, layout);
    }
    return {};
}

bool readData(ByteReader& reader, const Layout& layout, StataImport& result) {
    if (!openSection(reader, layout, data)) return false;
    std::size_t rowWidth = 0;
    for (const VarType& type : layout.types) rowWidth += cellWidth(type, layout.header.release);
    const auto observations = static_cast<std::uint64_t>(layout.header.observationCount);
    // Rows without cells carry nothing, and a count the bytes cannot hold is a broken file.
    if (rowWidth == 0) return true;
    if (reader.remaining() / rowWidth < observations) return false;
    result.rows.reserve(static_cast<std::size_t>(observations));
    for (std::uint64_t n = 0; n < observations; ++n) {
        std::vector<std::string>& row = result.rows.emplace_back();
        row.reserve(layout.types.size());
        for (const VarType& type : layout.types) {
            row.push_back(cellText(*reader.read(cellWidth(type, layout.header.release)), type, layout));
        }
    }
    return true;
}

using LabelTable = std::map<std::int64_t, std::string>;

std::optional<LabelTable> readLabelTable(ByteReader& reader, const Layout& layout, std::string& name) {
    const ByteOrder order = layout.header.byteOrder;
    if (!reader.skipPast("<lbl>") || !reader.read(4)) return std::nullopt;
    const auto nameField = reader.read(layout.nameWidth());
    if (!nameField || !reader.read(3)) return std::nullopt;
    name = fieldText(*nameField);
    const auto count = reader.readUnsigned(4, order);
    const auto textLength = count ? reader.readUnsigned(4, order) : std::nullopt;
    const auto offsets = textLength && *count <= reader.remaining() / 4 ? reader.read(*count * 4) : std::nullopt;
    const auto values = offsets ? reader.read(*count * 4) : std::nullopt;
    const auto text = values ? reader.read(*textLength) : std::nullopt;
    if (!text || !reader.skipPast("</lbl>")) return std::nullopt;
    LabelTable table;
    ByteReader offsetReader(*offsets);
    ByteReader valueReader(*values);
    for (std::uint64_t i = 0; i < *count; ++i) {
        const std::uint64_t offset = *offsetReader.readUnsigned(4, order);
        const auto value = static_cast<std::int32_t>(*valueReader.readUnsigned(4, order));
        const std::string_view rest = offset < text->size() ? text->substr(offset) : std::string_view();
        table[value] = platform::text::repairedUTF8(rest.substr(0, rest.find('\0')));
    }
    return table;
}

bool readValueLabels(ByteReader& reader, const Layout& layout, StataImport& result) {
    if (!openSection(reader, layout, valueLabels)) return false;
    std::map<std::string, LabelTable> tables;
    while (reader.peekMatches("<lbl>")) {
        std::string name;
        auto table = readLabelTable(reader, layout, name);
        if (!table) return false;
        tables[name] = std::move(*table);
    }
    for (std::size_t i = 0; i < layout.valueLabelNames.size() && i < layout.names.size(); ++i) {
        const auto table = tables.find(layout.valueLabelNames[i]);
        if (layout.valueLabelNames[i].empty() || table == tables.end()) continue;
        auto& labels = result.valueLabels[layout.names[i]];
        for (const auto& [value, label] : table->second) labels[std::to_string(value)] = label;
    }
    return true;
}

void appendNotes(const Header& header, StataImport& result) {
    if (!header.datasetLabel.empty()) result.notes.push_back("Dataset label: " + header.datasetLabel);
    if (!header.timestamp.empty()) result.notes.push_back("Timestamp: " + header.timestamp);
    result.notes.push_back("Stata release " + std::to_string(header.release) + ", " +
                           (header.byteOrder == ByteOrder::big ? "MSF" : "LSF") + " byte order, " +
                           std::to_string(header.variableCount) + " variables, " +
                           std::to_string(header.observationCount) + " observations.");
}

} // namespace

std::optional<StataImport> read(std::string_view bytes) {
    ByteReader reader(bytes);
    const auto release = peekRelease(reader);
    if (!release) return std::nullopt;
    if (*release != 117 && *release != 118 && *release != 119) {
        StataImport unsupported;
        unsupported.notes.push_back("Stata release " + std::to_string(*release) +
                                    " is not supported. Merivante reads .dta versions 117 (Stata 13), 118 (Stata "
                                    "14-15), and 119 (Stata 15-18).");
        return unsupported;
    }
    Layout layout;
    auto header = readHeader(reader, *release);
    if (!header) return std::nullopt;
    layout.header = std::move(*header);
    StataImport result;
    if (!readMap(reader, layout) || !readTypes(reader, layout) || !readNames(reader, layout) ||
        !readVariableLabels(reader, layout, result)) {
        return std::nullopt;
    }
    readStrls(reader, layout);
    if (!readData(reader, layout, result) || !readValueLabels(reader, layout, result)) return std::nullopt;
    result.variableNames = layout.names;
    appendNotes(layout.header, result);
    return result;
}

std::string formatNumber(double value) {
    if (auto whole = wholeNumberText(value)) return *whole;
    // The same text as printf's "%.10g", without the cost of printf.
    char text[64];
    std::string result(text, std::to_chars(text, text + sizeof text, value, std::chars_format::general, 10).ptr);
    if (result.find_first_of("eE") != std::string::npos || result.find('.') == std::string::npos) return result;
    result.erase(result.find_last_not_of('0') + 1);
    if (result.ends_with('.')) result.pop_back();
    return result;
}

} // namespace merivante::StataReader
