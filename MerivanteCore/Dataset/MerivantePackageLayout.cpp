#include "MerivanteCore/Dataset/MerivantePackageLayout.h"

#include <cerrno>
#include <fcntl.h>
#include <string>
#include <system_error>
#include <unistd.h>

#include "Platform/Files/FileError.h"
#include "Platform/Files/FileSystem.h"
#include "Platform/Json/JsonCoding.h"

namespace merivante::MerivantePackageLayout {
namespace {

namespace fs = std::filesystem;
using platform::files::FileError;

[[noreturn]] void failWrite(const fs::path& path, int error) {
    throw FileError(FileError::Operation::write, path, std::error_code(error, std::generic_category()));
}

// Truncates and writes in place. A fresh package has no readers yet, so the cost of a
// temporary file and a rename buys nothing here.
void writeFile(const fs::path& path, std::string_view bytes) {
    const int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    if (fd < 0) failWrite(path, errno);
    while (!bytes.empty()) {
        const ssize_t written = ::write(fd, bytes.data(), bytes.size());
        if (written < 0) {
            if (errno == EINTR) continue;
            const int error = errno;
            ::close(fd);
            failWrite(path, error);
        }
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    if (::close(fd) != 0 && errno != EINTR) failWrite(path, errno);
}

} // namespace

void createFolder(const fs::path& location, const MerivanteProjectManifest& manifest) {
    platform::files::createDirectories(location);
    for (const Entry& entry : requiredEntries) {
        if (entry.kind == EntryKind::folder) platform::files::createDirectories(location / entry.name);
    }
    writeFile(location / manifestFileName, platform::json::encode(manifest));
    for (const Entry& entry : requiredEntries) {
        if (entry.kind == EntryKind::file && entry.name != manifestFileName) {
            writeFile(location / entry.name, entry.initialContents);
        }
    }
}

} // namespace merivante::MerivantePackageLayout
