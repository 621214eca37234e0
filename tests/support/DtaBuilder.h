#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace mibrel::testing {

// Writes tagged Stata files (releases 117 to 119, either byte order) byte by byte, for tests
// and benchmarks that need edge values or sizes no fixture should have.
class DtaBuilder {
public:
    DtaBuilder(int release, bool bigEndian);

    DtaBuilder& label(std::string text);
    DtaBuilder& timestamp(std::string text);
    // `typeCode` as the file stores it: 65530 byte … 65526 double, 32768 strL, 1-2045 str.
    DtaBuilder& variable(const std::string& name, std::uint16_t typeCode, const std::string& label = "",
                         const std::string& valueLabelName = "");
    // One observation: the cells already encoded, e.g. by `int8` or `text`.
    DtaBuilder& row(const std::vector<std::string>& cells);
    // Claims this many observations instead of the rows given.
    DtaBuilder& observationCount(std::uint64_t count);
    DtaBuilder& strl(std::uint32_t variable, std::uint64_t observation, const std::string& contents, bool binary = false);
    DtaBuilder& valueLabelTable(const std::string& name, const std::map<std::int32_t, std::string>& labels);
    DtaBuilder& omitSection(const std::string& name);
    std::string bytes() const;

    std::string int8(std::int8_t value) const { return unsignedBytes(static_cast<std::uint8_t>(value), 1); }
    std::string int16(std::int16_t value) const { return unsignedBytes(static_cast<std::uint16_t>(value), 2); }
    std::string int32(std::int32_t value) const { return unsignedBytes(static_cast<std::uint32_t>(value), 4); }
    std::string float32(float value) const;
    std::string float64(double value) const;
    static std::string text(const std::string& value, std::size_t width);
    // The strL key of a cell in this release's layout.
    std::string strLKey(std::uint64_t variable, std::uint64_t observation) const;
    std::string unsignedBytes(std::uint64_t value, std::size_t width) const;

private:
    std::string section(const std::string& name, const std::string& contents) const;

    int m_release;
    bool m_bigEndian;
    std::string m_label;
    std::string m_timestamp;
    std::vector<std::uint16_t> m_types;
    std::vector<std::string> m_names, m_labels, m_labelNames;
    std::vector<std::string> m_rows;
    std::uint64_t m_rowCount = 0;
    bool m_countClaimed = false;
    std::string m_strls;
    std::string m_valueLabels;
    std::set<std::string> m_omitted;
};

} // namespace mibrel::testing
