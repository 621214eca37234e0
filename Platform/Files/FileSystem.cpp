#include "Platform/Files/FileSystem.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "Platform/Files/AtomicFile.h"

namespace platform::files {
namespace fs = std::filesystem;
namespace {

std::error_code lastError() { return std::error_code(errno, std::generic_category()); }

} // namespace

std::string readFile(const fs::path& path) {
    const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) throw FileError(FileError::Operation::read, path, lastError());
    std::string contents;
    struct stat info {};
    if (::fstat(fd, &info) == 0 && S_ISDIR(info.st_mode)) {
        ::close(fd);
        throw FileError(FileError::Operation::read, path, std::make_error_code(std::errc::is_a_directory));
    }
    if (info.st_size > 0) contents.reserve(static_cast<std::size_t>(info.st_size));
    char buffer[1 << 16];
    while (true) {
        const ssize_t count = ::read(fd, buffer, sizeof buffer);
        if (count == 0) break;
        if (count < 0) {
            if (errno == EINTR) continue;
            const auto error = lastError();
            ::close(fd);
            throw FileError(FileError::Operation::read, path, error);
        }
        contents.append(buffer, static_cast<std::size_t>(count));
    }
    ::close(fd);
    return contents;
}

void writeFileAtomically(const fs::path& path, std::string_view bytes) {
    AtomicFile file(path);
    file.write(bytes);
    file.commit();
}

void createDirectories(const fs::path& path) {
    std::error_code error;
    fs::create_directories(path, error);
    if (error) throw FileError(FileError::Operation::createFolder, path, error);
    if (!isDirectory(path)) {
        throw FileError(FileError::Operation::createFolder, path, std::make_error_code(std::errc::not_a_directory));
    }
}

void removeItem(const fs::path& path) {
    std::error_code error;
    fs::remove_all(path, error);
    if (error) throw FileError(FileError::Operation::remove, path, error);
}

bool itemExists(const fs::path& path) noexcept {
    std::error_code error;
    return fs::symlink_status(path, error).type() != fs::file_type::not_found && !error;
}

bool isDirectory(const fs::path& path) noexcept {
    std::error_code error;
    return fs::is_directory(path, error);
}

std::vector<DirectoryEntry> listDirectory(const fs::path& path) {
    std::error_code error;
    fs::directory_iterator it(path, error);
    if (error) throw FileError(FileError::Operation::list, path, error);
    std::vector<DirectoryEntry> entries;
    for (; it != fs::directory_iterator(); it.increment(error)) {
        std::string name = it->path().filename().string();
        if (name.empty() || name.front() == '.') continue;
        std::error_code typeError;
        entries.push_back({std::move(name), it->is_directory(typeError)});
    }
    if (error) throw FileError(FileError::Operation::list, path, error);
    return entries;
}

std::string lastPathComponent(const fs::path& path) {
    fs::path trimmed = path;
    while (!trimmed.empty() && !trimmed.has_filename() && trimmed.has_relative_path()) {
        trimmed = trimmed.parent_path();
    }
    return trimmed.filename().string();
}

std::string lowercasedExtension(const fs::path& path) {
    const std::string name = lastPathComponent(path);
    const auto dot = name.rfind('.');
    if (dot == std::string::npos || dot == 0) return {};
    std::string extension = name.substr(dot + 1);
    for (char& c : extension) c = static_cast<char>(c >= 'A' && c <= 'Z' ? c + ('a' - 'A') : c);
    return extension;
}

} // namespace platform::files
