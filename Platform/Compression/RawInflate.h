#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace platform::compression {

// Inflates a raw DEFLATE stream (no zlib or gzip wrapper) into at most `capacity` bytes.
// Returns what was decoded: empty only for input that cannot be decoded at all. Output
// that does not fit is cut at `capacity`, and that cut result counts as success, so a
// caller that needs everything must give a large enough capacity.
std::string inflateRaw(std::string_view input, std::size_t capacity);

} // namespace platform::compression
