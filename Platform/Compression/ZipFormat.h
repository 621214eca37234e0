#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

// Little-endian fields and extra blocks, as every ZIP record stores them.
namespace platform::compression::zipformat {

constexpr std::uint32_t kOverflow32 = 0xFFFFFFFFu;
constexpr std::uint16_t kZip64ExtraID = 0x0001;

// The unsigned value of `width` bytes at `at`; the caller has checked the bounds.
inline std::uint64_t littleEndian(std::string_view bytes, std::size_t at, std::size_t width) {
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < width; ++i) {
        value |= static_cast<std::uint64_t>(static_cast<unsigned char>(bytes[at + i])) << (8 * i);
    }
    return value;
}

// The data of the extra block with this id; absent when there is none or it runs past the field.
inline std::optional<std::string_view> extraBlock(std::string_view extra, std::uint16_t id) {
    while (extra.size() >= 4) {
        const auto blockID = static_cast<std::uint16_t>(littleEndian(extra, 0, 2));
        const auto length = static_cast<std::size_t>(littleEndian(extra, 2, 2));
        if (length > extra.size() - 4) return std::nullopt;
        if (blockID == id) return extra.substr(4, length);
        extra.remove_prefix(4 + length);
    }
    return std::nullopt;
}

// Reads the ZIP64 values in their fixed order, each one present only where its 32-bit field
// overflowed. A field that did not overflow, or whose value the block lacks, keeps what it
// says: some writers put 0xFFFFFFFF there without any ZIP64 record.
class Zip64Fields {
public:
    explicit Zip64Fields(std::optional<std::string_view> block) : m_block(block.value_or(std::string_view())) {}

    void take(std::uint64_t& field) {
        if (field != kOverflow32 || m_block.size() < 8) return;
        field = littleEndian(m_block, 0, 8);
        m_block.remove_prefix(8);
    }

private:
    std::string_view m_block;
};

} // namespace platform::compression::zipformat
