#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace platform::compression {

// One entry of a ZIP archive as its local file header describes it.
struct ZipLocalEntry {
    std::uint16_t method = 0;           // 0 stored, 8 DEFLATE, anything else as written
    std::string_view data;              // the compressed bytes, inside the walked buffer
    std::uint32_t uncompressedSize = 0; // as declared by the writer, so not to be trusted
};

// Walks the local file headers from the start of the buffer, entry after entry, and
// returns the first whose name equals `name` byte for byte. The central directory is
// never read, so an archive whose sizes follow the data (data descriptors) is not
// walked past its first such entry. A short or foreign header, or sizes that run past
// the end of the buffer, end the walk with absent.
std::optional<ZipLocalEntry> findLocalEntry(std::string_view archive, std::string_view name);

} // namespace platform::compression
