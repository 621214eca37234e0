#pragma once

#include <filesystem>
#include <string_view>

namespace platform::files {

// A file written in pieces that appears at its path whole or not at all: the pieces go
// to a hidden temporary file beside the target, and commit() flushes it to disk and
// renames it over the target. Dropped without commit(), it removes the temporary file
// and the target is untouched. Every operation throws FileError.
class AtomicFile {
public:
    explicit AtomicFile(std::filesystem::path target);
    ~AtomicFile();
    AtomicFile(const AtomicFile&) = delete;
    AtomicFile& operator=(const AtomicFile&) = delete;

    void write(std::string_view bytes);
    void commit();

private:
    void closeDescriptor();

    std::filesystem::path m_target;
    std::filesystem::path m_temporary;
    int m_descriptor = -1;
    bool m_committed = false;
};

} // namespace platform::files
