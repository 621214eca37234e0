#include "MibrelMac/Helper/MibrelResourcePaths.h"

#include <QCoreApplication>

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

std::optional<fs::path> bundledSampleURL() {
    const auto resources = resourceDirectory();
    if (!resources) return std::nullopt;
    const fs::path sample = *resources / "Samples" / "TeacherRetention.mvibrl";
    std::error_code error;
    if (!fs::is_directory(sample, error)) return std::nullopt;
    return sample;
}

} // namespace mibrel::MibrelResourcePaths
