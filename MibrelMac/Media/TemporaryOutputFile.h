#pragma once

#include <filesystem>

namespace mibrel::media::detail {

// A file written beside its destination under a hidden temporary name, so that the
// destination only ever appears complete: commit() moves it into place, and otherwise
// it is removed when this goes away.
class TemporaryOutputFile {
public:
    // Creates the temporary file, empty. Throws MibrelMediaLayerError when the
    // destination's folder cannot take it.
    explicit TemporaryOutputFile(const std::filesystem::path& destination);
    ~TemporaryOutputFile();
    TemporaryOutputFile(const TemporaryOutputFile&) = delete;
    TemporaryOutputFile& operator=(const TemporaryOutputFile&) = delete;

    const std::filesystem::path& path() const { return m_path; }

    // Replaces the destination with the written file. Throws MibrelMediaLayerError.
    void commit();

private:
    std::filesystem::path m_destination;
    std::filesystem::path m_path;
    bool m_committed = false;
};

} // namespace mibrel::media::detail
