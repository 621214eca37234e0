#include "Platform/Files/FileError.h"

#include "Platform/Files/FileSystem.h"

namespace platform::files {
namespace {

std::string describe(FileError::Operation operation, const std::filesystem::path& path, const std::error_code& code) {
    const std::string name = "“" + lastPathComponent(path) + "”";
    const std::string reason = code.message();
    switch (operation) {
    case FileError::Operation::read: return "The file " + name + " could not be read: " + reason + ".";
    case FileError::Operation::write: return "The file " + name + " could not be saved: " + reason + ".";
    case FileError::Operation::createFolder: return "The folder " + name + " could not be created: " + reason + ".";
    case FileError::Operation::remove: return name + " could not be removed: " + reason + ".";
    case FileError::Operation::list: return "The folder " + name + " could not be read: " + reason + ".";
    }
    return name + ": " + reason + ".";
}

} // namespace

FileError::FileError(Operation operation, const std::filesystem::path& path, std::error_code code)
    : std::runtime_error(describe(operation, path, code)), m_operation(operation), m_code(code) {}

} // namespace platform::files
