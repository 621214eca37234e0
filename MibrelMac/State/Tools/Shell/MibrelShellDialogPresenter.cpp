#include "MibrelMac/State/Tools/Shell/MibrelShellDialogPresenter.h"

#include <utility>

#include "MibrelMac/State/MibrelProjectSession.h"
#include "MibrelMac/State/MibrelSourcesState.h"
#include "MibrelMac/State/MibrelWorkspaceState.h"
#include "MibrelMac/State/Tools/Shell/MibrelSourceListPresenter.h"

namespace mibrel {
namespace {

using Dialog = MibrelShellDialogPresenter::Dialog;
using Kind = MibrelShellDialogPresenter::Kind;
using Role = MibrelShellDialogPresenter::Role;

Dialog alert(Kind kind, std::string title, std::string message) {
    return Dialog{kind, std::move(title), std::move(message), {{"OK", Role::accept}}, 0, 0};
}

std::string cannotBeSavedMessage(const std::string& details) {
    return "The workspace file in this project could not be read, so nothing you do here will be saved. Setting the "
           "damaged file aside keeps it in the project's qual folder and starts a fresh workspace that saves "
           "normally.\n\nDetails: " +
           details;
}

} // namespace

MibrelShellDialogPresenter::MibrelShellDialogPresenter(MibrelProjectSession& session,
                                                       MibrelSourceListPresenter& sourceList,
                                                       MibrelSourcesState& sources, MibrelWorkspaceState& workspace,
                                                       QObject* parent)
    : QObject(parent), m_session(session), m_sourceList(sourceList), m_sources(sources), m_workspace(workspace) {
    const auto notify = [this] { emit changed(); };
    connect(&sourceList, &MibrelSourceListPresenter::pendingDeleteChanged, this, notify);
    connect(&sources, &MibrelSourcesState::pendingSpeechIntroChanged, this, notify);
    connect(&sources, &MibrelSourcesState::pendingResponsesImportChanged, this, notify);
    connect(&sources, &MibrelSourcesState::lastErrorChanged, this, notify);
    connect(&workspace, &MibrelWorkspaceState::lastErrorChanged, this, notify);
    connect(&workspace, &MibrelWorkspaceState::loadFailureChanged, this, notify);
}

std::optional<MibrelShellDialogPresenter::Dialog> MibrelShellDialogPresenter::current() const {
    if (m_sourceList.sourcePendingDelete()) {
        return Dialog{Kind::deleteSource,
                      m_sourceList.deleteTitle(),
                      MibrelSourcesState::kDeleteConfirmation,
                      {{"Delete Source", Role::destructive}, {"Cancel", Role::reject}},
                      1,
                      1};
    }
    if (m_sources.pendingSpeechIntro()) {
        return Dialog{Kind::speechConsent,
                      "Transcribe on this computer",
                      MibrelSourcesState::kSpeechIntroQuestion,
                      {{"Transcribe", Role::accept}, {"Not Now", Role::reject}},
                      1,
                      0};
    }
    if (m_sources.pendingResponsesImport()) return Dialog{Kind::responsesImport, {}, {}, {}, {}, {}};
    if (m_sources.lastError()) return alert(Kind::sourcesError, "Mibrel", *m_sources.lastError());
    if (m_workspace.lastError()) return alert(Kind::saveProblem, "Save Problem", *m_workspace.lastError());
    if (m_workspace.loadFailureMessage()) {
        return Dialog{Kind::cannotBeSaved,
                      kCannotBeSavedTitle,
                      cannotBeSavedMessage(*m_workspace.loadFailureMessage()),
                      {{"Set Aside Damaged File and Continue", Role::accept}, {"Close Project", Role::destructive}},
                      std::nullopt,
                      0};
    }
    return std::nullopt;
}

void MibrelShellDialogPresenter::answer(Kind kind, std::size_t index) {
    const auto due = current();
    if (!due || due->kind != kind || index >= due->buttons.size()) return;
    const bool first = index == 0;
    switch (kind) {
    case Kind::deleteSource: return first ? m_sourceList.confirmDelete() : m_sourceList.cancelDelete();
    case Kind::speechConsent: return first ? m_sources.confirmSpeechIntro() : m_sources.cancelSpeechIntro();
    case Kind::responsesImport: return;
    case Kind::sourcesError: return m_sources.setLastError(std::nullopt);
    case Kind::saveProblem: return m_workspace.setLastError(std::nullopt);
    case Kind::cannotBeSaved: return first ? m_workspace.setAsideDamagedWorkspaceAndContinue() : m_session.close();
    }
}

} // namespace mibrel
