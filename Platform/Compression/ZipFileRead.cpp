#include "Platform/Compression/ZipFileRead.h"

#include <array>

namespace platform::compression {

Unpacked readZipFile(zip_file_t* file, std::size_t limit) {
    std::string bytes;
    std::array<char, 64 * 1024> slice;
    for (;;) {
        const zip_int64_t count = zip_fread(file, slice.data(), slice.size());
        if (count < 0) return {};
        if (count == 0) return {Unpacked::Status::complete, std::move(bytes)};
        if (static_cast<std::size_t>(count) > limit - bytes.size()) return {Unpacked::Status::tooLarge, {}};
        bytes.append(slice.data(), static_cast<std::size_t>(count));
    }
}

} // namespace platform::compression
