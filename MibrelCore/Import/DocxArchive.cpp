#include "MibrelCore/Import/DocxArchive.h"

#include "Platform/Compression/RawInflate.h"
#include "Platform/Compression/ZipLocalEntries.h"
#include "Platform/Files/FileSystem.h"

namespace mibrel::DocxArchive {
namespace {

using platform::compression::Unpacked;

constexpr std::uint16_t kStored = 0;
constexpr std::uint16_t kDeflated = 8;

// Word's own encryption, and the .doc format before it, keep the document in an OLE
// compound file, which starts with these bytes.
constexpr std::string_view kCompoundFileSignature("\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1", 8);

constexpr std::string_view kSaveAgain =
    " Open it in your word processor and save it again as .docx, or export it as .txt.";

std::string describe(ArchiveError::Kind kind) {
    switch (kind) {
    case ArchiveError::Kind::unreadable:
        return std::string("This Word file is damaged: its text cannot be unpacked.").append(kSaveAgain);
    case ArchiveError::Kind::missingEntry:
        return std::string("This Word file is damaged or not a Word document.").append(kSaveAgain);
    case ArchiveError::Kind::unsupportedCompression:
        return std::string("This Word file is packed in a way Mibrel cannot read.").append(kSaveAgain);
    case ArchiveError::Kind::entryTooLarge:
        return "This Word file unpacks to far more than any document holds, so it was not read. It may be "
               "damaged; open it in your word processor and export it as .txt.";
    case ArchiveError::Kind::protectedOrLegacy:
        return "This Word file is protected by a password, or is an older .doc file. Remove the password, or "
               "save it as .docx, in your word processor; or export it as .txt.";
    }
    return {};
}

// The wanted entry, stored or deflated; anything else throws.
platform::compression::ZipLocalEntry locate(const std::string& name, std::string_view archive) {
    const auto entry = platform::compression::findLocalEntry(archive, name);
    if (!entry) {
        const bool compound = archive.substr(0, kCompoundFileSignature.size()) == kCompoundFileSignature;
        throw ArchiveError(compound ? ArchiveError::Kind::protectedOrLegacy : ArchiveError::Kind::missingEntry);
    }
    if (entry->method != kStored && entry->method != kDeflated) {
        throw ArchiveError(ArchiveError::Kind::unsupportedCompression);
    }
    return *entry;
}

void throwUnlessComplete(Unpacked::Status status) {
    switch (status) {
    case Unpacked::Status::complete: return;
    case Unpacked::Status::tooLarge: throw ArchiveError(ArchiveError::Kind::entryTooLarge);
    case Unpacked::Status::corrupt: break;
    }
    throw ArchiveError(ArchiveError::Kind::unreadable);
}

} // namespace

ArchiveError::ArchiveError(Kind kind) : std::runtime_error(describe(kind)), m_kind(kind) {}

std::string entryData(const std::string& name, const std::filesystem::path& location) {
    return entryDataFromBytes(name, platform::files::readFile(location));
}

std::string entryDataFromBytes(const std::string& name, std::string_view archive) {
    const auto entry = locate(name, archive);
    if (entry.method == kStored) return std::string(entry.data);
    return inflateDeflate(entry.data, platform::compression::unpackLimit(archive.size()), entry.uncompressedSize);
}

void streamEntry(const std::string& name, const std::filesystem::path& location,
                 const std::function<void(std::string_view)>& take) {
    const std::string archive = platform::files::readFile(location);
    const auto entry = locate(name, archive);
    if (entry.method == kStored) return take(entry.data);
    const std::size_t limit = platform::compression::unpackLimit(archive.size());
    throwUnlessComplete(platform::compression::inflateAlongside(entry.data, limit, take));
}

std::string inflateDeflate(std::string_view compressed, std::size_t limit, std::uint64_t sizeHint) {
    if (limit == 0) limit = platform::compression::unpackLimit(compressed.size());
    Unpacked unpacked = platform::compression::inflateWhole(compressed, limit, sizeHint);
    throwUnlessComplete(unpacked.status);
    return std::move(unpacked.bytes);
}

} // namespace mibrel::DocxArchive
