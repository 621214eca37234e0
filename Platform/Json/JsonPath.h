#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace platform::json {

// Where a value sits in a document, for error messages. Paths live on the stack of
// the decoding functions and point at their parents, so walking a document builds
// no strings until something fails.
struct JsonPath {
    static constexpr std::size_t noIndex = static_cast<std::size_t>(-1);

    const JsonPath* parent = nullptr;
    std::string_view key;          // an object member's key
    std::size_t index = noIndex;   // an array element's index

    // "categories[0].memo"; empty at the top level.
    std::string toString() const;
};

} // namespace platform::json
