#include "Platform/Compression/ZipLocalEntries.h"

#include <cstddef>

namespace platform::compression {
namespace {

constexpr std::size_t kLocalHeaderSize = 30;
constexpr std::string_view kLocalHeaderSignature("PK\x03\x04", 4);

std::uint32_t littleEndian(std::string_view bytes, std::size_t at, std::size_t width) {
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < width; ++i) {
        value |= static_cast<std::uint32_t>(static_cast<unsigned char>(bytes[at + i])) << (8 * i);
    }
    return value;
}

} // namespace

std::optional<ZipLocalEntry> findLocalEntry(std::string_view archive, std::string_view name) {
    // Every step moves past at least one whole header, so the walk always ends.
    std::size_t position = 0;
    while (archive.size() - position >= kLocalHeaderSize &&
           archive.substr(position, kLocalHeaderSignature.size()) == kLocalHeaderSignature) {
        const std::string_view header = archive.substr(position);
        const std::size_t compressedSize = littleEndian(header, 18, 4);
        const std::size_t nameLength = littleEndian(header, 26, 2);
        const std::size_t extraLength = littleEndian(header, 28, 2);
        const std::size_t dataStart = kLocalHeaderSize + nameLength + extraLength;
        if (dataStart > header.size() || compressedSize > header.size() - dataStart) return std::nullopt;
        if (header.substr(kLocalHeaderSize, nameLength) == name) {
            return ZipLocalEntry{static_cast<std::uint16_t>(littleEndian(header, 8, 2)),
                                 header.substr(dataStart, compressedSize), littleEndian(header, 22, 4)};
        }
        position += dataStart + compressedSize;
    }
    return std::nullopt;
}

} // namespace platform::compression
