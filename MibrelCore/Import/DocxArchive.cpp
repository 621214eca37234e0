#include "MibrelCore/Import/DocxArchive.h"

#include <cstdint>
#include <string_view>

#include "Platform/Compression/RawInflate.h"
#include "Platform/Files/FileSystem.h"
#include "Platform/Text/TextDecoding.h"

namespace mibrel::DocxArchive {
namespace {

constexpr std::size_t kLocalHeaderSize = 30;
constexpr int kInflateAttempts = 6;
constexpr std::size_t kMinimumCapacity = 4096;

std::uint32_t littleEndian(std::string_view bytes, std::size_t at, std::size_t width) {
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < width; ++i) {
        value |= static_cast<std::uint32_t>(static_cast<unsigned char>(bytes[at + i])) << (8 * i);
    }
    return value;
}

// What the user sees for these errors: the generic words for an error of this type.
std::string describe(ArchiveError::Kind kind) {
    return "The operation couldn’t be completed. (MibrelCore.DocxArchive.ArchiveError error " +
           std::to_string(static_cast<int>(kind)) + ".)";
}

} // namespace

ArchiveError::ArchiveError(Kind kind) : std::runtime_error(describe(kind)), m_kind(kind) {}

std::string entryData(const std::string& name, const std::filesystem::path& location) {
    const std::string file = platform::files::readFile(location);
    const std::string_view bytes = file;
    std::size_t position = 0;
    while (true) {
        if (bytes.size() - position < kLocalHeaderSize || bytes.substr(position, 4) != std::string_view("PK\x03\x04", 4)) {
            throw ArchiveError(ArchiveError::Kind::missingEntry);
        }
        const auto method = littleEndian(bytes, position + 8, 2);
        const std::size_t compressedSize = littleEndian(bytes, position + 18, 4);
        const std::size_t nameLength = littleEndian(bytes, position + 26, 2);
        const std::size_t extraLength = littleEndian(bytes, position + 28, 2);
        const std::size_t nameStart = position + kLocalHeaderSize;
        if (nameStart + nameLength > bytes.size()) throw ArchiveError(ArchiveError::Kind::missingEntry);
        const std::size_t dataStart = nameStart + nameLength + extraLength;
        if (dataStart > bytes.size() || compressedSize > bytes.size() - dataStart) {
            throw ArchiveError(ArchiveError::Kind::missingEntry);
        }
        const auto entryName = platform::text::decodeUTF8Strict(bytes.substr(nameStart, nameLength)).value_or("");
        if (entryName == name) {
            const std::string data(bytes.substr(dataStart, compressedSize));
            if (method == 0) return data;
            if (method == 8) return inflateDeflate(data);
            throw ArchiveError(ArchiveError::Kind::unsupportedCompression);
        }
        position = dataStart + compressedSize;
    }
}

std::string inflateDeflate(const std::string& compressed) {
    if (compressed.empty()) throw ArchiveError(ArchiveError::Kind::unreadable);
    std::size_t capacity = std::max(compressed.size() * 4, kMinimumCapacity);
    for (int attempt = 0; attempt < kInflateAttempts; ++attempt) {
        std::string inflated = platform::compression::inflateRaw(compressed, capacity);
        if (!inflated.empty()) return inflated;
        capacity *= 2;
    }
    throw ArchiveError(ArchiveError::Kind::unreadable);
}

} // namespace mibrel::DocxArchive
