#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>

// Reads one entry of a Word document's ZIP container by walking its local file headers
// from the start; the central directory is never read.
namespace mibrel::DocxArchive {

class ArchiveError : public std::runtime_error {
public:
    enum class Kind { unreadable, missingEntry, unsupportedCompression };

    explicit ArchiveError(Kind kind);
    Kind kind() const { return m_kind; }

private:
    Kind m_kind;
};

// The entry's bytes. Throws ArchiveError, or FileError when the file cannot be read.
std::string entryData(const std::string& name, const std::filesystem::path& location);

// Inflates a raw DEFLATE stream into a buffer of four times its size (at least 4 KiB),
// doubling only when decoding fails, six attempts at most. Output that does not fit the
// buffer is cut there. Throws ArchiveError::unreadable.
std::string inflateDeflate(const std::string& compressed);

} // namespace mibrel::DocxArchive
