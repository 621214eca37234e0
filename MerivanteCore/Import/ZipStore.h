#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace merivante {

// The small archive reader behind field packages: one named entry, found by walking the
// local file headers, stored or DEFLATE-compressed.
struct ZipStore {
    // The entry's bytes; absent when the data is not such an archive, the entry is missing,
    // its compression is another, or its DEFLATE stream cannot be decoded.
    static std::optional<std::string> extract(std::string_view data, std::string_view name);
};

} // namespace merivante
