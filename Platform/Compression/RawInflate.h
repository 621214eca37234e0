#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string_view>

#include "Platform/Compression/Unpacked.h"

namespace platform::compression {

// A raw DEFLATE stream (no zlib or gzip wrapper) unpacked a buffer at a time.
class RawInflater {
public:
    enum class State { running, ended, corrupt };

    explicit RawInflater(std::string_view input);
    ~RawInflater();
    RawInflater(const RawInflater&) = delete;
    RawInflater& operator=(const RawInflater&) = delete;

    // Unpacks up to `room` bytes (at least 1) to `out` and says how many came. An empty,
    // damaged or cut-short stream turns `corrupt`; the end of the last block, `ended`.
    std::size_t fill(char* out, std::size_t room);
    State state() const { return m_state; }

private:
    struct Stream;
    std::unique_ptr<Stream> m_stream;
    State m_state = State::running;
};

// Inflates a whole stream, growing the output as it goes. One that would yield more than
// `limit` bytes is `tooLarge`, found without holding more than the limit. `sizeHint` (what
// the archive declares, 0 when unknown) sizes the first buffer; it is never trusted beyond
// what the input could hold.
Unpacked inflateWhole(std::string_view input, std::size_t limit, std::uint64_t sizeHint = 0);

// Inflates on a second thread while `take` receives the pieces, in order, on this one, so
// that unpacking and reading overlap. The status says how the stream ended: `complete`,
// or `corrupt` or `tooLarge` after the pieces before the fault were taken. Bytes, in the
// result, stay empty.
Unpacked::Status inflateAlongside(std::string_view input, std::size_t limit,
                                  const std::function<void(std::string_view)>& take);

} // namespace platform::compression
