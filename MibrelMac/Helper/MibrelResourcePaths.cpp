#include "MibrelMac/Helper/MibrelResourcePaths.h"

#include <cstdlib>

#include <unistd.h>

#include <QCoreApplication>

#include "MibrelMac/Helper/MibrelSidecarError.h"

namespace mibrel::MibrelResourcePaths {
namespace fs = std::filesystem;

std::optional<fs::path> resourceDirectory() {
    std::error_code error;
    if (QCoreApplication::instance()) {
        const fs::path installed =
            fs::path(QCoreApplication::applicationDirPath().toStdString()) / ".." / "share" / "mibrel";
        if (fs::is_directory(installed, error)) return installed.lexically_normal();
    }
    const fs::path sourceTree = MIBREL_SOURCE_RESOURCES;
    if (fs::is_directory(sourceTree, error)) return sourceTree;
    return std::nullopt;
}

fs::path developmentResourceRoot() { return MIBREL_DEVELOPMENT_RESOURCES; }

namespace {

const char* const kHelperRelativePath = "apple/apple-helper";

bool isExecutableFile(const fs::path& path) {
    std::error_code error;
    return fs::is_regular_file(path, error) && ::access(path.c_str(), X_OK) == 0;
}

} // namespace

fs::path appleHelperExecutable() {
    if (const char* configured = std::getenv("MIBREL_APPLE_HELPER"); configured && *configured) {
        if (isExecutableFile(configured)) return configured;
    }
    if (const auto resources = resourceDirectory(); resources && isExecutableFile(*resources / kHelperRelativePath)) {
        return *resources / kHelperRelativePath;
    }
    if (isExecutableFile(developmentResourceRoot() / kHelperRelativePath)) {
        return developmentResourceRoot() / kHelperRelativePath;
    }
    throw MibrelSidecarError::missingAppleHelper();
}

std::optional<fs::path> bundledSampleURL() {
    const auto resources = resourceDirectory();
    if (!resources) return std::nullopt;
    const fs::path sample = *resources / "Samples" / "TeacherRetention.mvibrl";
    std::error_code error;
    if (!fs::is_directory(sample, error)) return std::nullopt;
    return sample;
}

} // namespace mibrel::MibrelResourcePaths
