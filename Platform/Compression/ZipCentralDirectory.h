#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <unordered_map>

namespace platform::compression {

// What the central directory at the end of a ZIP archive says of each entry. Streaming
// writers (LibreOffice among them) know an entry's sizes only after its data, so their
// local headers say 0 and the true sizes are here.
class ZipCentralDirectory {
public:
    struct Entry {
        std::uint16_t method = 0;
        std::uint64_t compressedSize = 0;
        std::uint64_t uncompressedSize = 0;
        std::uint64_t localHeaderOffset = 0;
    };

    // Absent when the archive has no end-of-directory record or its directory does not fit
    // inside the buffer. ZIP64 records are followed where the 32-bit fields overflow.
    static std::optional<ZipCentralDirectory> read(std::string_view archive);

    // The first entry of that name, byte for byte.
    const Entry* find(std::string_view name) const;

private:
    std::unordered_map<std::string_view, Entry> m_entries; // names point into the archive
};

} // namespace platform::compression
