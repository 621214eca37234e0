#include "MibrelMac/State/MibrelRecentProjectsStore.h"

#include <QSettings>
#include <QStringList>

namespace mibrel::MibrelRecentProjectsStore {
namespace {

const QString kKey = QStringLiteral("mibrel.recentProjects");

QString pathString(const std::filesystem::path& project) { return QString::fromStdString(project.string()); }

void store(QSettings& settings, const QStringList& paths) { settings.setValue(kKey, paths); }

} // namespace

void remember(QSettings& settings, const std::filesystem::path& project) {
    QStringList paths = settings.value(kKey).toStringList();
    paths.removeAll(pathString(project));
    paths.prepend(pathString(project));
    while (paths.size() > kMaximumCount) paths.removeLast();
    store(settings, paths);
}

std::vector<std::filesystem::path> load(const QSettings& settings) {
    std::vector<std::filesystem::path> projects;
    for (const QString& path : settings.value(kKey).toStringList()) {
        std::filesystem::path project = path.toStdString();
        std::error_code error;
        if (std::filesystem::exists(project, error)) projects.push_back(std::move(project));
    }
    return projects;
}

void forget(QSettings& settings, const std::filesystem::path& project) {
    QStringList paths = settings.value(kKey).toStringList();
    paths.removeAll(pathString(project));
    store(settings, paths);
}

} // namespace mibrel::MibrelRecentProjectsStore
