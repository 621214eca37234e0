#include "MibrelMac/Views/MibrelQtPanels.h"

#include <QApplication>
#include <QClipboard>
#include <QDesktopServices>
#include <QDir>
#include <QFileDialog>
#include <QGridLayout>
#include <QLabel>
#include <QMessageBox>
#include <QMimeData>
#include <QStandardPaths>
#include <QUrl>

#include "MibrelMac/Views/Kit/MibrelKitText.h"

namespace mibrel {
namespace {

bool isProjectPackage(const QString& folder) { return folder.endsWith(QStringLiteral(".mvibrl")); }

// The desktop's file dialogs show a project package as a folder to walk into. Entering
// one means choosing it, which is how a package is picked here.
void acceptPackagesOnEntry(QFileDialog& dialog, std::optional<std::filesystem::path>& chosen, bool confirmReplace) {
    QObject::connect(&dialog, &QFileDialog::directoryEntered, &dialog, [&dialog, &chosen, confirmReplace](const QString& folder) {
        if (!isProjectPackage(folder)) return;
        if (confirmReplace &&
            QMessageBox::question(&dialog, dialog.windowTitle(),
                                  QStringLiteral("“%1” already exists. Do you want to replace it?")
                                      .arg(QDir(folder).dirName())) != QMessageBox::Yes) {
            dialog.setDirectory(QDir(folder).absoluteFilePath(QStringLiteral("..")));
            return;
        }
        chosen = folder.toStdString();
        static_cast<QDialog&>(dialog).done(QDialog::Accepted);
    });
}

void addMessage(QFileDialog& dialog, const std::string& message) {
    if (message.empty()) return;
    auto* grid = qobject_cast<QGridLayout*>(dialog.layout());
    if (!grid) return;
    auto* label = new QLabel(kit::qtText(message), &dialog);
    label->setWordWrap(true);
    grid->addWidget(label, grid->rowCount(), 0, 1, grid->columnCount());
}

QString startFolder() {
    const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    return QDir(documents).exists() ? documents : QDir::homePath();
}

std::optional<std::filesystem::path> run(QFileDialog& dialog, std::optional<std::filesystem::path>& chosen) {
    if (dialog.exec() != QDialog::Accepted) return std::nullopt;
    if (chosen) return chosen;
    const QStringList files = dialog.selectedFiles();
    if (files.isEmpty()) return std::nullopt;
    return files.first().toStdString();
}

// "All supported" first, then each kind alone; endings in both cases, as Linux names files.
QStringList nameFilters(const std::vector<MibrelFileType>& types) {
    QStringList filters;
    QStringList all;
    for (const MibrelFileType& type : types) {
        QStringList patterns;
        for (const std::string& extension : type.extensions) {
            patterns << QStringLiteral("*.") + kit::qtText(extension) << QStringLiteral("*.") + kit::qtText(extension).toUpper();
        }
        all << patterns;
        filters << QStringLiteral("%1 (%2)").arg(kit::qtText(type.description), patterns.join(QLatin1Char(' ')));
    }
    if (types.size() > 1) filters.prepend(QStringLiteral("All supported files (%1)").arg(all.join(QLatin1Char(' '))));
    return filters;
}

} // namespace

std::optional<std::filesystem::path> MibrelQtPanels::runSavePanel(const MibrelSavePanelRequest& request) {
    QFileDialog dialog(m_parent, kit::qtText(request.title), startFolder());
    dialog.setOption(QFileDialog::DontUseNativeDialog); // keeps the message and package handling
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.selectFile(kit::qtText(request.suggestedName));
    addMessage(dialog, request.message);
    std::optional<std::filesystem::path> chosen;
    acceptPackagesOnEntry(dialog, chosen, true);
    return run(dialog, chosen);
}

std::optional<std::filesystem::path> MibrelQtPanels::runOpenPanel(const MibrelOpenPanelRequest& request) {
    QFileDialog dialog(m_parent, kit::qtText(request.title), startFolder());
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    dialog.setFileMode(request.canChooseFiles ? QFileDialog::ExistingFile : QFileDialog::Directory);
    if (!request.allowedTypes.empty()) dialog.setNameFilters(nameFilters(request.allowedTypes));
    std::optional<std::filesystem::path> chosen;
    if (request.canChooseDirectories) acceptPackagesOnEntry(dialog, chosen, false);
    return run(dialog, chosen);
}

void MibrelQtPanels::revealInFileManager(const std::filesystem::path& location) {
    QDesktopServices::openUrl(QUrl::fromLocalFile(QString::fromStdString(location.parent_path().string())));
}

void MibrelQtPanels::copyToClipboard(const std::string& html, const std::string& plainText) {
    auto* data = new QMimeData;
    data->setHtml(kit::qtText(html));
    data->setText(kit::qtText(plainText));
    QApplication::clipboard()->setMimeData(data);
}

} // namespace mibrel
