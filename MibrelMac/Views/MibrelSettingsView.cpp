#include "MibrelMac/Views/MibrelSettingsView.h"

#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QVBoxLayout>

namespace mibrel {
namespace {

// The maker's site; a configuration value of this build.
const QString kWebsite = QStringLiteral("https://merivante.example");

std::optional<std::string> buildNumber() {
#ifdef MIBREL_BUILD_NUMBER
    return std::string(MIBREL_BUILD_NUMBER);
#else
    return std::nullopt;
#endif
}

} // namespace

std::string versionText(const std::optional<std::string>& shortVersion, const std::optional<std::string>& build) {
    if (shortVersion && build) return *shortVersion == *build ? *shortVersion : *shortVersion + " (" + *build + ")";
    if (shortVersion) return *shortVersion;
    if (build) return *build;
    return "Development build";
}

MibrelSettingsView::MibrelSettingsView(QWidget* parent) : QDialog(parent) {
    setWindowTitle(QStringLiteral("Mibrel Settings"));
    auto* general = new QGroupBox(QStringLiteral("General"), this);
    auto* form = new QFormLayout(general);
    form->addRow(QStringLiteral("Version"),
                 new QLabel(QString::fromStdString(versionText(std::string(MIBREL_VERSION), buildNumber())), general));
    auto* link = new QLabel(QStringLiteral("<a href=\"%1\">Merivante website</a>").arg(kWebsite), general);
    link->setOpenExternalLinks(true);
    form->addRow(QString(), link);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(general);
    setMinimumWidth(360);
}

} // namespace mibrel
