#include "MibrelMac/State/MibrelWorkspaceState.h"

#include "MibrelMac/State/MibrelWorkspaceRecords.h"

#include <algorithm>
#include <exception>

#include <QDateTime>

#include "MibrelCore/Storage/TeskWorkspaceStore.h"
#include "Platform/Files/FileSystem.h"
#include "Platform/Text/Text.h"

namespace mibrel {

using namespace MibrelWorkspaceRecords;

MibrelWorkspaceState::MibrelWorkspaceState(QObject* parent) : QObject(parent) {}

void MibrelWorkspaceState::bind(const std::optional<std::filesystem::path>& projectURL) {
    m_projectURL = projectURL;
    m_loadFailureMessage.reset();
    m_workspace = TeskWorkspace{};
    m_undoStack.clear(); // undo never crosses from one project to another
    raiseUndoTick();
    if (projectURL) {
        try {
            if (auto loaded = TeskWorkspaceStore::load(*projectURL)) m_workspace = std::move(*loaded);
        } catch (const std::exception& error) {
            m_loadFailureMessage = error.what();
        }
    }
    emit loadFailureChanged();
    emit workspaceChanged();
}

void MibrelWorkspaceState::persist() {
    // Writing the empty stand-in over an unreadable file would destroy what can still be saved from it.
    if (!m_projectURL || m_loadFailureMessage) return;
    try {
        TeskWorkspaceStore::save(m_workspace, *m_projectURL);
    } catch (const std::exception& error) {
        setLastError(std::string("Your latest change could not be saved. ") + error.what());
    }
}

void MibrelWorkspaceState::editDirectly(const std::function<void(TeskWorkspace&)>& change) {
    change(m_workspace);
    persist();
    emit workspaceChanged();
}

void MibrelWorkspaceState::setAsideDamagedWorkspaceAndContinue() {
    if (!m_projectURL || !m_loadFailureMessage) return;
    const auto damaged = TeskWorkspaceStore::workspaceURL(*m_projectURL);
    const std::string stamp =
        QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd-HHmmss")).toStdString();
    const auto setAside = damaged.parent_path() / ("workspace-damaged-" + stamp + ".json");
    if (platform::files::itemExists(damaged)) {
        std::error_code error;
        std::filesystem::rename(damaged, setAside, error);
        if (error) {
            setLastError("Could not set aside the damaged workspace file. " + error.message() + ".");
            return;
        }
    }
    m_loadFailureMessage.reset();
    m_workspace = TeskWorkspace{};
    persist();
    emit loadFailureChanged();
    emit workspaceChanged();
    raiseAuditEvent("workspace_damaged_file_set_aside", setAside.filename().string());
}

void MibrelWorkspaceState::setLastError(std::optional<std::string> message) {
    if (message == m_lastError) return;
    m_lastError = std::move(message);
    emit lastErrorChanged();
}

std::string MibrelWorkspaceState::undoTitle() const {
    const QString text = m_undoStack.undoText();
    return m_undoStack.canUndo() && !text.isEmpty() ? "Undo " + text.toStdString() : "Undo";
}

std::string MibrelWorkspaceState::redoTitle() const {
    const QString text = m_undoStack.redoText();
    return m_undoStack.canRedo() && !text.isEmpty() ? "Redo " + text.toStdString() : "Redo";
}

void MibrelWorkspaceState::transact(std::string_view actionName, std::string_view event,
                                    const std::function<std::string(TeskWorkspace&)>& change,
                                    UndoTrustworthinessPolicy policy) {
    TeskWorkspace before = m_workspace;
    const std::string detail = change(m_workspace);
    persist();
    registerUndo(actionName, std::move(before), policy);
    emit workspaceChanged();
    raiseAuditEvent(event, detail);
}

void MibrelWorkspaceState::registerUndo(std::string_view actionName, TeskWorkspace before,
                                        UndoTrustworthinessPolicy policy) {
    const QString name = QString::fromUtf8(actionName.data(), static_cast<qsizetype>(actionName.size()));
    m_undoStack.push(new MibrelWorkspaceUndoStep(*this, name, std::move(before), policy));
    raiseUndoTick();
}

void MibrelWorkspaceState::raiseUndoTick() {
    ++m_undoTick;
    emit undoTickChanged();
}

void MibrelWorkspaceState::raiseAuditEvent(std::string_view event, const std::string& detail) {
    if (onAuditEvent && !event.empty()) onAuditEvent(std::string(event), detail);
}

TeskWorkspace MibrelWorkspaceState::restoreSnapshot(TeskWorkspace restored, UndoTrustworthinessPolicy policy) {
    TeskWorkspace current = m_workspace;
    if (policy == UndoTrustworthinessPolicy::preserveAll) {
        restored.trustworthiness = current.trustworthiness;
    } else {
        auto& notes = restored.trustworthiness;
        notes.reflexivityNotes = current.trustworthiness.reflexivityNotes;
        notes.limitationsNotes = current.trustworthiness.limitationsNotes;
        notes.negativeCaseNotes = current.trustworthiness.negativeCaseNotes;
        notes.auditTrailNotes = current.trustworthiness.auditTrailNotes;
    }
    m_workspace = std::move(restored);
    persist();
    raiseUndoTick();
    emit workspaceChanged();
    return current;
}

const TeskCode* MibrelWorkspaceState::code(const Uuid& id) const { return firstWithID(m_workspace.codes, id); }
const TeskCategory* MibrelWorkspaceState::category(const Uuid& id) const {
    return firstWithID(m_workspace.categories, id);
}
const TeskTheme* MibrelWorkspaceState::theme(const Uuid& id) const { return firstWithID(m_workspace.themes, id); }

void MibrelWorkspaceState::addCode(const std::string& name, const std::string& definition) {
    const std::string trimmed = platform::text::trimmed(name);
    if (trimmed.empty()) return;
    transact("Add Code", "code_created", [&](TeskWorkspace& w) {
        w.codes.append(TeskCode{.name = trimmed, .definition = definition});
        return trimmed;
    });
}

void MibrelWorkspaceState::addCategory(const std::string& name, const std::string& memo,
                                       const std::vector<Uuid>& codeIDs) {
    const std::string trimmed = platform::text::trimmed(name);
    if (trimmed.empty()) return;
    transact("Add Category", "category_created", [&](TeskWorkspace& w) {
        w.categories.append(TeskCategory{.name = trimmed, .memo = memo, .codeIDs = codeIDs});
        return trimmed;
    });
}

void MibrelWorkspaceState::addTheme(const std::string& name, const std::string& memo, const std::vector<Uuid>& codeIDs) {
    const std::string trimmed = platform::text::trimmed(name);
    if (trimmed.empty()) return;
    transact("Add Theme", "theme_created", [&](TeskWorkspace& w) {
        w.themes.append(TeskTheme{.name = trimmed, .memo = memo, .codeIDs = codeIDs});
        return trimmed;
    });
}

void MibrelWorkspaceState::updateCode(const TeskCode& updated) {
    replaceRecord(&TeskWorkspace::codes, updated, "Edit Code", "code_updated", updated.name);
}

void MibrelWorkspaceState::updateCategory(const TeskCategory& updated) {
    replaceRecord(&TeskWorkspace::categories, updated, "Edit Category", "category_updated", updated.name);
}

void MibrelWorkspaceState::updateTheme(const TeskTheme& updated) {
    replaceRecord(&TeskWorkspace::themes, updated, "Edit Theme", "theme_updated", updated.name);
}

// An unknown id still makes one (empty) step and an event with no detail.
void MibrelWorkspaceState::deleteCode(const Uuid& id) {
    const std::string name = nameOf(code(id));
    transact("Delete Code", "code_deleted", [&](TeskWorkspace& w) {
        w.codes.removeAll([&](const TeskCode& c) { return c.id == id; });
        w.applications.removeAll([&](const TeskCodeApplication& a) { return a.codeID == id; });
        // A review of a deleted code goes with it, even when it also names a theme.
        w.contextualLensReviews.removeAll([&](const TeskContextualLensReview& r) { return r.codeID == id; });
        unlinkID(w.categories, &TeskCategory::codeIDs, id);
        unlinkID(w.themes, &TeskTheme::codeIDs, id);
        unlinkID(w.quotes, &TeskQuote::codeIDs, id);
        return name;
    });
}

void MibrelWorkspaceState::deleteTheme(const Uuid& id) {
    const std::string name = nameOf(theme(id));
    transact("Delete Theme", "theme_deleted", [&](TeskWorkspace& w) {
        w.themes.removeAll([&](const TeskTheme& t) { return t.id == id; });
        w.reportFindings.removeAll([&](const TeskReportFinding& f) { return f.themeID == id; });
        // A review of a deleted theme survives unlinked, so the written reflection is kept.
        w.contextualLensReviews.updateEach([&](const TeskContextualLensReview& r) -> std::optional<TeskContextualLensReview> {
            if (r.themeID != id) return std::nullopt;
            TeskContextualLensReview unlinked = r;
            unlinked.themeID.reset();
            return unlinked;
        });
        unlinkID(w.quotes, &TeskQuote::themeIDs, id);
        return name;
    });
}

void MibrelWorkspaceState::deleteCategory(const Uuid& id) {
    const std::string name = nameOf(category(id));
    transact("Delete Category", "category_deleted", [&](TeskWorkspace& w) {
        w.categories.removeAll([&](const TeskCategory& c) { return c.id == id; });
        unlinkID(w.themes, &TeskTheme::categoryIDs, id);
        return name;
    });
}

} // namespace mibrel
