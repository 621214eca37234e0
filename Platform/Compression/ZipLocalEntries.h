#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace platform::compression {

// One entry of a ZIP archive as its local file header describes it.
struct ZipLocalEntry {
    std::uint16_t method = 0;           // 0 stored, 8 DEFLATE, anything else as written
    std::string_view data;              // the compressed bytes, inside the walked buffer
    std::uint64_t uncompressedSize = 0; // as declared by the writer, so not to be trusted
};

// Walks the local file headers from the start of the buffer, entry after entry, and
// returns the first whose name equals `name` byte for byte. A header that leaves its sizes
// to a data descriptor behind the data (general-purpose flag bit 3, as streaming writers
// do) takes them from the central directory entry of the same name, and the walk steps
// over the descriptor; ZIP64 sizes are read where a header carries them. A short or
// foreign header, or sizes that run past the end of the buffer, end the walk with absent.
std::optional<ZipLocalEntry> findLocalEntry(std::string_view archive, std::string_view name);

} // namespace platform::compression
