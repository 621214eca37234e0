#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace mibrel {

struct MibrelSavePanelRequest {
    std::string title;
    std::string message;
    std::string suggestedName;
};

// A kind of file a panel offers, by its endings (without the dot).
struct MibrelFileType {
    std::string description;
    std::vector<std::string> extensions;
};

struct MibrelOpenPanelRequest {
    std::string title;
    bool canChooseFiles = true;
    bool canChooseDirectories = false;
    std::vector<MibrelFileType> allowedTypes; // empty: any file
};

// What the state objects need from the desktop: file dialogs, showing a file in the
// file manager, and the clipboard. The window uses Qt's; tests and the command line
// use a scripted one.
class MibrelPanels {
public:
    virtual ~MibrelPanels() = default;

    // The chosen location, or absent when the user cancelled.
    virtual std::optional<std::filesystem::path> runSavePanel(const MibrelSavePanelRequest& request) = 0;
    virtual std::optional<std::filesystem::path> runOpenPanel(const MibrelOpenPanelRequest& request) = 0;
    virtual void revealInFileManager(const std::filesystem::path& location) = 0;
    // Both flavours at once, so a word processor takes the styled one and a plain editor the text.
    virtual void copyToClipboard(const std::string& html, const std::string& plainText) = 0;
};

} // namespace mibrel
