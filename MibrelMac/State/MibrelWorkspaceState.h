#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <QObject>
#include <QUndoStack>

#include "MibrelCore/Model/TeskWorkspace.h"
#include "MibrelMac/State/MibrelWorkspaceRecords.h"
#include "MibrelMac/State/MibrelWorkspaceUndoStep.h"

namespace mibrel {

// The one owner of the open project's workspace. Every edit is one transaction, always in
// this order: change the value, save the whole document, register an undo step, raise an
// audit event. There is no save command: a change that returned is on disk, or lastError
// says why not.
//
// While the file on disk cannot be read (loadFailureMessage), nothing is saved, so the
// damaged file is never overwritten; setting it aside is the way out.
class MibrelWorkspaceState : public QObject {
    Q_OBJECT

public:
    using AuditHook = std::function<void(const std::string& event, const std::string& detail)>;

    explicit MibrelWorkspaceState(QObject* parent = nullptr);

    void bind(const std::optional<std::filesystem::path>& projectURL);
    // Saves the whole workspace; views that edit fields directly call it after each change.
    void persist();
    void setAsideDamagedWorkspaceAndContinue();

    // Changes fields edited directly (notes, the study frame), then saves; no undo step, no event.
    void editDirectly(const std::function<void(TeskWorkspace&)>& change);

    const std::optional<std::filesystem::path>& projectURL() const { return m_projectURL; }
    const TeskWorkspace& workspace() const { return m_workspace; }
    const std::optional<std::string>& loadFailureMessage() const { return m_loadFailureMessage; }
    const std::optional<std::string>& lastError() const { return m_lastError; }
    void setLastError(std::optional<std::string> message);

    // Moves after each registered undo step and each bind, for views showing undo titles.
    std::int64_t undoTick() const { return m_undoTick; }
    QUndoStack& undoStack() { return m_undoStack; }
    void undo() { m_undoStack.undo(); }
    void redo() { m_undoStack.redo(); }
    // "Undo Add Code", or "Undo" when there is nothing to undo; likewise for redo.
    std::string undoTitle() const;
    std::string redoTitle() const;
    bool canUndo() const { return m_undoStack.canUndo(); }
    bool canRedo() const { return m_undoStack.canRedo(); }

    // Set by the application after each bind; called after each edit with its audit event.
    AuditHook onAuditEvent;

    const TeskCode* code(const Uuid& id) const;
    const TeskCategory* category(const Uuid& id) const;
    const TeskTheme* theme(const Uuid& id) const;

    void addCode(const std::string& name, const std::string& definition);
    void updateCode(const TeskCode& code);
    void deleteCode(const Uuid& id);
    void addCategory(const std::string& name, const std::string& memo, const std::vector<Uuid>& codeIDs);
    void updateCategory(const TeskCategory& category);
    void deleteCategory(const Uuid& id);
    void addTheme(const std::string& name, const std::string& memo, const std::vector<Uuid>& codeIDs);
    void updateTheme(const TeskTheme& theme);
    void deleteTheme(const Uuid& id);

    // Evidence. Applying a code is idempotent per segment and code; pinning the same text of
    // a segment again merges into the existing quote. Matching is by TeskResponseRef::key().
    Uuid addApplication(const TeskResponseRef& response, const Uuid& codeID, std::optional<std::string> excerpt,
                        const std::string& memo);
    void deleteApplication(const Uuid& id);
    std::optional<Uuid> addQuote(const TeskResponseRef& response, const std::string& text,
                                 const std::vector<Uuid>& codeIDs, const std::vector<Uuid>& themeIDs,
                                 const std::string& memo, const std::string& rationale,
                                 std::optional<TeskQuoteRole> role);
    void updateQuote(const TeskQuote& quote);
    void deleteQuote(const Uuid& id);
    Uuid addContextualLensReview(std::optional<Uuid> codeID, std::optional<Uuid> themeID);
    void updateContextualLensReview(TeskContextualLensReview review);
    void deleteContextualLensReview(const Uuid& id);
    void addMemberCheck(TeskMemberCheck check);

    // The report: at most one saved section per kind; findings stage themes.
    Uuid saveReportSection(TeskReportSection section);
    void updateReportSection(TeskReportSection section);
    void removeReportSection(const Uuid& id);
    void moveReportSection(const Uuid& id, bool up);
    std::optional<Uuid> stageThemeForReport(const Uuid& themeID);
    void updateReportFinding(const TeskReportFinding& finding);
    void removeReportFinding(const Uuid& id);
    void moveReportFinding(const Uuid& id, bool up);
    // The editor's document, kept as one opaque value; the editor has its own undo.
    void updateReportDraft(std::optional<Bytes> draft);

    std::vector<TeskCodeApplication> applications(const TeskResponseRef& response) const;
    std::vector<TeskCodeApplication> applicationsForSource(const Uuid& sourceID) const;
    std::vector<TeskQuote> quotes(const TeskResponseRef& response) const;
    // The themes, in order, that reach any of the codes directly or through a category.
    std::vector<Uuid> themeIDs(const std::vector<Uuid>& codeIDs) const;
    const TeskReportFinding* reportFinding(const Uuid& themeID) const;
    bool hasReportDraft() const;

signals:
    void workspaceChanged();
    void lastErrorChanged();
    void loadFailureChanged();
    void undoTickChanged();

private:
    friend class MibrelWorkspaceUndoStep;

    // One edit. `change` alters the workspace and returns the audit event's detail; an empty
    // event name means the edit is not logged.
    void transact(std::string_view actionName, std::string_view event,
                  const std::function<std::string(TeskWorkspace&)>& change,
                  UndoTrustworthinessPolicy policy = UndoTrustworthinessPolicy::preserveAll);
    void registerUndo(std::string_view actionName, TeskWorkspace before, UndoTrustworthinessPolicy policy);

    // The shapes most edits share, over one of the workspace's arrays.
    template <class Record>
    using Records = CowArray<Record> TeskWorkspace::*;

    // Replaces the record with the same id; an unknown id does nothing at all.
    template <class Record>
    void replaceRecord(Records<Record> records, const Record& record, std::string_view actionName,
                       std::string_view event, const std::string& detail) {
        if (!MibrelWorkspaceRecords::indexOfID(m_workspace.*records, record.id)) return;
        transact(actionName, event, [&](TeskWorkspace& w) {
            MibrelWorkspaceRecords::replaceByID(w.*records, record);
            return detail;
        });
    }

    // Removes every record with the id; an unknown id still makes a step and an event.
    template <class Record>
    void removeRecord(Records<Record> records, const Uuid& id, std::string_view actionName, std::string_view event) {
        transact(actionName, event, [&](TeskWorkspace& w) {
            (w.*records).removeAll([&](const Record& r) { return r.id == id; });
            return std::string();
        });
    }

    // Swaps the record with its neighbour; at the edge nothing happens, not even a step.
    template <class Record>
    void moveRecord(Records<Record> records, const Uuid& id, bool up, std::string_view actionName) {
        const auto index = MibrelWorkspaceRecords::indexOfID(m_workspace.*records, id);
        if (!index || (up ? *index == 0 : *index + 1 >= (m_workspace.*records).size())) return;
        transact(actionName, "", [&](TeskWorkspace& w) {
            (w.*records).move(*index, up ? *index - 1 : *index + 1);
            return std::string();
        });
    }
    void raiseUndoTick();
    void raiseAuditEvent(std::string_view event, const std::string& detail);
    // Puts `restored` in place, keeping the trustworthiness record as the policy says, saves,
    // and returns the value it replaced (what the step must hold to go back again).
    TeskWorkspace restoreSnapshot(TeskWorkspace restored, UndoTrustworthinessPolicy policy);

    std::optional<std::filesystem::path> m_projectURL;
    TeskWorkspace m_workspace;
    std::optional<std::string> m_loadFailureMessage;
    std::optional<std::string> m_lastError;
    std::int64_t m_undoTick = 0;
    QUndoStack m_undoStack;
};

} // namespace mibrel
