#include "MibrelCore/Report/TeskReportComposer.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

using namespace mibrel;
namespace composer = mibrel::TeskReportComposer;

namespace {

Date at(std::string_view iso) { return *platform::parseISO8601(iso); }

Uuid id(std::string_view text) { return *Uuid::parse(text); }

bool contains(std::string_view text, std::string_view part) { return text.find(part) != std::string_view::npos; }

// The sources, transcripts and workspace a corpus view needs, kept alive together.
struct Project {
    std::vector<TeskSource> sources;
    TeskTranscriptMap transcripts;
    TeskWorkspace workspace;

    TeskAnalysisCorpus corpus() const { return {sources, transcripts, workspace}; }
    std::string body(TeskReportSectionKind kind) const { return composer::sectionBody(kind, corpus()); }
};

TranscriptSegment segment(std::string segmentID, std::string text) {
    return TranscriptSegment{.id = std::move(segmentID), .text = std::move(text)};
}

TeskQuote quote(const Uuid& sourceID, const Uuid& themeID, std::string text, TeskQuoteRole role, Date createdAt) {
    return TeskQuote{.response = {sourceID, "s1", std::nullopt, std::nullopt}, .text = std::move(text),
                     .themeIDs = {themeID}, .role = role, .createdAt = createdAt};
}

const std::string kEmptyProjectRigorLines = "- Research question is stated: missing\n"
                                            "- Researcher stance is documented: missing\n"
                                            "- Sources are imported: missing\n"
                                            "- First-read memo is present: missing\n"
                                            "- Coding coverage is workable: missing\n"
                                            "- Codebook includes rules: missing\n"
                                            "- Codes are organized into categories: missing\n"
                                            "- Themes have interpretive claims: missing\n"
                                            "- Themes have exemplar quotes: missing\n"
                                            "- Contextual lens is documented: missing\n"
                                            "- Negative cases are addressed: missing\n"
                                            "- Member checks or limitations are recorded: missing";

// Two sources, one coded segment of three, one theme with one quote, one finding.
Project pilotProject() {
    Project project;
    TeskSource interview{.label = "Interview 1", .tags = {"pilot"}};
    TeskSource group{.label = "Focus group", .mediaKind = TeskMediaKind::audio};
    group.mediaNotes = {TeskMediaNote{.timestamp = 75, .text = "Laughter"},
                        TeskMediaNote{.timestamp = 3, .text = "Door closes"}};
    project.sources = {interview, group};
    project.transcripts[interview.id] = TeskTranscript{
        {segment("s1", "We share lesson plans."), segment("s2", "The workload is heavy.")}};
    project.transcripts[group.id] = TeskTranscript{{segment("g1", "Nobody helps me here")}};

    TeskWorkspace& workspace = project.workspace;
    const TeskCode code{.name = "Peer support", .definition = "Help from colleagues",
                        .includeWhen = "Colleague help named", .status = TeskCodeStatus::accepted};
    const TeskTheme theme{.name = "Collegial support",
                          .interpretiveClaim = "Teachers stay where colleagues share the load.",
                          .codeIDs = {code.id}};
    workspace.studyFrame.researchQuestion = "Why do teachers stay?";
    workspace.codes = {code};
    workspace.themes = {theme};
    workspace.applications = {TeskCodeApplication{.response = {interview.id, "s1", std::nullopt, std::nullopt},
                                                  .codeID = code.id}};
    TeskQuote exemplar = quote(interview.id, theme.id, "We share lesson plans.", TeskQuoteRole::exemplar,
                               at("2024-05-01T10:00:00Z"));
    exemplar.rationale = "Names the practice.";
    workspace.quotes = {exemplar};
    workspace.reportFindings = {TeskReportFinding{.themeID = theme.id, .writerNote = "Central to retention."}};
    workspace.trustworthiness.limitationsNotes = "Small sample.";
    workspace.trustworthiness.memberChecks = {
        TeskMemberCheck{.date = "2024-05-02", .finding = "Support matters", .outcome = "Confirmed"}};
    return project;
}

// One theme with the given quotes, staged once with the given flags.
Project themeWithQuotes(std::vector<TeskQuote> quotes, TeskReportFinding finding) {
    Project project;
    const TeskSource source{.label = "Interview 1"};
    project.sources = {source};
    const TeskTheme theme{.id = id("00000000-0000-4000-8000-0000000000A1"), .name = "Workload"};
    for (TeskQuote& each : quotes) each.themeIDs = {theme.id};
    finding.themeID = theme.id;
    project.workspace.themes = {theme};
    project.workspace.quotes = std::move(quotes);
    project.workspace.reportFindings = {finding};
    return project;
}

} // namespace

TEST(TeskReportComposerSections, EmptyProjectGivesEachKindsSentence) {
    const Project empty;
    EXPECT_EQ(empty.body(TeskReportSectionKind::studyFrame), "No study frame content saved yet.");
    EXPECT_EQ(empty.body(TeskReportSectionKind::contextLens), "No contextual lens content saved yet.");
    EXPECT_EQ(empty.body(TeskReportSectionKind::codebook), "No codebook entries saved yet.");
    EXPECT_EQ(empty.body(TeskReportSectionKind::findings),
              "No findings have been staged for this report section yet.");
    EXPECT_EQ(empty.body(TeskReportSectionKind::corpus),
              "Sources: 0\nTranscript segments: 0\nWords: 0\nCode applications: 0\nCoded segment coverage: 0%");
    EXPECT_EQ(empty.body(TeskReportSectionKind::trustworthiness), kEmptyProjectRigorLines);
}

TEST(TeskReportComposerSections, StudyFrameFieldsAreTrimmedAndOrdered) {
    Project project;
    project.workspace.studyFrame = {.researchQuestion = "  Why do teachers stay?\n",
                                    .purpose = " \n\t ",
                                    .researcherStance = "Former teacher",
                                    .firstReadMemo = "Tired voices"};
    project.workspace.reportMemo = "Draft for the board";
    EXPECT_EQ(project.body(TeskReportSectionKind::studyFrame),
              "Research question: Why do teachers stay?\nResearcher stance: Former teacher\n"
              "Report memo: Draft for the board\nFirst-read memo: Tired voices");
}

TEST(TeskReportComposerSections, ContextLensNamesReviewsByCodeAndTheme) {
    Project project;
    const TeskCode code{.name = "Peer support"};
    const TeskTheme theme{.name = "Collegial support"};
    project.workspace.codes = {code};
    project.workspace.themes = {theme};
    project.workspace.contextLens = {.setting = "Rural schools", .positionality = "Former teacher"};
    project.workspace.contextualLensReviews = {
        TeskContextualLensReview{.codeID = code.id, .themeID = theme.id, .voice = "Teachers"},
        // A review of a deleted code has no name left to show.
        TeskContextualLensReview{.codeID = Uuid::random(), .context = "General", .analyticAction = "Recode"}};
    EXPECT_EQ(project.body(TeskReportSectionKind::contextLens),
              "Project lens\n\nSetting: Rural schools\nPositionality: Former teacher\n\n"
              "Theme reviews\n\n"
              "### Peer support / Collegial support\nCode: Peer support\nTheme: Collegial support\nVoice: Teachers\n\n"
              "### Unassigned lens review\nContext: General\nAnalytic action: Recode");

    project.workspace.contextLens = {};
    EXPECT_TRUE(project.body(TeskReportSectionKind::contextLens).starts_with("Theme reviews\n\n### Peer support"));
}

TEST(TeskReportComposerSections, MediaNotesAreListedByTimeAsMinutesAndSeconds) {
    Project project;
    TeskSource visit{.label = "Class visit", .mediaKind = TeskMediaKind::video};
    visit.mediaMemo = {.tone = "Calm", .setting = " Classroom "};
    visit.mediaNotes = {TeskMediaNote{.timestamp = 75, .text = "Laughter"},
                        TeskMediaNote{.timestamp = 3, .text = "Door closes"},
                        TeskMediaNote{.timestamp = 59.5, .text = "Bell"},
                        TeskMediaNote{.timestamp = -4, .text = "Before the start"}};
    const TeskSource plain{.label = "Notes", .tags = {"staff", "2024"}};
    project.sources = {visit, plain};
    EXPECT_EQ(project.body(TeskReportSectionKind::corpus),
              "Sources: 2\nTranscript segments: 0\nWords: 0\nCode applications: 0\nCoded segment coverage: 0%\n"
              "- Class visit (video): 0 segments\n"
              "- Notes: 0 segments [staff, 2024]\n"
              "\nMedia memos\n\n"
              "### Class visit\nTone: Calm\nSetting: Classroom\n"
              "\nMedia observations\n\n"
              "### Class visit\n- 0:00: Before the start\n- 0:03: Door closes\n- 1:00: Bell\n- 1:15: Laughter");
}

TEST(TeskReportComposerSections, CodebookShowsReadinessAsRoundedPercent) {
    Project project;
    const TeskSource source;
    project.sources = {source};
    // Three of six parts done, no evidence yet: one half.
    const TeskCode half{.name = "Observation", .definition = "Seen in class", .fullDescription = "Long form",
                        .includeWhen = "Named by a teacher"};
    // Four fields and coded evidence: five of seven.
    const TeskCode fiveOfSeven{.name = "Workload", .definition = "Hours", .includeWhen = "Hours named",
                               .excludeWhen = "Pay only", .exampleQuote = "Too many hours",
                               .status = TeskCodeStatus::review};
    const TeskCode lens{.name = "Voice", .status = TeskCodeStatus::accepted, .includeInContextualLens = true};
    project.workspace.codes = {half, fiveOfSeven, lens};
    project.workspace.applications = {
        TeskCodeApplication{.response = {source.id, "s1", std::nullopt, std::nullopt}, .codeID = fiveOfSeven.id}};
    EXPECT_EQ(project.body(TeskReportSectionKind::codebook),
              "- Observation\n  Status: Draft\n  Readiness: 50%\n"
              "  Missing: Exclude rule, Borderline cases, Example quote\n"
              "  Review flags: No coded excerpts, Status is Draft\n"
              "  Definition: Seen in class\n  Full description: Long form\n  Include when: Named by a teacher\n"
              "- Workload\n  Status: Review\n  Readiness: 71%\n"
              "  Missing: Full description, Borderline cases\n  Review flags: Status is Review\n"
              "  Definition: Hours\n  Include when: Hours named\n  Exclude when: Pay only\n  Example: Too many hours\n"
              "- Voice\n  Status: Accepted\n  Readiness: 0%\n"
              "  Missing: Definition, Full description, Include rule, Exclude rule, Borderline cases, Example quote, "
              "Contextual lens\n"
              "  Review flags: No coded excerpts\n  Contextual lens: Tagged for lens review");
}

TEST(TeskReportComposerSignature, IsUnseededFnv1aInLowerCaseHex) {
    EXPECT_EQ(composer::sourceSignature(""), "cbf29ce484222325");
    EXPECT_EQ(composer::sourceSignature("a"), "af63dc4c8601ec8c");
    EXPECT_EQ(composer::sourceSignature("foobar"), "85944171f73967e8");
    EXPECT_NE(composer::sourceSignature("Findings: 3"), composer::sourceSignature("Findings: 4"));
    EXPECT_NE(composer::sourceSignature("caf\xC3\xA9"), composer::sourceSignature("caf\xC3\xA8"));
    EXPECT_NE(composer::sourceSignature(std::string("nul\0byte", 8)), composer::sourceSignature("nul"));
}

TEST(TeskReportComposerSignature, DraftSectionSignsItsOwnBody) {
    const Date moment = at("2024-06-01T08:00:00Z");
    const platform::ScopedClockOverride clock([&] { return moment; });
    Project project;
    project.workspace.studyFrame.researchQuestion = "Why do teachers stay?";
    const TeskReportSection section = composer::draftSection(TeskReportSectionKind::studyFrame, project.corpus());
    EXPECT_EQ(section.title, "Study Frame");
    EXPECT_EQ(section.body, "Research question: Why do teachers stay?");
    EXPECT_EQ(section.sourceSignature, composer::sourceSignature(section.body));
    EXPECT_TRUE(section.includeInReport);
    EXPECT_EQ(section.createdAt, moment);
    EXPECT_EQ(section.updatedAt, moment);
    EXPECT_NE(composer::draftSection(TeskReportSectionKind::studyFrame, project.corpus()).id, section.id);

    // The project moving on is what makes a saved section stale.
    project.workspace.studyFrame.purpose = "Retention policy";
    EXPECT_NE(composer::draftSection(TeskReportSectionKind::studyFrame, project.corpus()).sourceSignature,
              section.sourceSignature);
}

TEST(TeskReportComposerSaved, AssemblesIncludedSectionsWithFallbacks) {
    Project project;
    EXPECT_EQ(composer::composeSavedSections(project.corpus(), " \n "),
              "# Qualitative Analysis Report\n\nNo report sections have been saved to the builder yet.\n");

    project.workspace.reportSections = {
        TeskReportSection::make(TeskReportSectionKind::studyFrame, "  ", "\n  Research question: Why?  \n\n", "x"),
        TeskReportSection::make(TeskReportSectionKind::findings, "Hidden", "Left out", "x", false),
        TeskReportSection::make(TeskReportSectionKind::corpus, " Data ", " \n ", "x")};
    EXPECT_EQ(composer::composeSavedSections(project.corpus(), "  Pilot  "),
              "# Pilot\n\n## Study Frame\n\nResearch question: Why?\n\n"
              "## Data\n\nNo saved content for this section.\n");
}

TEST(TeskReportComposerFindings, DeletedThemeDropsOutAndNumberingClosesUp) {
    Project project;
    const TeskTheme workload{.name = "Workload"};
    const TeskTheme belonging{.name = "Belonging"};
    project.workspace.themes = {workload, belonging};
    project.workspace.reportFindings = {TeskReportFinding{.themeID = Uuid::random()},
                                        TeskReportFinding{.themeID = workload.id, .titleOverride = "  Too much  "},
                                        TeskReportFinding{.themeID = belonging.id, .titleOverride = " \n"}};
    const std::string body = project.body(TeskReportSectionKind::findings);
    EXPECT_TRUE(body.starts_with("### Finding 1: Too much\n")) << body;
    EXPECT_TRUE(contains(body, "\n### Finding 2: Belonging\n")) << body;
    EXPECT_FALSE(contains(body, "Finding 3")) << body;

    const auto rows = composer::readiness(project.corpus());
    ASSERT_EQ(rows.size(), 2u);
    EXPECT_EQ(rows[0].themeID, workload.id);
    EXPECT_EQ(rows[0].title, "Too much");
    EXPECT_EQ(rows[1].title, "Belonging");
}

TEST(TeskReportComposerFindings, QuoteFlagsChooseWhichRolesAppear) {
    const Uuid sourceID = Uuid::random();
    std::vector<TeskQuote> quotes{
        quote(sourceID, {}, "counter", TeskQuoteRole::counterExample, at("2024-01-01T00:00:00Z")),
        quote(sourceID, {}, "support", TeskQuoteRole::supporting, at("2024-01-02T00:00:00Z")),
        quote(sourceID, {}, "exemplar", TeskQuoteRole::exemplar, at("2024-01-03T00:00:00Z"))};

    Project none = themeWithQuotes(quotes, TeskReportFinding{.includeExemplarQuotes = false,
                                                             .includeSupportingQuotes = false,
                                                             .includeCounterExamples = false});
    EXPECT_FALSE(contains(none.body(TeskReportSectionKind::findings), "Illustrative evidence:"));
    EXPECT_FALSE(contains(composer::compose(none.corpus(), "R", 10), "Illustrative evidence:"));

    // Role order comes before age; a quote from a source no longer present says "Source".
    Project all = themeWithQuotes(quotes, TeskReportFinding{});
    EXPECT_TRUE(contains(all.body(TeskReportSectionKind::findings),
                         "Illustrative evidence:\n- Exemplar, Source: \"exemplar\"\n"
                         "- Supporting, Source: \"support\"\n- Counter-example, Source: \"counter\""));

    Project countersOnly = themeWithQuotes(quotes, TeskReportFinding{.includeExemplarQuotes = false,
                                                                     .includeSupportingQuotes = false});
    const std::string body = countersOnly.body(TeskReportSectionKind::findings);
    EXPECT_TRUE(contains(body, "Illustrative evidence:\n- Counter-example, Source: \"counter\"")) << body;
    EXPECT_FALSE(contains(body, "support")) << body;
}

TEST(TeskReportComposerFindings, SectionShowsTheFourEarliestOfFiveExemplars) {
    const Uuid sourceID = Uuid::random();
    std::vector<TeskQuote> quotes;
    for (const int day : {5, 1, 4, 2, 3}) {
        quotes.push_back(quote(sourceID, {}, "day " + std::to_string(day), TeskQuoteRole::exemplar,
                               at("2024-01-0" + std::to_string(day) + "T00:00:00Z")));
    }
    // The quotation goes in as stored, blanks and all.
    quotes[1].text = " day 1 ";
    quotes[1].rationale = " Plain words ";
    Project project = themeWithQuotes(quotes, TeskReportFinding{});
    project.sources.front().id = sourceID;
    const std::string body = project.body(TeskReportSectionKind::findings);
    EXPECT_TRUE(contains(body, "Evidence base: 0 coded excerpts across 0 source(s); 5 linked quote(s).")) << body;
    EXPECT_TRUE(contains(body, "Illustrative evidence:\n"
                               "- Exemplar, Interview 1: \" day 1 \"\n  Rationale: Plain words\n"
                               "- Exemplar, Interview 1: \"day 2\"\n"
                               "- Exemplar, Interview 1: \"day 3\"\n"
                               "- Exemplar, Interview 1: \"day 4\""))
        << body;
    EXPECT_FALSE(contains(body, "day 5")) << body;

    // The full report takes the caller's limit; a negative one shows none.
    EXPECT_TRUE(contains(composer::compose(project.corpus(), "R", 5), "day 5"));
    EXPECT_FALSE(contains(composer::compose(project.corpus(), "R", -1), "Illustrative evidence:"));
}

TEST(TeskReportComposerFindings, CodesFollowIdOrderAndCategoriesTheirOwn) {
    Project project;
    const TeskCode zeta{.id = id("00000000-0000-4000-8000-000000000001"), .name = "Zeta"};
    const TeskCode alpha{.id = id("00000000-0000-4000-8000-000000000002"), .name = "Alpha"};
    const TeskCode mid{.id = id("00000000-0000-4000-8000-000000000003"), .name = "Mid"};
    const TeskCategory second{.name = "Second", .codeIDs = {mid.id, zeta.id}};
    const TeskCategory first{.name = "First", .codeIDs = {}};
    const TeskTheme theme{.name = "Support", .memo = "Keep", .codeIDs = {alpha.id, Uuid::random()},
                          .categoryIDs = {second.id, Uuid::random(), first.id}, .contextLens = "Rural",
                          .counterEvidence = "Some leave anyway"};
    project.workspace.codes = {alpha, mid, zeta};
    project.workspace.categories = {first, second};
    project.workspace.themes = {theme};
    project.workspace.reportFindings = {TeskReportFinding{.themeID = theme.id, .claimOverride = " Own claim "}};
    EXPECT_EQ(project.body(TeskReportSectionKind::findings),
              "### Finding 1: Support\n\nClaim: Own claim\n"
              "Evidence base: 0 coded excerpts across 0 source(s); 0 linked quote(s).\n"
              "Review flags: Missing interpretive claim; No coded evidence; No exemplar quote\n"
              "Categories: Second, First\nCodes: Zeta, Alpha, Mid\n"
              "Context: Rural\nCounter-evidence: Some leave anyway\nTheme memo: Keep");
}

TEST(TeskReportComposerReadiness, CounterExampleRuleAndWarnings) {
    Project project;
    const TeskSource source;
    project.sources = {source};
    const TeskTheme bare{.name = "Bare"};
    const TeskTheme excused{.name = "Excused", .interpretiveClaim = "Claim", .counterEvidence = "Some leave"};
    const TeskTheme quoted{.name = "Quoted", .interpretiveClaim = "Claim"};
    project.workspace.themes = {bare, excused, quoted};
    project.workspace.quotes = {
        quote(source.id, quoted.id, "But I stayed", TeskQuoteRole::counterExample, at("2024-01-01T00:00:00Z"))};
    project.workspace.reportFindings = {
        TeskReportFinding{.themeID = bare.id, .claimOverride = "  Override  "},
        TeskReportFinding{.themeID = Uuid::random()},
        TeskReportFinding{.themeID = excused.id},
        TeskReportFinding{.themeID = quoted.id},
        TeskReportFinding{.themeID = bare.id, .includeCounterExamples = false}};

    const auto rows = composer::readiness(project.corpus());
    ASSERT_EQ(rows.size(), 4u);
    // The override does not silence the theme's own warning: coverage judges the theme.
    EXPECT_EQ(rows[0].claim, "Override");
    EXPECT_EQ(rows[0].warnings,
              (std::vector<std::string>{"Missing interpretive claim", "No coded evidence", "No exemplar quote",
                                        "No counter-evidence note", "No counter-example quote"}));
    EXPECT_FALSE(rows[0].isReady());
    // A written counter-evidence note excuses the missing quote.
    EXPECT_EQ(rows[1].warnings, (std::vector<std::string>{"No coded evidence", "No exemplar quote"}));
    EXPECT_EQ(rows[2].warnings, (std::vector<std::string>{"No coded evidence", "No counter-evidence note"}));
    EXPECT_EQ(rows[2].quoteCount, 1);
    // Not asking for counter-examples never warns about them.
    EXPECT_EQ(rows[3].warnings.back(), "No counter-evidence note");
    for (const auto& row : rows) {
        std::vector<std::string> sorted = row.warnings;
        std::sort(sorted.begin(), sorted.end());
        EXPECT_EQ(std::adjacent_find(sorted.begin(), sorted.end()), sorted.end()) << row.title;
    }
}

TEST(TeskReportComposerCompose, SmallProjectExactText) {
    const Project project = pilotProject();
    EXPECT_EQ(composer::compose(project.corpus(), "Pilot report", 3),
              "# Pilot report\n"
              "\n"
              "## Study Frame\n"
              "\n"
              "Research question: Why do teachers stay?\n"
              "\n"
              "## Corpus\n"
              "\n"
              "Sources: 2\n"
              "Transcript segments: 3\n"
              "Words: 12\n"
              "Code applications: 1\n"
              "Coded segment coverage: 33%\n"
              "- Interview 1: 2 segments [pilot]\n"
              "- Focus group (audio): 1 segments\n"
              "Media observations\n"
              "### Focus group\n"
              "- 0:03: Door closes\n"
              "- 1:15: Laughter\n"
              "\n"
              "## Findings\n"
              "\n"
              "### Finding 1: Collegial support\n"
              "\n"
              "Claim: Teachers stay where colleagues share the load.\n"
              "Evidence base: 1 coded excerpts across 1 source(s); 1 linked quote(s).\n"
              "Review flags: Evidence comes from one source; No counter-evidence note\n"
              "Codes: Peer support\n"
              "Analytic note: Central to retention.\n"
              "\n"
              "Illustrative evidence:\n"
              "- Exemplar, Interview 1: \"We share lesson plans.\"\n"
              "  Rationale: Names the practice.\n"
              "\n"
              "## Codebook Appendix\n"
              "\n"
              "- Peer support\n"
              "  Status: Accepted\n"
              "  Readiness: 43%\n"
              "  Missing: Full description, Exclude rule, Borderline cases, Example quote\n"
              "  Definition: Help from colleagues\n"
              "  Include when: Colleague help named\n"
              "\n"
              "## Trustworthiness\n"
              "\n"
              "Limitations: Small sample.\n"
              "- Research question is stated: strong\n"
              "- Researcher stance is documented: missing\n"
              "- Sources are imported: strong\n"
              "- First-read memo is present: missing\n"
              "- Coding coverage is workable: review\n"
              "- Codebook includes rules: strong\n"
              "- Codes are organized into categories: missing\n"
              "- Themes have interpretive claims: strong\n"
              "- Themes have exemplar quotes: strong\n"
              "- Contextual lens is documented: missing\n"
              "- Negative cases are addressed: missing\n"
              "- Member checks or limitations are recorded: strong\n"
              "- Member check (2024-05-02): Support matters - Confirmed\n");
}
