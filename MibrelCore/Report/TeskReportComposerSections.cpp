#include "MibrelCore/Report/TeskReportComposerSections.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <unordered_map>

#include "MibrelCore/Analysis/TeskAnalysisEngine.h"
#include "MibrelCore/Analysis/TeskCodeReadiness.h"
#include "MibrelCore/Model/TeskCodeStatus.h"
#include "MibrelCore/Model/TeskReportSectionKind.h"
#include "Platform/Foundation/EnumRawValues.h"
#include "Platform/Text/Text.h"

namespace mibrel::TeskReportComposer::detail {
namespace {

using platform::text::trimmed;

// Rounds half away from zero. A damaged file can hold any double, so values that do not
// fit an integer are pinned instead of converted.
std::int64_t roundedInteger(double value) {
    constexpr double kLimit = 1e15;
    const double rounded = std::round(value);
    if (std::isnan(rounded)) return 0;
    return static_cast<std::int64_t>(std::clamp(rounded, -kLimit, kLimit));
}

std::string percent(double fraction) { return std::to_string(roundedInteger(fraction * 100)) + "%"; }

// A blank line, the group's title, a blank line and the elements; nothing without elements.
void appendGroup(std::string_view title, const Lines& elements, Lines& lines) {
    if (elements.empty()) return;
    lines.emplace_back();
    lines.emplace_back(title);
    lines.emplace_back();
    lines.insert(lines.end(), elements.begin(), elements.end());
}

std::string subHeading(const std::string& heading, const Lines& body) {
    return "### " + heading + "\n" + joined(body, "\n");
}

void appendMediaMemos(const TeskAnalysisCorpus& corpus, Lines& lines) {
    Lines elements;
    for (const TeskSource& source : corpus.sources) {
        const TeskMediaMemo& memo = source.mediaMemo;
        Lines fields;
        addField("Tone", memo.tone, fields);
        addField("Pauses/emphasis", memo.pausesAndEmphasis, fields);
        addField("Setting", memo.setting, fields);
        addField("Gesture/movement", memo.gestureAndMovement, fields);
        addField("Interaction", memo.interaction, fields);
        addField("Nonverbal context", memo.nonverbalContext, fields);
        addField("Analytic notes", memo.analyticNotes, fields);
        if (!fields.empty()) elements.push_back(subHeading(source.label, fields));
    }
    appendGroup("Media memos", elements, lines);
}

// Minutes and seconds; an hour-long recording reads "75:00", as in the player.
std::string clockTime(double seconds) {
    const std::int64_t total = std::max<std::int64_t>(roundedInteger(seconds), 0);
    char text[48];
    std::snprintf(text, sizeof text, "%lld:%02lld", static_cast<long long>(total / 60),
                  static_cast<long long>(total % 60));
    return text;
}

// NaN sorts first (it shows as 0:00) so the order stays strict.
double sortKey(const TeskMediaNote& note) {
    return std::isnan(note.timestamp) ? -std::numeric_limits<double>::infinity() : note.timestamp;
}

void appendMediaObservations(const TeskAnalysisCorpus& corpus, Lines& lines) {
    Lines elements;
    for (const TeskSource& source : corpus.sources) {
        if (source.mediaNotes.empty()) continue;
        std::vector<const TeskMediaNote*> notes;
        for (const TeskMediaNote& note : source.mediaNotes) notes.push_back(&note);
        std::stable_sort(notes.begin(), notes.end(),
                         [](const TeskMediaNote* a, const TeskMediaNote* b) { return sortKey(*a) < sortKey(*b); });
        Lines noteLines;
        for (const TeskMediaNote* note : notes) {
            noteLines.push_back("- " + clockTime(note->timestamp) + ": " + note->text);
        }
        elements.push_back(subHeading(source.label, noteLines));
    }
    appendGroup("Media observations", elements, lines);
}

std::string sourceLine(const TeskAnalysisCorpus& corpus, const TeskSource& source) {
    const auto transcript = corpus.transcripts.find(source.id);
    const std::size_t count = transcript == corpus.transcripts.end() ? 0 : transcript->second.segments.size();
    std::string line = "- " + source.label;
    if (source.mediaKind) line += " (" + std::string(platform::rawValue(*source.mediaKind)) + ")";
    line += ": " + std::to_string(count) + " segments";
    if (!source.tags.empty()) line += " [" + joined(source.tags, ", ") + "]";
    return line;
}

std::string codebookEntry(const TeskCode& code, const TeskCodeReadiness& readiness) {
    Lines pieces{"- " + code.name};
    addField("Status", label(code.status), pieces);
    addField("Readiness", percent(readiness.score()), pieces);
    if (!readiness.missing.empty()) addField("Missing", joined(readiness.missing, ", "), pieces);
    if (!readiness.warnings.empty()) addField("Review flags", joined(readiness.warnings, ", "), pieces);
    addField("Definition", code.definition, pieces);
    addField("Full description", code.fullDescription, pieces);
    addField("Include when", code.includeWhen, pieces);
    addField("Exclude when", code.excludeWhen, pieces);
    addField("Borderline cases", code.borderlineCases, pieces);
    addField("Example", code.exampleQuote, pieces);
    addField("Context note", code.contextNotes, pieces);
    if (code.includeInContextualLens) addField("Contextual lens", "Tagged for lens review", pieces);
    // The fields stand indented under the list line.
    return joined(pieces, "\n  ");
}

using NamesByID = std::unordered_map<Uuid, const std::string*>;

// The first record's name wins when ids repeat.
template <class Records>
NamesByID namesByID(const Records& records) {
    NamesByID names;
    for (const auto& record : records) names.try_emplace(record.id, &record.name);
    return names;
}

const std::string* lookUp(const NamesByID& names, const std::optional<Uuid>& id) {
    if (!id) return nullptr;
    const auto found = names.find(*id);
    return found == names.end() ? nullptr : found->second;
}

void appendProjectLens(const TeskContextLens& lens, Lines& lines) {
    Lines fields;
    addField("Setting", lens.setting, fields);
    addField("Population", lens.population, fields);
    addField("Cultural context", lens.culturalContext, fields);
    addField("Institutional context", lens.institutionalContext, fields);
    addField("Positionality", lens.positionality, fields);
    addField("Consequences", lens.consequences, fields);
    if (fields.empty()) return;
    lines.emplace_back("Project lens");
    lines.emplace_back();
    lines.insert(lines.end(), fields.begin(), fields.end());
}

void appendLensReview(const TeskContextualLensReview& review, const NamesByID& codeNames,
                      const NamesByID& themeNames, Lines& lines) {
    const std::string* code = lookUp(codeNames, review.codeID);
    const std::string* theme = lookUp(themeNames, review.themeID);
    Lines names;
    if (code) names.push_back(*code);
    if (theme) names.push_back(*theme);
    lines.push_back("### " + (names.empty() ? std::string("Unassigned lens review") : joined(names, " / ")));
    if (code) addField("Code", *code, lines);
    if (theme) addField("Theme", *theme, lines);
    addField("Context", review.context, lines);
    addField("Voice", review.voice, lines);
    addField("Power/position", review.powerPosition, lines);
    addField("Representation", review.representation, lines);
    addField("Counter-patterns", review.counterPatterns, lines);
    addField("Consequences", review.consequences, lines);
    addField("Analytic action", review.analyticAction, lines);
    lines.emplace_back();
}

} // namespace

std::string joined(const Lines& lines, std::string_view separator) {
    std::string text;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        if (i > 0) text += separator;
        text += lines[i];
    }
    return text;
}

void addField(std::string_view label, std::string_view value, Lines& lines) {
    const std::string content = trimmed(value);
    if (content.empty()) return;
    lines.push_back(std::string(label) + ": " + content);
}

void addSection(std::string_view title, const Lines& body, Lines& lines) {
    Lines kept;
    for (const std::string& element : body) {
        std::string content = trimmed(element);
        if (!content.empty()) kept.push_back(std::move(content));
    }
    if (kept.empty()) return;
    lines.push_back("## " + std::string(title));
    lines.emplace_back();
    lines.insert(lines.end(), kept.begin(), kept.end());
    lines.emplace_back();
}

void appendStudyFrameFields(const TeskAnalysisCorpus& corpus, Lines& lines) {
    const TeskStudyFrame& frame = corpus.workspace.studyFrame;
    addField("Research question", frame.researchQuestion, lines);
    addField("Purpose", frame.purpose, lines);
    addField("Methodology", frame.methodology, lines);
    addField("Researcher stance", frame.researcherStance, lines);
    addField("Report memo", corpus.workspace.reportMemo, lines);
    addField("First-read memo", frame.firstReadMemo, lines);
}

void appendStudyFrame(const TeskAnalysisCorpus& corpus, Lines& lines) {
    Lines frame;
    appendStudyFrameFields(corpus, frame);
    addSection(defaultTitle(TeskReportSectionKind::studyFrame), frame, lines);
    Lines lens;
    appendContextLensBody(corpus, lens);
    addSection(defaultTitle(TeskReportSectionKind::contextLens), lens, lines);
}

void appendCorpusBody(const TeskAnalysisCorpus& corpus, Lines& lines) {
    const TeskCorpusOverview overview = TeskAnalysisEngine::corpusOverview(corpus);
    lines.push_back("Sources: " + std::to_string(overview.sourceCount));
    lines.push_back("Transcript segments: " + std::to_string(overview.segmentCount));
    lines.push_back("Words: " + std::to_string(overview.totalWords));
    lines.push_back("Code applications: " + std::to_string(overview.applicationCount));
    lines.push_back("Coded segment coverage: " + percent(overview.codedSegmentCoverage));
    for (const TeskSource& source : corpus.sources) lines.push_back(sourceLine(corpus, source));
    appendMediaMemos(corpus, lines);
    appendMediaObservations(corpus, lines);
}

void appendCodebookBody(const TeskAnalysisCorpus& corpus, Lines& lines) {
    const TeskWorkspace& workspace = corpus.workspace;
    if (workspace.codes.isEmpty()) {
        lines.emplace_back("No codebook entries saved yet.");
        return;
    }
    // One pass for the whole codebook; the rows come in codebook order.
    const std::vector<TeskCodeReadiness> readiness = TeskCodeReadinessEngine::readiness(workspace);
    std::size_t index = 0;
    for (const TeskCode& code : workspace.codes) lines.push_back(codebookEntry(code, readiness.at(index++)));
}

void appendContextLensBody(const TeskAnalysisCorpus& corpus, Lines& lines) {
    const TeskWorkspace& workspace = corpus.workspace;
    appendProjectLens(workspace.contextLens, lines);
    if (workspace.contextualLensReviews.isEmpty()) return;
    if (!lines.empty()) lines.emplace_back();
    lines.emplace_back("Theme reviews");
    lines.emplace_back();
    const NamesByID codeNames = namesByID(workspace.codes);
    const NamesByID themeNames = namesByID(workspace.themes);
    for (const TeskContextualLensReview& review : workspace.contextualLensReviews) {
        appendLensReview(review, codeNames, themeNames, lines);
    }
}

void appendTrustworthinessBody(const TeskAnalysisCorpus& corpus, Lines& lines) {
    const TeskTrustworthinessRecord& record = corpus.workspace.trustworthiness;
    const std::size_t before = lines.size();
    addField("Reflexivity", record.reflexivityNotes, lines);
    addField("Limitations", record.limitationsNotes, lines);
    addField("Negative cases", record.negativeCaseNotes, lines);
    addField("Audit trail", record.auditTrailNotes, lines);
    for (const TeskRigorCheck& check : TeskAnalysisEngine::rigorChecks(corpus)) {
        lines.push_back("- " + check.label + ": " + std::string(platform::rawValue(check.status)));
    }
    for (const TeskMemberCheck& check : record.memberChecks) {
        lines.push_back("- Member check (" + check.date + "): " + check.finding + " - " + check.outcome);
    }
    // The rigor lines are always there; this only guards against an engine with no checks.
    if (lines.size() == before) lines.emplace_back("No trustworthiness notes saved yet.");
}

} // namespace mibrel::TeskReportComposer::detail
