// The workspace state's evidence and report operations: applications, quotes, lens
// reviews, member checks, report sections and findings. Each follows the same transaction
// as the codebook operations.

#include <algorithm>

#include <QDate>
#include <QLocale>

#include "MibrelMac/State/MibrelWorkspaceRecords.h"
#include "MibrelMac/State/MibrelWorkspaceState.h"
#include "Platform/Text/Text.h"

namespace mibrel {

using namespace MibrelWorkspaceRecords;

namespace {

constexpr std::size_t kQuoteDetailLength = 60;

bool sameSegment(const TeskResponseRef& a, const TeskResponseRef& b) {
    return a.sourceID == b.sourceID && a.segmentID == b.segmentID;
}

bool intersects(const std::vector<Uuid>& ids, const std::vector<Uuid>& wanted) {
    return std::any_of(ids.begin(), ids.end(),
                       [&](const Uuid& id) { return std::find(wanted.begin(), wanted.end(), id) != wanted.end(); });
}

} // namespace

Uuid MibrelWorkspaceState::addApplication(const TeskResponseRef& response, const Uuid& codeID,
                                          std::optional<std::string> excerpt, const std::string& memo) {
    for (const auto& application : m_workspace.applications) {
        if (application.codeID == codeID && sameSegment(application.response, response)) return application.id;
    }
    TeskCodeApplication application{.response = response, .codeID = codeID, .excerpt = std::move(excerpt), .memo = memo};
    const Uuid id = application.id;
    const TeskCode* applied = code(codeID);
    const std::string detail = applied ? applied->name : "code";
    transact("Apply Code", "application_added", [&](TeskWorkspace& w) {
        w.applications.append(std::move(application));
        return detail;
    });
    return id;
}

void MibrelWorkspaceState::deleteApplication(const Uuid& id) {
    removeRecord(&TeskWorkspace::applications, id, "Remove Code", "application_removed");
}

std::optional<Uuid> MibrelWorkspaceState::addQuote(const TeskResponseRef& response, const std::string& text,
                                                   const std::vector<Uuid>& codeIDs, const std::vector<Uuid>& themeIDs,
                                                   const std::string& memo, const std::string& rationale,
                                                   std::optional<TeskQuoteRole> role) {
    const std::string trimmed = platform::text::trimmed(text);
    if (trimmed.empty()) return std::nullopt;
    const std::string detail = platform::text::characterPrefix(trimmed, kQuoteDetailLength);
    const auto& quotes = m_workspace.quotes;
    const auto match = std::find_if(quotes.begin(), quotes.end(), [&](const TeskQuote& q) {
        return q.text == trimmed && sameSegment(q.response, response);
    });
    if (match != quotes.end()) {
        // A merge adds links and fills in words, but never erases what was written before.
        TeskQuote merged = *match;
        merged.codeIDs = mergedIDs(merged.codeIDs, codeIDs);
        merged.themeIDs = mergedIDs(merged.themeIDs, themeIDs);
        if (!memo.empty()) merged.memo = memo;
        if (!rationale.empty()) merged.rationale = rationale;
        if (role) merged.role = *role;
        const auto index = static_cast<std::size_t>(match - quotes.begin());
        transact("Update Quote", "quote_updated", [&](TeskWorkspace& w) {
            w.quotes.replace(index, merged);
            return detail;
        });
        return merged.id;
    }
    TeskQuote quote{.response = response,
                    .text = trimmed,
                    .codeIDs = uniqueIDs(codeIDs),
                    .themeIDs = uniqueIDs(themeIDs),
                    .memo = memo,
                    .rationale = rationale,
                    .role = role.value_or(TeskQuoteRole::exemplar)};
    const Uuid id = quote.id;
    transact("Add Quote", "quote_added", [&](TeskWorkspace& w) {
        w.quotes.append(std::move(quote));
        return detail;
    });
    return id;
}

void MibrelWorkspaceState::updateQuote(const TeskQuote& quote) {
    replaceRecord(&TeskWorkspace::quotes, quote, "Edit Quote", "", "");
}

void MibrelWorkspaceState::deleteQuote(const Uuid& id) {
    removeRecord(&TeskWorkspace::quotes, id, "Delete Quote", "quote_removed");
}

Uuid MibrelWorkspaceState::addContextualLensReview(std::optional<Uuid> codeID, std::optional<Uuid> themeID) {
    TeskContextualLensReview review{.codeID = codeID, .themeID = themeID};
    const Uuid id = review.id;
    std::string detail;
    if (const TeskCode* reviewed = codeID ? code(*codeID) : nullptr) {
        detail = reviewed->name;
    } else if (const TeskTheme* reviewedTheme = themeID ? theme(*themeID) : nullptr) {
        detail = reviewedTheme->name;
    }
    transact("Add Contextual Review", "contextual_lens_review_added", [&](TeskWorkspace& w) {
        w.contextualLensReviews.insert(0, std::move(review)); // newest first
        return detail;
    });
    return id;
}

void MibrelWorkspaceState::updateContextualLensReview(TeskContextualLensReview review) {
    review.updatedAt = platform::now();
    replaceRecord(&TeskWorkspace::contextualLensReviews, review, "Edit Contextual Review", "", "");
}

void MibrelWorkspaceState::deleteContextualLensReview(const Uuid& id) {
    removeRecord(&TeskWorkspace::contextualLensReviews, id, "Delete Contextual Review", "contextual_lens_review_deleted");
}

// Undone under preserveNotes: the check goes, while notes typed since it stay.
void MibrelWorkspaceState::addMemberCheck(TeskMemberCheck check) {
    if (check.date.empty()) check.date = QLocale().toString(QDate::currentDate(), QLocale::LongFormat).toStdString();
    transact(
        "Add Member Check", "member_check_saved",
        [&](TeskWorkspace& w) {
            w.trustworthiness.memberChecks.push_back(check);
            return check.finding;
        },
        UndoTrustworthinessPolicy::preserveNotes);
}

// A refreshed section keeps its id, creation date and the researcher's choice to leave it out.
Uuid MibrelWorkspaceState::saveReportSection(TeskReportSection section) {
    section.updatedAt = platform::now();
    const auto& sections = m_workspace.reportSections;
    const auto match = std::find_if(sections.begin(), sections.end(),
                                    [&](const TeskReportSection& s) { return s.kind == section.kind; });
    std::optional<std::size_t> index;
    if (match != sections.end()) {
        index = static_cast<std::size_t>(match - sections.begin());
        section.id = match->id;
        section.createdAt = match->createdAt;
        section.includeInReport = match->includeInReport;
    }
    transact("Save Report Section", "report_section_saved", [&](TeskWorkspace& w) {
        if (index) {
            w.reportSections.replace(*index, section);
        } else {
            w.reportSections.append(section);
        }
        return section.title;
    });
    return section.id;
}

void MibrelWorkspaceState::updateReportSection(TeskReportSection section) {
    section.updatedAt = platform::now();
    replaceRecord(&TeskWorkspace::reportSections, section, "Edit Report Section", "", "");
}

void MibrelWorkspaceState::removeReportSection(const Uuid& id) {
    removeRecord(&TeskWorkspace::reportSections, id, "Remove Report Section", "report_section_removed");
}

void MibrelWorkspaceState::moveReportSection(const Uuid& id, bool up) {
    moveRecord(&TeskWorkspace::reportSections, id, up, "Reorder Report Sections");
}

std::optional<Uuid> MibrelWorkspaceState::stageThemeForReport(const Uuid& themeID) {
    const TeskTheme* staged = theme(themeID);
    if (!staged) return std::nullopt;
    if (const TeskReportFinding* existing = reportFinding(themeID)) return existing->id;
    TeskReportFinding finding{.themeID = themeID};
    const std::string detail = staged->name;
    transact("Stage Finding", "finding_staged", [&](TeskWorkspace& w) {
        w.reportFindings.append(finding);
        return detail;
    });
    return finding.id;
}

void MibrelWorkspaceState::updateReportFinding(const TeskReportFinding& finding) {
    replaceRecord(&TeskWorkspace::reportFindings, finding, "Edit Finding", "", "");
}

void MibrelWorkspaceState::removeReportFinding(const Uuid& id) {
    removeRecord(&TeskWorkspace::reportFindings, id, "Remove Finding", "finding_removed");
}

void MibrelWorkspaceState::moveReportFinding(const Uuid& id, bool up) {
    moveRecord(&TeskWorkspace::reportFindings, id, up, "Reorder Findings");
}

void MibrelWorkspaceState::updateReportDraft(std::optional<Bytes> draft) {
    if (draft && draft->empty()) draft.reset();
    m_workspace.reportDraftRTFData = std::move(draft);
    persist();
    emit workspaceChanged();
}

std::vector<TeskCodeApplication> MibrelWorkspaceState::applications(const TeskResponseRef& response) const {
    std::vector<TeskCodeApplication> found;
    for (const auto& a : m_workspace.applications) {
        if (sameSegment(a.response, response)) found.push_back(a);
    }
    return found;
}

std::vector<TeskCodeApplication> MibrelWorkspaceState::applicationsForSource(const Uuid& sourceID) const {
    std::vector<TeskCodeApplication> found;
    for (const auto& a : m_workspace.applications) {
        if (a.response.sourceID == sourceID) found.push_back(a);
    }
    return found;
}

std::vector<TeskQuote> MibrelWorkspaceState::quotes(const TeskResponseRef& response) const {
    std::vector<TeskQuote> found;
    for (const auto& q : m_workspace.quotes) {
        if (sameSegment(q.response, response)) found.push_back(q);
    }
    return found;
}

std::vector<Uuid> MibrelWorkspaceState::themeIDs(const std::vector<Uuid>& codeIDs) const {
    std::vector<Uuid> reaching;
    for (const auto& t : m_workspace.themes) {
        const bool throughCategory =
            std::any_of(m_workspace.categories.begin(), m_workspace.categories.end(), [&](const TeskCategory& c) {
                return std::find(t.categoryIDs.begin(), t.categoryIDs.end(), c.id) != t.categoryIDs.end() &&
                       intersects(c.codeIDs, codeIDs);
            });
        if (intersects(t.codeIDs, codeIDs) || throughCategory) reaching.push_back(t.id);
    }
    return reaching;
}

const TeskReportFinding* MibrelWorkspaceState::reportFinding(const Uuid& themeID) const {
    const auto& findings = m_workspace.reportFindings;
    const auto found =
        std::find_if(findings.begin(), findings.end(), [&](const TeskReportFinding& f) { return f.themeID == themeID; });
    return found == findings.end() ? nullptr : &*found;
}

bool MibrelWorkspaceState::hasReportDraft() const {
    return m_workspace.reportDraftRTFData && !m_workspace.reportDraftRTFData->empty();
}

} // namespace mibrel
