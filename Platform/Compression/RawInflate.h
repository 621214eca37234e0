#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "Platform/Compression/Unpacked.h"

namespace platform::compression {

// Inflates a raw DEFLATE stream (no zlib or gzip wrapper) to its end, growing the output
// as it goes. A stream that is damaged, empty or stops before its last block is `corrupt`;
// one that would yield more than `limit` bytes is `tooLarge`, found without holding more
// than the limit. `sizeHint` (what the archive declares, 0 when unknown) sizes the first
// buffer; it is never trusted beyond what the input could hold.
Unpacked inflateWhole(std::string_view input, std::size_t limit, std::uint64_t sizeHint = 0);

} // namespace platform::compression
