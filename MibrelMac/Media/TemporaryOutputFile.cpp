#include "MibrelMac/Media/TemporaryOutputFile.h"

#include <cerrno>
#include <random>
#include <string>
#include <system_error>

#include <fcntl.h>
#include <unistd.h>

#include "MibrelMac/Media/MibrelMediaError.h"

namespace mibrel::media::detail {

namespace {

std::string randomTag() {
    static constexpr char digits[] = "0123456789abcdef";
    std::random_device device;
    std::uniform_int_distribution<int> pick(0, 15);
    std::string tag(12, '0');
    for (char& c : tag) {
        c = digits[pick(device)];
    }
    return tag;
}

[[noreturn]] void cannotWrite(const std::filesystem::path& folder, const std::string& reason) {
    const std::string where = folder.empty() ? std::string("the current folder") : folder.string();
    throw MibrelMediaLayerError("The export could not be written in " + where + " (" + reason + ").");
}

} // namespace

TemporaryOutputFile::TemporaryOutputFile(const std::filesystem::path& destination) : m_destination(destination) {
    const std::string name = destination.filename().string();
    if (name.empty() || name == "." || name == "..") {
        throw MibrelMediaLayerError("The export needs a file name to be written to.");
    }
    const auto folder = destination.parent_path();
    // Created exclusively, so that two exports to the same place never share a file.
    for (int attempt = 0; attempt < 8; ++attempt) {
        auto candidate = folder / ("." + name + "." + randomTag() + ".tmp");
        const int descriptor = ::open(candidate.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (descriptor >= 0) {
            ::close(descriptor);
            m_path = std::move(candidate);
            return;
        }
        if (errno != EEXIST) {
            cannotWrite(folder, std::generic_category().message(errno));
        }
    }
    cannotWrite(folder, "no free temporary name");
}

TemporaryOutputFile::~TemporaryOutputFile() {
    if (!m_committed) {
        std::error_code ignored;
        std::filesystem::remove(m_path, ignored);
    }
}

void TemporaryOutputFile::commit() {
    std::error_code error;
    std::filesystem::rename(m_path, m_destination, error);
    if (error) {
        throw MibrelMediaLayerError("The export could not be moved into place (" + error.message() + ").");
    }
    m_committed = true;
}

} // namespace mibrel::media::detail
