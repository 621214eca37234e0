#include "MibrelMac/State/MibrelSampleProject.h"

#include <exception>
#include <string>

#include "MibrelMac/State/MibrelProjectSession.h"
#include "Platform/Files/FileSystem.h"
#include "Platform/Foundation/Uuid.h"

namespace mibrel::MibrelSampleProject {
namespace fs = std::filesystem;

fs::path freeCopyLocation(const fs::path& folder) {
    fs::path candidate = folder / (std::string(kCopyName) + ".mvibrl");
    for (int n = 2; platform::files::itemExists(candidate); ++n) {
        candidate = folder / (std::string(kCopyName) + " " + std::to_string(n) + ".mvibrl");
    }
    return candidate;
}

fs::path copy(const fs::path& bundledSample, const fs::path& folder, const fs::path& temporaryFolder) {
    const fs::path first = freeCopyLocation(folder);
    std::error_code error;
    fs::copy(bundledSample, first, fs::copy_options::recursive, error);
    if (!error) return first;
    std::error_code ignored;
    fs::remove_all(first, ignored); // never leave half a project behind
    const fs::path second =
        temporaryFolder / (std::string(kCopyName) + "-" + platform::Uuid::random().uuidString().substr(0, 8) + ".mvibrl");
    fs::copy(bundledSample, second, fs::copy_options::recursive, error);
    if (error) throw platform::files::FileError(platform::files::FileError::Operation::write, second, error);
    return second;
}

void openSample(MibrelProjectSession& session, const std::optional<fs::path>& bundledSample, const fs::path& folder,
                const fs::path& temporaryFolder) {
    if (!bundledSample) {
        session.setLastError(
            "The sample project could not be found in this copy of Mibrel. Reinstalling the app restores it.");
        return;
    }
    fs::path copied;
    try {
        copied = copy(*bundledSample, folder, temporaryFolder);
    } catch (const std::exception& error) {
        session.setLastError(std::string("The sample project could not be copied: ") + error.what());
        return;
    }
    session.openExternal(copied);
}

} // namespace mibrel::MibrelSampleProject
