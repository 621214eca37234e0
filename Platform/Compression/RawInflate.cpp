#include "Platform/Compression/RawInflate.h"

#include <algorithm>
#include <cstdint>
#include <limits>

#include <zlib.h>

namespace platform::compression {
namespace {

constexpr std::size_t kSmallestBuffer = 64 * 1024;
// DEFLATE cannot expand its input by much more than 1032 to 1: a larger declared size is a lie.
constexpr std::uint64_t kLargestExpansion = 1032;
// zlib counts in `uInt`; larger inputs and outputs go through in slices.
constexpr std::size_t kLargestSlice = std::numeric_limits<uInt>::max();

std::size_t firstBufferSize(std::size_t inputSize, std::size_t limit, std::uint64_t sizeHint) {
    const std::uint64_t possible = std::uint64_t{inputSize} * kLargestExpansion + kSmallestBuffer;
    const std::uint64_t wanted = sizeHint > 0 ? std::min(sizeHint, possible) : std::uint64_t{inputSize} * 4;
    // One byte beyond the limit tells a stream that reaches it from one that passes it.
    const std::uint64_t ceiling = std::uint64_t{limit} + 1;
    return static_cast<std::size_t>(std::min(ceiling, std::max<std::uint64_t>(wanted, kSmallestBuffer)));
}

struct Inflater {
    z_stream stream{};
    bool ready = inflateInit2(&stream, -MAX_WBITS) == Z_OK;
    ~Inflater() {
        if (ready) inflateEnd(&stream);
    }
};

} // namespace

Unpacked inflateWhole(std::string_view input, std::size_t limit, std::uint64_t sizeHint) {
    Inflater inflater;
    if (input.empty() || !inflater.ready) return {};
    z_stream& stream = inflater.stream;
    std::string output(firstBufferSize(input.size(), limit, sizeHint), '\0');
    std::size_t consumed = 0;
    std::size_t written = 0;
    for (;;) {
        if (stream.avail_in == 0 && consumed < input.size()) {
            const std::size_t slice = std::min(input.size() - consumed, kLargestSlice);
            stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(input.data() + consumed));
            stream.avail_in = static_cast<uInt>(slice);
            consumed += slice;
        }
        if (written == output.size()) {
            if (written > limit) return {Unpacked::Status::tooLarge, {}};
            output.resize(std::min(output.size() * 2, limit + 1));
        }
        const std::size_t room = std::min(output.size() - written, kLargestSlice);
        stream.next_out = reinterpret_cast<Bytef*>(output.data() + written);
        stream.avail_out = static_cast<uInt>(room);
        const int status = inflate(&stream, Z_NO_FLUSH);
        written += room - stream.avail_out;
        if (status == Z_STREAM_END) break;
        if (status == Z_BUF_ERROR && stream.avail_in == 0 && consumed == input.size()) return {}; // cut short
        if (status != Z_OK && status != Z_BUF_ERROR) return {};
    }
    if (written > limit) return {Unpacked::Status::tooLarge, {}};
    output.resize(written);
    return {Unpacked::Status::complete, std::move(output)};
}

} // namespace platform::compression
