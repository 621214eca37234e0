#include "MibrelCore/Report/TeskReportComposer.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <initializer_list>
#include <iterator>
#include <string>
#include <type_traits>
#include <unordered_map>
#include <unordered_set>

#include "MibrelCore/Analysis/TeskAnalysisEngine.h"
#include "MibrelCore/Report/TeskReportComposerSections.h"
#include "Platform/Text/Text.h"

namespace mibrel::TeskReportComposer {
namespace {

using detail::addField;
using detail::Lines;
using platform::text::trimmed;

std::string firstNonEmpty(std::initializer_list<std::string_view> values) {
    for (const std::string_view value : values) {
        std::string content = trimmed(value);
        if (!content.empty()) return content;
    }
    return {};
}

std::vector<std::string> unique(const std::vector<std::string>& values) {
    std::unordered_set<std::string_view> seen;
    std::vector<std::string> kept;
    for (const std::string& value : values) {
        if (seen.insert(value).second) kept.push_back(value);
    }
    return kept;
}

// The first record wins when ids repeat, as a scan from the front would find it.
template <class Records>
auto firstByID(const Records& records) {
    using Record = std::remove_cvref_t<decltype(*std::begin(records))>;
    std::unordered_map<Uuid, const Record*> found;
    for (const Record& record : records) found.try_emplace(record.id, &record);
    return found;
}

template <class Map>
auto lookUp(const Map& map, const Uuid& id) -> decltype(map.begin()->second) {
    const auto found = map.find(id);
    return found == map.end() ? nullptr : found->second;
}

// Everything the findings look up by id, indexed once per report.
struct FindingLookup {
    explicit FindingLookup(const TeskAnalysisCorpus& corpus)
        : corpus(corpus), coverage(TeskAnalysisEngine::themeCoverage(corpus)),
          themes(firstByID(corpus.workspace.themes)), codes(firstByID(corpus.workspace.codes)),
          categories(firstByID(corpus.workspace.categories)), sources(firstByID(corpus.sources)) {
        for (const TeskThemeCoverageRow& row : coverage) rows.try_emplace(row.themeID, &row);
        for (const TeskQuote& quote : corpus.workspace.quotes) {
            for (const Uuid& themeID : quote.themeIDs) {
                auto& linked = quotesByTheme[themeID];
                if (linked.empty() || linked.back() != &quote) linked.push_back(&quote);
            }
        }
    }

    const TeskAnalysisCorpus& corpus;
    std::vector<TeskThemeCoverageRow> coverage;
    std::unordered_map<Uuid, const TeskThemeCoverageRow*> rows;
    std::unordered_map<Uuid, const TeskTheme*> themes;
    std::unordered_map<Uuid, const TeskCode*> codes;
    std::unordered_map<Uuid, const TeskCategory*> categories;
    std::unordered_map<Uuid, const TeskSource*> sources;
    std::unordered_map<Uuid, std::vector<const TeskQuote*>> quotesByTheme; // in stored order
};

struct StagedFinding {
    const TeskReportFinding* finding;
    const TeskTheme* theme;
};

// The findings whose theme still exists; the others drop out and the numbering closes up.
std::vector<StagedFinding> stagedFindings(const FindingLookup& lookup) {
    std::vector<StagedFinding> staged;
    for (const TeskReportFinding& finding : lookup.corpus.workspace.reportFindings) {
        if (const TeskTheme* theme = lookUp(lookup.themes, finding.themeID)) staged.push_back({&finding, theme});
    }
    return staged;
}

// Sorted by id string: a stable order, though not the order of the names.
std::vector<Uuid> themeCodeIDs(const TeskTheme& theme, const TeskWorkspace& workspace) {
    std::vector<Uuid> ids = theme.codeIDs;
    const std::unordered_set<Uuid> categoryIDs(theme.categoryIDs.begin(), theme.categoryIDs.end());
    for (const TeskCategory& category : workspace.categories) {
        if (categoryIDs.contains(category.id)) ids.insert(ids.end(), category.codeIDs.begin(), category.codeIDs.end());
    }
    std::sort(ids.begin(), ids.end());
    ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
    return ids;
}

bool admits(const TeskReportFinding& finding, TeskQuoteRole role) {
    switch (role) {
    case TeskQuoteRole::exemplar: return finding.includeExemplarQuotes;
    case TeskQuoteRole::supporting: return finding.includeSupportingQuotes;
    case TeskQuoteRole::counterExample: return finding.includeCounterExamples;
    }
    return false;
}

std::vector<const TeskQuote*> quotes(const TeskReportFinding& finding, const TeskTheme& theme,
                                     const FindingLookup& lookup) {
    std::vector<const TeskQuote*> selected;
    if (const auto linked = lookup.quotesByTheme.find(theme.id); linked != lookup.quotesByTheme.end()) {
        std::copy_if(linked->second.begin(), linked->second.end(), std::back_inserter(selected),
                     [&](const TeskQuote* quote) { return admits(finding, quote->role); });
    }
    std::stable_sort(selected.begin(), selected.end(), [](const TeskQuote* a, const TeskQuote* b) {
        if (a->role != b->role) return a->role < b->role;
        return a->createdAt < b->createdAt;
    });
    return selected;
}

std::string sourceLabel(const Uuid& id, const FindingLookup& lookup) {
    const TeskSource* source = lookUp(lookup.sources, id);
    return source ? source->label : "Source";
}

std::string_view roleWord(TeskQuoteRole role) {
    switch (role) {
    case TeskQuoteRole::exemplar: return "Exemplar";
    case TeskQuoteRole::supporting: return "Supporting";
    case TeskQuoteRole::counterExample: return "Counter-example";
    }
    return {};
}

void appendEvidence(const TeskThemeCoverageRow* row, Lines& lines) {
    if (!row) return;
    lines.push_back("Evidence base: " + std::to_string(row->applicationCount) + " coded excerpts across " +
                    std::to_string(row->sourceSpread) + " source(s); " + std::to_string(row->quoteCount) +
                    " linked quote(s).");
    if (!row->warnings.empty()) lines.push_back("Review flags: " + detail::joined(row->warnings, "; "));
}

void appendGroupings(const TeskTheme& theme, const FindingLookup& lookup, Lines& lines) {
    Lines categoryNames;
    for (const Uuid& id : theme.categoryIDs) {
        if (const TeskCategory* category = lookUp(lookup.categories, id)) categoryNames.push_back(category->name);
    }
    Lines codeNames;
    for (const Uuid& id : themeCodeIDs(theme, lookup.corpus.workspace)) {
        if (const TeskCode* code = lookUp(lookup.codes, id)) codeNames.push_back(code->name);
    }
    if (!categoryNames.empty()) lines.push_back("Categories: " + detail::joined(categoryNames, ", "));
    if (!codeNames.empty()) lines.push_back("Codes: " + detail::joined(codeNames, ", "));
}

void appendQuotes(const std::vector<const TeskQuote*>& selected, const FindingLookup& lookup, Lines& lines) {
    if (selected.empty()) return;
    lines.emplace_back();
    lines.emplace_back("Illustrative evidence:");
    for (const TeskQuote* quote : selected) {
        // The text goes in as stored: a quotation is never trimmed or shortened.
        lines.push_back("- " + std::string(roleWord(quote->role)) + ", " +
                        sourceLabel(quote->response.sourceID, lookup) + ": \"" + quote->text + "\"");
        // The blanks belong to the label, so the lines stay indented in a saved section.
        addField("  Rationale", quote->rationale, lines);
        addField("  Memo", quote->memo, lines);
    }
}

void appendFinding(const StagedFinding& staged, std::size_t index, const FindingLookup& lookup,
                   std::int64_t maxQuotes, Lines& lines) {
    const TeskReportFinding& finding = *staged.finding;
    const TeskTheme& theme = *staged.theme;
    std::vector<const TeskQuote*> selected = quotes(finding, theme, lookup);
    selected.resize(std::min(selected.size(), static_cast<std::size_t>(std::max<std::int64_t>(maxQuotes, 0))));

    lines.push_back("### Finding " + std::to_string(index) + ": " + firstNonEmpty({finding.titleOverride, theme.name}));
    lines.emplace_back();
    if (const std::string claim = firstNonEmpty({finding.claimOverride, theme.interpretiveClaim}); !claim.empty()) {
        lines.push_back("Claim: " + claim);
    }
    appendEvidence(lookUp(lookup.rows, theme.id), lines);
    appendGroupings(theme, lookup, lines);
    addField("Context", theme.contextLens, lines);
    addField("Counter-evidence", theme.counterEvidence, lines);
    addField("Analytic note", finding.writerNote, lines);
    addField("Theme memo", theme.memo, lines);
    appendQuotes(selected, lookup, lines);
    lines.emplace_back();
}

// Returns false, adding nothing, when no finding has a theme.
bool appendFindings(const TeskAnalysisCorpus& corpus, std::int64_t maxQuotes, Lines& lines) {
    const FindingLookup lookup(corpus);
    const std::vector<StagedFinding> staged = stagedFindings(lookup);
    for (std::size_t i = 0; i < staged.size(); ++i) appendFinding(staged[i], i + 1, lookup, maxQuotes, lines);
    return !staged.empty();
}

void appendFindingsBody(const TeskAnalysisCorpus& corpus, Lines& lines) {
    constexpr std::int64_t kSectionQuotes = 4;
    if (!appendFindings(corpus, kSectionQuotes, lines)) {
        lines.emplace_back("No findings have been staged for this report section yet.");
    }
}

void appendReportTitle(std::string_view title, Lines& lines) {
    const std::string content = trimmed(title);
    lines.push_back("# " + (content.empty() ? std::string(kDefaultReportTitle) : content));
    lines.emplace_back();
}

std::string finished(const Lines& lines) { return trimmed(detail::joined(lines, "\n")) + "\n"; }

void appendBodyOrSentence(Lines& lines, std::string_view sentence) {
    if (lines.empty()) lines.emplace_back(sentence);
}

} // namespace

std::string sourceSignature(std::string_view body) {
    std::uint64_t hash = 0xcbf29ce484222325ULL;
    for (const char byte : body) {
        hash ^= static_cast<unsigned char>(byte);
        hash *= 0x100000001b3ULL;
    }
    char text[16];
    const auto end = std::to_chars(text, text + sizeof text, hash, 16).ptr;
    return std::string(text, end);
}

std::string sectionBody(TeskReportSectionKind kind, const TeskAnalysisCorpus& corpus) {
    Lines lines;
    switch (kind) {
    case TeskReportSectionKind::studyFrame:
        detail::appendStudyFrameFields(corpus, lines);
        appendBodyOrSentence(lines, "No study frame content saved yet.");
        break;
    case TeskReportSectionKind::contextLens:
        detail::appendContextLensBody(corpus, lines);
        appendBodyOrSentence(lines, "No contextual lens content saved yet.");
        break;
    case TeskReportSectionKind::corpus: detail::appendCorpusBody(corpus, lines); break;
    case TeskReportSectionKind::codebook: detail::appendCodebookBody(corpus, lines); break;
    case TeskReportSectionKind::findings: appendFindingsBody(corpus, lines); break;
    case TeskReportSectionKind::trustworthiness: detail::appendTrustworthinessBody(corpus, lines); break;
    }
    return trimmed(detail::joined(lines, "\n"));
}

TeskReportSection draftSection(TeskReportSectionKind kind, const TeskAnalysisCorpus& corpus) {
    TeskReportSection section;
    section.kind = kind;
    section.title = std::string(defaultTitle(kind));
    section.body = sectionBody(kind, corpus);
    section.sourceSignature = sourceSignature(section.body);
    section.includeInReport = true;
    section.createdAt = section.updatedAt = platform::now();
    return section;
}

std::string composeSavedSections(const TeskAnalysisCorpus& corpus, std::string_view title) {
    Lines lines;
    appendReportTitle(title, lines);
    bool any = false;
    for (const TeskReportSection& section : corpus.workspace.reportSections) {
        if (!section.includeInReport) continue;
        any = true;
        const std::string heading = trimmed(section.title);
        const std::string body = trimmed(section.body);
        lines.push_back("## " + (heading.empty() ? std::string(defaultTitle(section.kind)) : heading));
        lines.emplace_back();
        lines.push_back(body.empty() ? std::string("No saved content for this section.") : body);
        lines.emplace_back();
    }
    if (!any) {
        lines.emplace_back("No report sections have been saved to the builder yet.");
        lines.emplace_back();
    }
    return finished(lines);
}

std::string compose(const TeskAnalysisCorpus& corpus, std::string_view title, std::int64_t maxQuotesPerFinding) {
    Lines lines;
    appendReportTitle(title, lines);
    detail::appendStudyFrame(corpus, lines);

    Lines corpusBody;
    detail::appendCorpusBody(corpus, corpusBody);
    detail::addSection(defaultTitle(TeskReportSectionKind::corpus), corpusBody, lines);

    lines.push_back("## " + std::string(defaultTitle(TeskReportSectionKind::findings)));
    lines.emplace_back();
    if (!appendFindings(corpus, maxQuotesPerFinding, lines)) {
        lines.emplace_back("No findings have been staged for this report yet.");
        lines.emplace_back();
    }

    Lines codebook;
    detail::appendCodebookBody(corpus, codebook);
    detail::addSection(defaultTitle(TeskReportSectionKind::codebook), codebook, lines);

    Lines trustworthiness;
    detail::appendTrustworthinessBody(corpus, trustworthiness);
    detail::addSection(defaultTitle(TeskReportSectionKind::trustworthiness), trustworthiness, lines);
    return finished(lines);
}

std::vector<TeskReportFindingReadiness> readiness(const TeskAnalysisCorpus& corpus) {
    const FindingLookup lookup(corpus);
    std::unordered_set<Uuid> themesWithCounterExample;
    for (const TeskQuote& quote : corpus.workspace.quotes) {
        if (quote.role == TeskQuoteRole::counterExample) {
            themesWithCounterExample.insert(quote.themeIDs.begin(), quote.themeIDs.end());
        }
    }

    std::vector<TeskReportFindingReadiness> result;
    for (const auto& [finding, theme] : stagedFindings(lookup)) {
        TeskReportFindingReadiness row;
        row.themeID = theme->id;
        row.title = firstNonEmpty({finding->titleOverride, theme->name});
        row.claim = firstNonEmpty({finding->claimOverride, theme->interpretiveClaim});
        std::vector<std::string> warnings;
        if (const TeskThemeCoverageRow* coverage = lookUp(lookup.rows, theme->id)) {
            row.applicationCount = coverage->applicationCount;
            row.sourceSpread = coverage->sourceSpread;
            row.quoteCount = coverage->quoteCount;
            warnings = coverage->warnings;
        }
        // A written counter-evidence note excuses the missing quote.
        if (finding->includeCounterExamples && !themesWithCounterExample.contains(theme->id) &&
            platform::text::isBlank(theme->counterEvidence)) {
            warnings.emplace_back("No counter-example quote");
        }
        row.warnings = unique(warnings);
        result.push_back(std::move(row));
    }
    return result;
}

} // namespace mibrel::TeskReportComposer
