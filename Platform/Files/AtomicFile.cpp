#include "Platform/Files/AtomicFile.h"

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

#include "Platform/Files/BatchedDurability.h"
#include "Platform/Files/FileError.h"
#include "Platform/Files/FileSystem.h"
#include "Platform/Foundation/Uuid.h"

namespace platform::files {
namespace fs = std::filesystem;
namespace {

std::error_code lastError() { return std::error_code(errno, std::generic_category()); }

// Makes the rename itself durable; a failure here loses nothing already written, so it is ignored.
void syncFolder(const fs::path& folder) {
    const int fd = ::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0) return;
    ::fsync(fd);
    ::close(fd);
}

} // namespace

AtomicFile::AtomicFile(fs::path target) : m_target(std::move(target)) {
    const fs::path folder = m_target.has_parent_path() ? m_target.parent_path() : fs::path(".");
    for (int attempt = 0; attempt < 16; ++attempt) {
        // Hidden, so a listing of the folder never shows a half-written file.
        m_temporary = folder / ("." + lastPathComponent(m_target) + "." + Uuid::random().uuidString().substr(0, 8));
        m_descriptor = ::open(m_temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (m_descriptor >= 0) return;
        if (errno != EEXIST) throw FileError(FileError::Operation::write, m_target, lastError());
    }
    throw FileError(FileError::Operation::write, m_target, std::make_error_code(std::errc::file_exists));
}

AtomicFile::~AtomicFile() {
    closeDescriptor();
    if (!m_committed) ::unlink(m_temporary.c_str());
}

void AtomicFile::closeDescriptor() {
    if (m_descriptor >= 0) ::close(m_descriptor);
    m_descriptor = -1;
}

void AtomicFile::write(std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = ::write(m_descriptor, bytes.data(), bytes.size());
        if (written < 0) {
            if (errno == EINTR) continue;
            throw FileError(FileError::Operation::write, m_target, lastError());
        }
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
}

void AtomicFile::commit() {
    const bool batched = BatchedDurability::isActive();
    if (!batched && ::fsync(m_descriptor) != 0) throw FileError(FileError::Operation::write, m_target, lastError());
    const int descriptor = m_descriptor;
    m_descriptor = -1;
    if (::close(descriptor) != 0 || ::rename(m_temporary.c_str(), m_target.c_str()) != 0) {
        throw FileError(FileError::Operation::write, m_target, lastError());
    }
    m_committed = true;
    if (!batched) syncFolder(m_target.parent_path());
}

} // namespace platform::files
