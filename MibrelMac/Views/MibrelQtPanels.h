#pragma once

#include <QPointer>
#include <QWidget>

#include "MibrelMac/State/MibrelPanels.h"

namespace mibrel {

// File dialogs, the file manager and the clipboard of the desktop, through Qt.
class MibrelQtPanels : public MibrelPanels {
public:
    // Dialogs open over this window once it exists.
    void setParentWindow(QWidget* window) { m_parent = window; }

    std::optional<std::filesystem::path> runSavePanel(const MibrelSavePanelRequest& request) override;
    std::optional<std::filesystem::path> runOpenPanel(const MibrelOpenPanelRequest& request) override;
    void revealInFileManager(const std::filesystem::path& location) override;
    void copyToClipboard(const std::string& html, const std::string& plainText) override;

private:
    QPointer<QWidget> m_parent;
};

} // namespace mibrel
