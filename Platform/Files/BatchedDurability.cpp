#include "Platform/Files/BatchedDurability.h"

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

#include "Platform/Files/FileError.h"

namespace platform::files {
namespace {

thread_local BatchedDurability* current = nullptr;

} // namespace

BatchedDurability::BatchedDurability(std::filesystem::path onFileSystemOf)
    : m_location(std::move(onFileSystemOf)), m_outer(current) {
    current = this;
}

BatchedDurability::~BatchedDurability() {
    current = m_outer;
    if (!m_pending) return;
    try {
        flush();
    } catch (...) {
        // Nothing to report to: the writer has already gone its way.
    }
}

void BatchedDurability::flush() {
    m_pending = false;
    const int descriptor = ::open(m_location.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0) throw FileError(FileError::Operation::write, m_location, std::error_code(errno, std::generic_category()));
    const int result = ::syncfs(descriptor);
    const int error = errno;
    ::close(descriptor);
    if (result != 0) throw FileError(FileError::Operation::write, m_location, std::error_code(error, std::generic_category()));
}

bool BatchedDurability::isActive() { return current != nullptr; }

} // namespace platform::files
