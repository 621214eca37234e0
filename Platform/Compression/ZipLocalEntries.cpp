#include "Platform/Compression/ZipLocalEntries.h"

#include <array>
#include <cstddef>

#include "Platform/Compression/ZipCentralDirectory.h"
#include "Platform/Compression/ZipFormat.h"

namespace platform::compression {
namespace {

using zipformat::littleEndian;

constexpr std::size_t kLocalHeaderSize = 30;
constexpr std::string_view kLocalHeaderSignature("PK\x03\x04", 4);
constexpr std::string_view kCentralEntrySignature("PK\x01\x02", 4);
constexpr std::string_view kDescriptorSignature("PK\x07\x08", 4);
constexpr std::uint16_t kSizesInDescriptor = 1u << 3;

struct LocalHeader {
    std::string_view name;
    std::uint16_t flags = 0;
    std::uint16_t method = 0;
    std::uint64_t compressedSize = 0;
    std::uint64_t uncompressedSize = 0;
    std::size_t dataStart = 0; // from the header's own start
    bool zip64 = false;
};

// Absent when the header does not fit in what is left of the buffer.
std::optional<LocalHeader> readHeader(std::string_view header) {
    if (header.size() < kLocalHeaderSize || header.substr(0, 4) != kLocalHeaderSignature) return std::nullopt;
    const std::size_t nameLength = littleEndian(header, 26, 2);
    const std::size_t extraLength = littleEndian(header, 28, 2);
    LocalHeader parsed{{},
                       static_cast<std::uint16_t>(littleEndian(header, 6, 2)),
                       static_cast<std::uint16_t>(littleEndian(header, 8, 2)),
                       littleEndian(header, 18, 4),
                       littleEndian(header, 22, 4),
                       kLocalHeaderSize + nameLength + extraLength};
    if (parsed.dataStart > header.size()) return std::nullopt;
    parsed.name = header.substr(kLocalHeaderSize, nameLength);
    const auto zip64 =
        zipformat::extraBlock(header.substr(kLocalHeaderSize + nameLength, extraLength), zipformat::kZip64ExtraID);
    parsed.zip64 = zip64.has_value();
    zipformat::Zip64Fields wide(zip64);
    wide.take(parsed.uncompressedSize);
    wide.take(parsed.compressedSize);
    return parsed;
}

// The descriptor's length: an optional signature, the CRC, then two sizes of 4 bytes, or of
// 8 in ZIP64. Its form is not announced, so the one followed by the next record wins.
std::optional<std::size_t> descriptorLength(std::string_view rest, bool zip64) {
    const bool signed_ = rest.substr(0, 4) == kDescriptorSignature;
    const std::size_t base = signed_ ? 8 : 4;
    const std::array<std::size_t, 2> candidates = zip64 ? std::array<std::size_t, 2>{base + 16, base + 8}
                                                        : std::array<std::size_t, 2>{base + 8, base + 16};
    for (const std::size_t length : candidates) {
        const std::string_view next = rest.size() >= length ? rest.substr(length, 4) : std::string_view();
        if (next == kLocalHeaderSignature || next == kCentralEntrySignature) return length;
    }
    return std::nullopt;
}

} // namespace

std::optional<ZipLocalEntry> findLocalEntry(std::string_view archive, std::string_view name) {
    std::optional<ZipCentralDirectory> directory; // read once, at the first header that needs it
    std::size_t position = 0;
    // Every step moves past at least one whole header, so the walk always ends.
    while (auto header = readHeader(archive.substr(position))) {
        const bool streamed = (header->flags & kSizesInDescriptor) != 0;
        if (streamed) {
            if (!directory) directory = ZipCentralDirectory::read(archive);
            const auto* listed = directory ? directory->find(header->name) : nullptr;
            if (listed == nullptr) return std::nullopt;
            header->compressedSize = listed->compressedSize;
            header->uncompressedSize = listed->uncompressedSize;
        }
        const std::size_t dataStart = position + header->dataStart;
        if (header->compressedSize > archive.size() - dataStart) return std::nullopt;
        const auto dataSize = static_cast<std::size_t>(header->compressedSize);
        if (header->name == name) {
            return ZipLocalEntry{header->method, archive.substr(dataStart, dataSize), header->uncompressedSize};
        }
        position = dataStart + dataSize;
        if (streamed) {
            const auto descriptor = descriptorLength(archive.substr(position), header->zip64);
            if (!descriptor) return std::nullopt;
            position += *descriptor;
        }
    }
    return std::nullopt;
}

} // namespace platform::compression
