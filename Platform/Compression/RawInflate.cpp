#include "Platform/Compression/RawInflate.h"

#include <zlib.h>

namespace platform::compression {

std::string inflateRaw(std::string_view input, std::size_t capacity) {
    std::string output(capacity, '\0');
    z_stream stream{};
    if (inflateInit2(&stream, -MAX_WBITS) != Z_OK) return {};
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(input.data()));
    stream.avail_in = static_cast<uInt>(input.size());
    stream.next_out = reinterpret_cast<Bytef*>(output.data());
    stream.avail_out = static_cast<uInt>(capacity);
    const int status = inflate(&stream, Z_FINISH);
    const std::size_t written = capacity - stream.avail_out;
    inflateEnd(&stream);
    if (status == Z_DATA_ERROR || status == Z_MEM_ERROR || status == Z_NEED_DICT) return {};
    output.resize(written);
    return output;
}

} // namespace platform::compression
