#pragma once

#include <cstddef>

#include <zip.h>

#include "Platform/Compression/Unpacked.h"

namespace platform::compression {

// Reads an entry opened by libzip to its end, in slices, trusting no declared size: more
// than `limit` bytes is `tooLarge`, a read error (a damaged stream, a wrong checksum) is
// `corrupt`.
Unpacked readZipFile(zip_file_t* file, std::size_t limit);

} // namespace platform::compression
