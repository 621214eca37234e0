#include "Platform/Compression/ZipCentralDirectory.h"

#include <cstddef>

#include "Platform/Compression/ZipFormat.h"

namespace platform::compression {
namespace {

using zipformat::kOverflow32;
using zipformat::littleEndian;

constexpr std::string_view kEndSignature("PK\x05\x06", 4);
constexpr std::string_view kZip64LocatorSignature("PK\x06\x07", 4);
constexpr std::string_view kZip64EndSignature("PK\x06\x06", 4);
constexpr std::string_view kEntrySignature("PK\x01\x02", 4);
constexpr std::size_t kEndSize = 22;
constexpr std::size_t kZip64LocatorSize = 20;
constexpr std::size_t kZip64EndSize = 56;
constexpr std::size_t kEntrySize = 46;
constexpr std::size_t kLongestComment = 0xFFFF;

struct Bounds {
    std::uint64_t offset = 0;
    std::uint64_t size = 0;
};

// The end record is the last thing in the file, followed only by a comment of up to 64 KiB.
std::optional<std::size_t> endRecordPosition(std::string_view archive) {
    if (archive.size() < kEndSize) return std::nullopt;
    const std::size_t last = archive.size() - kEndSize;
    const std::size_t first = last > kLongestComment ? last - kLongestComment : 0;
    for (std::size_t at = last + 1; at-- > first;) {
        if (archive.substr(at, 4) == kEndSignature) return at;
    }
    return std::nullopt;
}

// Where the directory lies, by the ZIP64 end record when the locator before the end record
// points at one.
std::optional<Bounds> zip64Bounds(std::string_view archive, std::size_t endPosition) {
    if (endPosition < kZip64LocatorSize) return std::nullopt;
    const std::size_t locator = endPosition - kZip64LocatorSize;
    if (archive.substr(locator, 4) != kZip64LocatorSignature) return std::nullopt;
    const std::uint64_t record = littleEndian(archive, locator + 8, 8);
    if (record > archive.size() || archive.size() - record < kZip64EndSize) return std::nullopt;
    const auto at = static_cast<std::size_t>(record);
    if (archive.substr(at, 4) != kZip64EndSignature) return std::nullopt;
    return Bounds{littleEndian(archive, at + 48, 8), littleEndian(archive, at + 40, 8)};
}

std::optional<Bounds> directoryBounds(std::string_view archive) {
    const auto end = endRecordPosition(archive);
    if (!end) return std::nullopt;
    Bounds bounds{littleEndian(archive, *end + 16, 4), littleEndian(archive, *end + 12, 4)};
    if (bounds.offset == kOverflow32 || bounds.size == kOverflow32) {
        const auto wide = zip64Bounds(archive, *end);
        if (!wide) return std::nullopt;
        bounds = *wide;
    }
    if (bounds.offset > archive.size() || bounds.size > archive.size() - bounds.offset) return std::nullopt;
    return bounds;
}

} // namespace

std::optional<ZipCentralDirectory> ZipCentralDirectory::read(std::string_view archive) {
    const auto bounds = directoryBounds(archive);
    if (!bounds) return std::nullopt;
    std::string_view rest = archive.substr(static_cast<std::size_t>(bounds->offset), static_cast<std::size_t>(bounds->size));
    ZipCentralDirectory directory;
    // Every step moves past a whole record, so the walk ends.
    while (rest.size() >= kEntrySize && rest.substr(0, 4) == kEntrySignature) {
        const std::size_t nameLength = littleEndian(rest, 28, 2);
        const std::size_t extraLength = littleEndian(rest, 30, 2);
        const std::size_t commentLength = littleEndian(rest, 32, 2);
        const std::size_t recordSize = kEntrySize + nameLength + extraLength + commentLength;
        if (recordSize > rest.size()) break;
        Entry entry{static_cast<std::uint16_t>(littleEndian(rest, 10, 2)), littleEndian(rest, 20, 4),
                    littleEndian(rest, 24, 4), littleEndian(rest, 42, 4)};
        zipformat::Zip64Fields wide(
            zipformat::extraBlock(rest.substr(kEntrySize + nameLength, extraLength), zipformat::kZip64ExtraID));
        wide.take(entry.uncompressedSize);
        wide.take(entry.compressedSize);
        wide.take(entry.localHeaderOffset);
        directory.m_entries.try_emplace(rest.substr(kEntrySize, nameLength), entry);
        rest.remove_prefix(recordSize);
    }
    return directory;
}

const ZipCentralDirectory::Entry* ZipCentralDirectory::find(std::string_view name) const {
    const auto found = m_entries.find(name);
    return found == m_entries.end() ? nullptr : &found->second;
}

} // namespace platform::compression
