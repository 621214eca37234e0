#include "Platform/Foundation/Uuid.h"

#include <cstring>
#include <random>

namespace platform {
namespace {

constexpr char kHexDigits[] = "0123456789ABCDEF";
constexpr std::size_t kCanonicalLength = 36;

bool isHyphenPosition(std::size_t index) {
    return index == 8 || index == 13 || index == 18 || index == 23;
}

// Where each byte's two hex digits start in the canonical text.
constexpr std::array<std::uint8_t, 16> kDigitOffsets{0, 2, 4, 6, 9, 11, 14, 16, 19, 21, 24, 26, 28, 30, 32, 34};

constexpr std::array<std::int8_t, 256> makeHexTable() {
    std::array<std::int8_t, 256> table{};
    for (auto& entry : table) entry = -1;
    for (int i = 0; i < 10; ++i) table['0' + i] = static_cast<std::int8_t>(i);
    for (int i = 0; i < 6; ++i) {
        table['A' + i] = static_cast<std::int8_t>(10 + i);
        table['a' + i] = static_cast<std::int8_t>(10 + i);
    }
    return table;
}

constexpr auto kHexTable = makeHexTable();

std::mt19937_64& threadGenerator() {
    // Seeded once per thread from the system's entropy source.
    thread_local std::mt19937_64 generator = [] {
        std::random_device device;
        std::seed_seq seed{device(), device(), device(), device(), device(), device(), device(), device()};
        return std::mt19937_64(seed);
    }();
    return generator;
}

} // namespace

Uuid Uuid::random() {
    auto& generator = threadGenerator();
    const std::uint64_t high = generator();
    const std::uint64_t low = generator();
    std::array<std::uint8_t, 16> bytes{};
    std::memcpy(bytes.data(), &high, 8);
    std::memcpy(bytes.data() + 8, &low, 8);
    bytes[6] = static_cast<std::uint8_t>((bytes[6] & 0x0F) | 0x40); // version 4
    bytes[8] = static_cast<std::uint8_t>((bytes[8] & 0x3F) | 0x80); // RFC 4122 variant
    return Uuid(bytes);
}

std::optional<Uuid> Uuid::parse(std::string_view text) {
    if (text.size() != kCanonicalLength || text[8] != '-' || text[13] != '-' || text[18] != '-' || text[23] != '-') {
        return std::nullopt;
    }
    std::array<std::uint8_t, 16> bytes{};
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const int high = kHexTable[static_cast<unsigned char>(text[kDigitOffsets[i]])];
        const int low = kHexTable[static_cast<unsigned char>(text[kDigitOffsets[i] + 1])];
        if ((high | low) < 0) return std::nullopt;
        bytes[i] = static_cast<std::uint8_t>(high << 4 | low);
    }
    return Uuid(bytes);
}

void Uuid::writeCanonical(char* out) const {
    std::size_t position = 0;
    for (std::size_t i = 0; i < m_bytes.size(); ++i) {
        if (isHyphenPosition(position)) out[position++] = '-';
        out[position++] = kHexDigits[m_bytes[i] >> 4];
        out[position++] = kHexDigits[m_bytes[i] & 0x0F];
    }
}

std::string Uuid::uuidString() const {
    std::string text(kCanonicalLength, '\0');
    writeCanonical(text.data());
    return text;
}

} // namespace platform

std::size_t std::hash<platform::Uuid>::operator()(const platform::Uuid& uuid) const noexcept {
    std::uint64_t high = 0;
    std::uint64_t low = 0;
    std::memcpy(&high, uuid.bytes().data(), 8);
    std::memcpy(&low, uuid.bytes().data() + 8, 8);
    return static_cast<std::size_t>(high ^ (low * 0x9E3779B97F4A7C15ULL));
}
