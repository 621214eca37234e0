#include <unordered_map>
#include <unordered_set>

#include "MibrelCore/Analysis/TeskAnalysisEngine.h"
#include "MibrelCore/Analysis/TeskAnalysisSupport.h"

namespace mibrel::TeskAnalysisEngine {
namespace {

// Theme id → how many quotes name it (a quote naming it twice counts once).
std::unordered_map<Uuid, std::int64_t> quotesByTheme(const TeskWorkspace& workspace) {
    std::unordered_map<Uuid, std::int64_t> counts;
    for (const TeskQuote& quote : workspace.quotes) {
        const std::unordered_set<Uuid> themes(quote.themeIDs.begin(), quote.themeIDs.end());
        for (const Uuid& theme : themes) ++counts[theme];
    }
    return counts;
}

std::unordered_set<Uuid> relatedCodes(const TeskTheme& theme,
                                      const std::unordered_multimap<Uuid, const TeskCategory*>& categories) {
    std::unordered_set<Uuid> codes(theme.codeIDs.begin(), theme.codeIDs.end());
    const std::unordered_set<Uuid> categoryIDs(theme.categoryIDs.begin(), theme.categoryIDs.end());
    for (const Uuid& id : categoryIDs) {
        const auto [first, last] = categories.equal_range(id);
        for (auto it = first; it != last; ++it) codes.insert(it->second->codeIDs.begin(), it->second->codeIDs.end());
    }
    return codes;
}

std::vector<std::string> warnings(const TeskTheme& theme, const TeskThemeCoverageRow& row, std::size_t sourceCount) {
    using platform::text::isBlank;
    std::vector<std::string> found;
    if (isBlank(theme.interpretiveClaim)) found.emplace_back(kMissingClaimWarning);
    if (row.applicationCount == 0) found.emplace_back(kNoEvidenceWarning);
    if (row.sourceSpread <= 1 && sourceCount >= 2) found.emplace_back(kOneSourceWarning);
    if (row.quoteCount == 0) found.emplace_back(kNoQuoteWarning);
    if (isBlank(theme.counterEvidence)) found.emplace_back(kNoCounterEvidenceWarning);
    return found;
}

} // namespace

std::vector<TeskThemeCoverageRow> themeCoverage(const TeskAnalysisCorpus& corpus) {
    const TeskWorkspace& workspace = corpus.workspace;
    std::unordered_multimap<Uuid, const TeskCategory*> categories;
    for (const TeskCategory& category : workspace.categories) categories.emplace(category.id, &category);
    const auto evidence = analysis::evidenceByCode(workspace);
    const auto quotes = quotesByTheme(workspace);

    std::vector<TeskThemeCoverageRow> rows;
    for (const TeskTheme& theme : workspace.themes) {
        TeskThemeCoverageRow row{theme.id, theme.name, theme.interpretiveClaim, 0, 0, 0, 0, 0, {}};
        const auto codes = relatedCodes(theme, categories);
        row.codeCount = static_cast<std::int64_t>(codes.size());
        row.categoryCount = static_cast<std::int64_t>(theme.categoryIDs.size());
        std::unordered_set<Uuid> sources;
        for (const Uuid& code : codes) {
            const auto found = evidence.find(code);
            if (found == evidence.end()) continue;
            row.applicationCount += found->second.applications;
            sources.insert(found->second.sources.begin(), found->second.sources.end());
        }
        row.sourceSpread = static_cast<std::int64_t>(sources.size());
        if (const auto found = quotes.find(theme.id); found != quotes.end()) row.quoteCount = found->second;
        row.warnings = warnings(theme, row, corpus.sources.size());
        rows.push_back(std::move(row));
    }
    analysis::sortByCountThenName(rows, [](const auto& r) { return r.applicationCount; },
                                  [](const auto& r) -> const std::string& { return r.themeName; });
    return rows;
}

} // namespace mibrel::TeskAnalysisEngine
