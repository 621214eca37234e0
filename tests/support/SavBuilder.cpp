#include "tests/support/SavBuilder.h"

#include <cmath>
#include <cstring>

namespace mibrel::testing {
namespace {

std::string padded(std::string text, std::size_t width, char pad = ' ') {
    text.resize(width, pad);
    return text;
}

int slotsFor(int width) { return width == 0 ? 1 : (width + 7) / 8; }

} // namespace

std::string SavBuilder::int32(std::int32_t value) {
    std::string bytes(4, '\0');
    std::memcpy(bytes.data(), &value, 4);
    return bytes;
}

std::string SavBuilder::float64(double value) {
    std::string bytes(8, '\0');
    std::memcpy(bytes.data(), &value, 8);
    return bytes;
}

SavBuilder::SavBuilder(bool compressed, double bias) : m_compressed(compressed), m_bias(bias) {
    m_bytes = "$FL2" + padded("@(#) SPSS DATA FILE test builder", 60) + int32(2) + int32(-1) +
              int32(compressed ? 1 : 0) + int32(0) + int32(-1) + float64(bias) + "22 Nov 2610:00:00" +
              std::string(67, ' ');
}

SavBuilder& SavBuilder::numeric(const std::string& name, std::optional<std::string> label, int printType, int decimals) {
    const std::int32_t format = (printType << 16) | (8 << 8) | decimals;
    m_bytes += int32(2) + int32(0) + int32(label ? 1 : 0) + int32(0) + int32(format) + int32(format) + padded(name, 8);
    if (label) m_bytes += int32(static_cast<std::int32_t>(label->size())) + padded(*label, (label->size() + 3) / 4 * 4);
    m_slotWidths.push_back(0);
    return *this;
}

SavBuilder& SavBuilder::string(const std::string& name, int width, std::optional<std::string> label) {
    const std::int32_t format = (1 << 16) | (width << 8);
    m_bytes += int32(2) + int32(width) + int32(label ? 1 : 0) + int32(0) + int32(format) + int32(format) + padded(name, 8);
    if (label) m_bytes += int32(static_cast<std::int32_t>(label->size())) + padded(*label, (label->size() + 3) / 4 * 4);
    for (int i = 1; i < slotsFor(width); ++i) {
        m_bytes += int32(2) + int32(-1) + int32(0) + int32(0) + int32(0) + int32(0) + std::string(8, ' ');
    }
    m_slotWidths.push_back(width);
    return *this;
}

SavBuilder& SavBuilder::valueLabels(const std::vector<std::pair<std::string, std::string>>& pairs,
                                    const std::vector<std::int32_t>& slots) {
    m_bytes += int32(3) + int32(static_cast<std::int32_t>(pairs.size()));
    for (const auto& [value, label] : pairs) {
        m_bytes += padded(value, 8) + static_cast<char>(label.size()) + padded(label, (label.size() + 8) / 8 * 8 - 1);
    }
    m_bytes += int32(4) + int32(static_cast<std::int32_t>(slots.size()));
    for (const std::int32_t slot : slots) m_bytes += int32(slot);
    return *this;
}

SavBuilder& SavBuilder::extension(std::int32_t subtype, const std::string& bytes) {
    m_bytes += int32(7) + int32(subtype) + int32(1) + int32(static_cast<std::int32_t>(bytes.size())) + bytes;
    return *this;
}

SavBuilder& SavBuilder::raw(const std::string& bytes) {
    m_bytes += bytes;
    return *this;
}

SavBuilder& SavBuilder::endDictionary() {
    m_bytes += int32(999) + int32(0);
    return *this;
}

void SavBuilder::slotValue(std::optional<unsigned char> code, const std::string& raw) {
    if (!m_compressed) {
        m_bytes += raw;
        return;
    }
    m_codes += static_cast<char>(code.value_or(253));
    if (!code) m_pending += raw;
    if (m_codes.size() == 8) flushBlock();
}

void SavBuilder::flushBlock() {
    if (m_codes.empty()) return;
    m_bytes += padded(m_codes, 8, '\0') + m_pending;
    m_codes.clear();
    m_pending.clear();
}

SavBuilder& SavBuilder::row(const std::vector<Cell>& cells) {
    for (std::size_t v = 0; v < cells.size() && v < m_slotWidths.size(); ++v) {
        if (m_slotWidths[v] == 0) {
            const auto number = std::get<std::optional<double>>(cells[v]);
            const double slot = number.value_or(-1.7976931348623157e308);
            const bool small = number && *number == std::trunc(*number) && *number + m_bias >= 1 && *number + m_bias <= 251;
            slotValue(!number ? std::optional<unsigned char>(255)
                              : small ? std::optional<unsigned char>(static_cast<unsigned char>(*number + m_bias))
                                      : std::nullopt,
                      float64(slot));
            continue;
        }
        const std::string text = padded(std::get<std::string>(cells[v]), slotsFor(m_slotWidths[v]) * 8);
        for (std::size_t at = 0; at < text.size(); at += 8) {
            const std::string piece = text.substr(at, 8);
            slotValue(piece == "        " ? std::optional<unsigned char>(254) : std::nullopt, piece);
        }
    }
    return *this;
}

SavBuilder& SavBuilder::endOfData() {
    m_codes += static_cast<char>(252);
    if (m_codes.size() == 8) flushBlock();
    return *this;
}

std::string SavBuilder::bytes() {
    flushBlock();
    return m_bytes;
}

} // namespace mibrel::testing
