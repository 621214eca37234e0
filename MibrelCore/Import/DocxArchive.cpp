#include "MibrelCore/Import/DocxArchive.h"

#include <algorithm>

#include "Platform/Compression/RawInflate.h"
#include "Platform/Compression/ZipLocalEntries.h"
#include "Platform/Files/FileSystem.h"

namespace mibrel::DocxArchive {
namespace {

constexpr int kInflateAttempts = 6;
constexpr std::size_t kMinimumCapacity = 4096;

// What the user sees for these errors: the generic words for an error of this type.
std::string describe(ArchiveError::Kind kind) {
    return "The operation couldn’t be completed. (MibrelCore.DocxArchive.ArchiveError error " +
           std::to_string(static_cast<int>(kind)) + ".)";
}

} // namespace

ArchiveError::ArchiveError(Kind kind) : std::runtime_error(describe(kind)), m_kind(kind) {}

std::string entryData(const std::string& name, const std::filesystem::path& location) {
    const std::string file = platform::files::readFile(location);
    const auto entry = platform::compression::findLocalEntry(file, name);
    if (!entry) throw ArchiveError(ArchiveError::Kind::missingEntry);
    if (entry->method == 0) return std::string(entry->data);
    if (entry->method == 8) return inflateDeflate(std::string(entry->data));
    throw ArchiveError(ArchiveError::Kind::unsupportedCompression);
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
