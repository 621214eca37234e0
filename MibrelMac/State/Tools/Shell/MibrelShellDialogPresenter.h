#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include <QObject>

namespace mibrel {

class MibrelProjectSession;
class MibrelSourceListPresenter;
class MibrelSourcesState;
class MibrelWorkspaceState;

// The shell's questions and alerts. At most one is shown at a time; when several are due,
// the first in this order comes first and the next follows once it is answered.
class MibrelShellDialogPresenter : public QObject {
    Q_OBJECT

public:
    enum class Kind { deleteSource, speechConsent, responsesImport, sourcesError, saveProblem, cannotBeSaved };
    enum class Role { accept, reject, destructive };

    struct Button {
        std::string title;
        Role role = Role::accept;
        bool operator==(const Button&) const = default;
    };

    struct Dialog {
        Kind kind = Kind::sourcesError;
        std::string title;
        std::string message;
        std::vector<Button> buttons; // empty for the responses sheet, which has its own
        // Without one, Escape and the window's close button do nothing: the researcher must choose.
        std::optional<std::size_t> escapeButton;
        std::optional<std::size_t> defaultButton;
    };

    MibrelShellDialogPresenter(MibrelProjectSession& session, MibrelSourceListPresenter& sourceList,
                               MibrelSourcesState& sources, MibrelWorkspaceState& workspace,
                               QObject* parent = nullptr);

    // The dialog that is due now, if any.
    std::optional<Dialog> current() const;
    // Runs the command of button `index` of the dialog `kind`; a dialog no longer due is ignored.
    void answer(Kind kind, std::size_t index);

    static constexpr const char* kCannotBeSavedTitle = "This Project Cannot Be Saved";

signals:
    // Something that decides which dialog is due has changed.
    void changed();

private:
    MibrelProjectSession& m_session;
    MibrelSourceListPresenter& m_sourceList;
    MibrelSourcesState& m_sources;
    MibrelWorkspaceState& m_workspace;
};

} // namespace mibrel
