#include "MibrelCore/Analysis/TeskCodeReadiness.h"

#include <algorithm>
#include <unordered_set>

#include "Platform/Text/Text.h"

namespace mibrel::TeskCodeReadinessEngine {
namespace {

bool filled(const std::string& text) { return !platform::text::isBlank(text); }

void tick(TeskCodeReadiness& readiness, const char* item, bool done) {
    (done ? readiness.completed : readiness.missing).emplace_back(item);
}

bool lensReviewComplete(const TeskCode& code, const TeskWorkspace& workspace) {
    const auto& reviews = workspace.contextualLensReviews;
    const auto review = std::find_if(reviews.begin(), reviews.end(), [&](const auto& r) { return r.codeID == code.id; });
    if (review == reviews.end()) return false;
    return filled(review->context) && filled(review->voice) && filled(review->powerPosition) &&
           filled(review->representation) && filled(review->counterPatterns) && filled(review->consequences);
}

TeskCodeReadiness assess(const TeskCode& code, const TeskWorkspace& workspace, bool hasEvidence) {
    TeskCodeReadiness readiness{code.id, code.name, {}, {}, {}};
    tick(readiness, "Definition", filled(code.definition));
    tick(readiness, "Full description", filled(code.fullDescription));
    tick(readiness, "Include rule", filled(code.includeWhen));
    tick(readiness, "Exclude rule", filled(code.excludeWhen));
    tick(readiness, "Borderline cases", filled(code.borderlineCases));
    tick(readiness, "Example quote", filled(code.exampleQuote));
    if (code.includeInContextualLens) tick(readiness, "Contextual lens", lensReviewComplete(code, workspace));
    if (hasEvidence) {
        readiness.completed.emplace_back("Coded evidence");
    } else {
        readiness.warnings.emplace_back("No coded excerpts");
    }
    if (code.status == TeskCodeStatus::draft) readiness.warnings.emplace_back("Status is Draft");
    if (code.status == TeskCodeStatus::review) readiness.warnings.emplace_back("Status is Review");
    return readiness;
}

} // namespace

TeskCodeReadiness readiness(const TeskCode& code, const TeskWorkspace& workspace) {
    const auto& applications = workspace.applications;
    const bool hasEvidence = std::any_of(applications.begin(), applications.end(),
                                         [&](const TeskCodeApplication& a) { return a.codeID == code.id; });
    return assess(code, workspace, hasEvidence);
}

std::vector<TeskCodeReadiness> readiness(const TeskWorkspace& workspace) {
    std::unordered_set<Uuid> coded;
    for (const TeskCodeApplication& application : workspace.applications) coded.insert(application.codeID);
    std::vector<TeskCodeReadiness> all;
    all.reserve(workspace.codes.size());
    for (const TeskCode& code : workspace.codes) all.push_back(assess(code, workspace, coded.contains(code.id)));
    return all;
}

} // namespace mibrel::TeskCodeReadinessEngine
