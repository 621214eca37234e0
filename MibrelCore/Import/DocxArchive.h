#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>

// Reads one entry of a Word document's ZIP container by walking its local file headers
// from the start; entries written in streaming mode take their sizes from the central
// directory.
namespace mibrel::DocxArchive {

// Each kind tells the researcher what went wrong and what to do about it.
class ArchiveError : public std::runtime_error {
public:
    enum class Kind {
        unreadable,             // the entry's data cannot be unpacked
        missingEntry,           // no such entry: damaged, or not a Word document
        unsupportedCompression, // packed by a method other than stored or DEFLATE
        entryTooLarge,          // it would unpack beyond any real document's size
        protectedOrLegacy,      // an encrypted document, or an old .doc, in a compound file
    };

    explicit ArchiveError(Kind kind);
    Kind kind() const { return m_kind; }

private:
    Kind m_kind;
};

// The entry's bytes, unpacked whole. Throws ArchiveError, or FileError when the file cannot
// be read.
std::string entryData(const std::string& name, const std::filesystem::path& location);

// The same, from the archive's bytes already in memory.
std::string entryDataFromBytes(const std::string& name, std::string_view archive);

// Hands the entry's bytes to `take` in order, as they are unpacked on a second thread, for a
// reader that need not hold the whole entry. Throws as `entryData` does, a damaged or
// oversized stream only after `take` saw the pieces before the fault.
void streamEntry(const std::string& name, const std::filesystem::path& location,
                 const std::function<void(std::string_view)>& take);

// Inflates a whole raw DEFLATE stream. Throws ArchiveError: `unreadable` when it is empty,
// damaged or cut short, `entryTooLarge` beyond `limit` bytes (by default the bound for an
// archive the size of the input).
std::string inflateDeflate(std::string_view compressed, std::size_t limit = 0, std::uint64_t sizeHint = 0);

} // namespace mibrel::DocxArchive
