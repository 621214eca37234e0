#pragma once

#include <optional>
#include <string>

#include <QDialog>

namespace mibrel {

// "{short} ({build})" when both are known and differ, the one known (or both equal)
// otherwise, and "Development build" with neither.
std::string versionText(const std::optional<std::string>& shortVersion, const std::optional<std::string>& build);

// The settings window: the program's version and a link to the maker's site.
class MibrelSettingsView : public QDialog {
    Q_OBJECT

public:
    explicit MibrelSettingsView(QWidget* parent = nullptr);
};

} // namespace mibrel
