#include "tests/support/DtaBuilder.h"

#include <array>
#include <bit>

namespace mibrel::testing {

DtaBuilder::DtaBuilder(int release, bool bigEndian) : m_release(release), m_bigEndian(bigEndian) {}

DtaBuilder& DtaBuilder::label(std::string text) {
    m_label = std::move(text);
    return *this;
}

DtaBuilder& DtaBuilder::timestamp(std::string text) {
    m_timestamp = std::move(text);
    return *this;
}

DtaBuilder& DtaBuilder::variable(const std::string& name, std::uint16_t typeCode, const std::string& label,
                                 const std::string& valueLabelName) {
    m_types.push_back(typeCode);
    m_names.push_back(name);
    m_labels.push_back(label);
    m_labelNames.push_back(valueLabelName);
    return *this;
}

DtaBuilder& DtaBuilder::row(const std::vector<std::string>& cells) {
    std::string row;
    for (const std::string& cell : cells) row += cell;
    m_rows.push_back(row);
    if (!m_countClaimed) m_rowCount = m_rows.size();
    return *this;
}

DtaBuilder& DtaBuilder::observationCount(std::uint64_t count) {
    m_rowCount = count;
    m_countClaimed = true;
    return *this;
}

DtaBuilder& DtaBuilder::strl(std::uint32_t variable, std::uint64_t observation, const std::string& contents,
                             bool binary) {
    m_strls += "GSO" + unsignedBytes(variable, 4) + unsignedBytes(observation, m_release == 117 ? 4 : 8) +
               static_cast<char>(binary ? 129 : 130) + unsignedBytes(contents.size(), 4) + contents;
    return *this;
}

DtaBuilder& DtaBuilder::valueLabelTable(const std::string& name, const std::map<std::int32_t, std::string>& labels) {
    std::string offsets, values, texts;
    for (const auto& [value, label] : labels) {
        offsets += int32(static_cast<std::int32_t>(texts.size()));
        values += int32(value);
        texts += label + '\0';
    }
    const std::string body = text(name, m_release == 117 ? 33 : 129) + std::string(3, '\0') +
                             int32(static_cast<std::int32_t>(labels.size())) +
                             int32(static_cast<std::int32_t>(texts.size())) + offsets + values + texts;
    m_valueLabels += "<lbl>" + int32(static_cast<std::int32_t>(body.size())) + body + "</lbl>";
    return *this;
}

DtaBuilder& DtaBuilder::omitSection(const std::string& name) {
    m_omitted.insert(name);
    return *this;
}

std::string DtaBuilder::float32(float value) const { return unsignedBytes(std::bit_cast<std::uint32_t>(value), 4); }
std::string DtaBuilder::float64(double value) const { return unsignedBytes(std::bit_cast<std::uint64_t>(value), 8); }

std::string DtaBuilder::text(const std::string& value, std::size_t width) {
    std::string field = value;
    field.resize(width, '\0');
    return field;
}

std::string DtaBuilder::strLKey(std::uint64_t variable, std::uint64_t observation) const {
    if (m_release == 117) return unsignedBytes(variable, 2) + unsignedBytes(observation, 6);
    return unsignedBytes(variable, 4) + unsignedBytes(observation, 8);
}

std::string DtaBuilder::unsignedBytes(std::uint64_t value, std::size_t width) const {
    std::string bytes(width, '\0');
    for (std::size_t i = 0; i < width; ++i) {
        bytes[m_bigEndian ? width - 1 - i : i] = static_cast<char>((value >> (8 * i)) & 0xFF);
    }
    return bytes;
}

std::string DtaBuilder::section(const std::string& name, const std::string& contents) const {
    if (m_omitted.contains(name)) return {};
    return "<" + name + ">" + contents + "</" + name + ">";
}

std::string DtaBuilder::bytes() const {
    const std::size_t count = m_types.size();
    const std::size_t nameWidth = m_release == 117 ? 33 : 129;
    std::string header = "<stata_dta><header><release>" + std::to_string(m_release) + "</release><byteorder>" +
                         (m_bigEndian ? "MSF" : "LSF") + "</byteorder><K>" +
                         unsignedBytes(count, m_release == 119 ? 4 : 2) + "</K><N>" +
                         unsignedBytes(m_rowCount, m_release == 117 ? 4 : 8) + "</N><label>" +
                         unsignedBytes(m_label.size(), m_release == 117 ? 1 : 2) + m_label + "</label><timestamp>" +
                         unsignedBytes(m_timestamp.size(), 1) + m_timestamp + "</timestamp></header>";
    std::string types, names, labelNames, labels, rows;
    for (std::size_t i = 0; i < count; ++i) {
        types += unsignedBytes(m_types[i], 2);
        names += text(m_names[i], nameWidth);
        labelNames += text(m_labelNames[i], nameWidth);
        labels += text(m_labels[i], m_release == 117 ? 81 : 321);
    }
    for (const std::string& row : m_rows) rows += row;
    const std::array<std::string, 10> sections{
        section("variable_types", types),
        section("varnames", names),
        section("sortlist", std::string((count + 1) * 2, '\0')),
        section("formats", std::string(count * (m_release == 117 ? 49 : 57), '\0')),
        section("value_label_names", labelNames),
        section("variable_labels", labels),
        section("characteristics", ""),
        section("data", rows),
        section("strls", m_strls),
        section("value_labels", m_valueLabels)};
    const std::size_t mapStart = header.size();
    const std::size_t mapSize = 5 + 14 * 8 + 6;
    std::vector<std::uint64_t> offsets{0, mapStart};
    std::size_t at = mapStart + mapSize;
    std::string body;
    for (const std::string& part : sections) {
        offsets.push_back(at);
        at += part.size();
        body += part;
    }
    offsets.push_back(at);
    offsets.push_back(at + 12);
    std::string map = "<map>";
    for (const std::uint64_t offset : offsets) map += unsignedBytes(offset, 8);
    map += "</map>";
    return header + map + body + "</stata_dta>";
}

} // namespace mibrel::testing
