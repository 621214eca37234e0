#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <QDate>
#include <QWidget>

class QSettings;

namespace mibrel {

class MibrelProjectSession;

// Recent projects split for the start page, order kept: "Today" holds those whose
// content changed during the current calendar day, "Earlier" the rest (a project whose
// date cannot be read counts as long ago).
struct MibrelRecentGroups {
    std::vector<std::filesystem::path> today;
    std::vector<std::filesystem::path> earlier;
};
MibrelRecentGroups groupedRecents(const std::vector<std::filesystem::path>& recents, const QDate& currentDay);

// What a user sees with no project open: recent projects, New/Open, the sample study and
// a drop zone for a project or a data file.
class MibrelStartPageView : public QWidget {
    Q_OBJECT

public:
    MibrelStartPageView(MibrelProjectSession& session, QSettings& settings, std::string appVersion,
                        std::function<void()> openSampleProject, QWidget* parent = nullptr);
    ~MibrelStartPageView() override;

    // Reads the recents again; the window calls it each time the page appears.
    void reloadRecents();

    // Opens a recent directly; a failure is reported and the entry is forgotten.
    void openRecent(const std::filesystem::path& project);

    // Routes the first dropped location: a project opens as a recent, a data file starts a
    // new project, anything else is refused with an explanation.
    void handleDroppedLocation(const std::filesystem::path& location);

protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    struct Parts;
    std::unique_ptr<Parts> m_parts; // pointers to the child widgets, which Qt owns
    MibrelProjectSession& m_session;
    QSettings& m_settings;
    std::function<void()> m_openSampleProject;
};

} // namespace mibrel
