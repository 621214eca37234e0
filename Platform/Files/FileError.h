#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>
#include <system_error>

namespace platform::files {

// A failed file-system operation, described in a sentence a user can act on,
// e.g. "The file “workspace.json” could not be saved: No space left on device."
class FileError : public std::runtime_error {
public:
    enum class Operation { read, write, createFolder, remove, list };

    FileError(Operation operation, const std::filesystem::path& path, std::error_code code);

    Operation operation() const { return m_operation; }
    const std::error_code& code() const { return m_code; }

private:
    Operation m_operation;
    std::error_code m_code;
};

} // namespace platform::files
