#pragma once

#include <filesystem>
#include <string>

#include "Platform/Files/AtomicFile.h"
#include "Platform/Files/FileSystem.h"
#include "Platform/Json/JsonCoding.h"

namespace platform::json {

// Reads and decodes a whole file. Throws FileError or DecodingError.
template <class T>
T readJsonFile(const std::filesystem::path& path) {
    return decode<T>(files::readFile(path));
}

// Encodes with the shared encoder straight into a new file that replaces the old one
// whole when done; a failure part-way leaves the old file as it was. Throws EncodingError
// or FileError.
template <class T>
void writeJsonFile(const std::filesystem::path& path, const T& value) {
    files::AtomicFile file(path);
    JsonWriter writer([&file](std::string_view chunk) { file.write(chunk); });
    JsonCoder<T>::encode(writer, value);
    writer.finish();
    file.commit();
}

} // namespace platform::json
