#pragma once

#include <filesystem>

namespace platform::files {

// While one of these lives on a thread, atomic writes on that thread still replace their
// targets whole, but skip their own flushes to disk; flush() then makes all of them
// durable with one call for the whole file system. For writing thousands of new files
// that only become reachable through an index written after flush(). Dropped without
// flush(), it flushes anyway, ignoring failures.
class BatchedDurability {
public:
    explicit BatchedDurability(std::filesystem::path onFileSystemOf);
    ~BatchedDurability();
    BatchedDurability(const BatchedDurability&) = delete;
    BatchedDurability& operator=(const BatchedDurability&) = delete;

    // Throws FileError when the file system reports that the data could not be written.
    void flush();

    // Whether writes on this thread are being batched now.
    static bool isActive();

private:
    std::filesystem::path m_location;
    BatchedDurability* m_outer;
    bool m_pending = true;
};

} // namespace platform::files
