#include "MibrelMac/App/MibrelLaunchArguments.h"

#include <QDir>

namespace mibrel::MibrelLaunchArguments {

std::optional<std::filesystem::path> projectToOpen(const QStringList& arguments) {
    const qsizetype flag = arguments.indexOf(QStringLiteral("--open"), 1);
    if (flag < 0 || flag + 1 >= arguments.size()) return std::nullopt;
    QString path = arguments[flag + 1];
    if (path == QStringLiteral("~") || path.startsWith(QStringLiteral("~/"))) path.replace(0, 1, QDir::homePath());
    std::error_code error;
    const std::filesystem::path location = std::filesystem::absolute(path.toStdString(), error);
    if (error || !std::filesystem::exists(location, error)) return std::nullopt;
    return location;
}

} // namespace mibrel::MibrelLaunchArguments
