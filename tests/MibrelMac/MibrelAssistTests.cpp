#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "MibrelCore/Storage/TeskProjectArchive.h"
#include "MibrelMac/Helper/MibrelAppleHelperSidecar.h"
#include "MibrelMac/Helper/TeskAppleIntelligenceAssist.h"
#include "MibrelMac/State/MibrelAssistRun.h"
#include "MibrelMac/State/MibrelScriptedPanels.h"
#include "MibrelMac/State/MibrelSourcesState.h"
#include "MibrelMac/State/MibrelWorkspaceState.h"
#include "tests/support/EventLoopWait.h"
#include "tests/support/TestSupport.h"

namespace mibrel {
namespace {

namespace fs = std::filesystem;
namespace assist = TeskAppleIntelligenceAssist;
using testing::TemporaryDirectory;

TeskCode code(std::string name, std::string definition = "") {
    TeskCode result;
    result.name = std::move(name);
    result.definition = std::move(definition);
    return result;
}

class ParseSuggestionTest : public ::testing::Test {
protected:
    std::optional<TeskCodeSuggestion> parse(const std::string& text) {
        return assist::parseSuggestion(text, segment, source, codes);
    }
    std::vector<TeskCode> codes{code("Workload", "Hours and tasks"), code("Mentor support", "Help from a mentor")};
    TranscriptSegment segment{"s9", 1.0, 2.0, "Long days."};
    Uuid source = Uuid::random();
};

TEST_F(ParseSuggestionTest, NoneAndNonsenseGiveNothing) {
    EXPECT_FALSE(parse("  none \n"));
    EXPECT_FALSE(parse(""));
    EXPECT_FALSE(parse("CODE|Workload|0.7"));          // three fields
    EXPECT_FALSE(parse("Here:\n CODE|Workload|0.7|leading blank")); // lines are not trimmed
    EXPECT_FALSE(parse("CODE|Invented|0.9|no such code"));
    EXPECT_FALSE(parse("CODE|Mentor  support|0.9|another blank inside"));
}

TEST_F(ParseSuggestionTest, LinesAreReadTolerantlyAndTheFirstSetsConfidenceAndRationale) {
    const auto two = parse("Sure, here you go:\n\ncode| workload |0.8|Long hours | late nights\nCODE|MENTOR SUPPORT|0.3|x");
    ASSERT_TRUE(two);
    EXPECT_EQ(two->suggestedCodeIDs, (std::vector<Uuid>{codes[0].id, codes[1].id}));
    EXPECT_DOUBLE_EQ(two->confidence, 0.8);
    EXPECT_EQ(two->rationale, "Long hours | late nights");
    EXPECT_EQ(two->response, (TeskResponseRef{source, "s9", std::nullopt, std::nullopt}));

    EXPECT_DOUBLE_EQ(parse("CODE|Workload|1.2|x")->confidence, 0.95);
    EXPECT_DOUBLE_EQ(parse("CODE|Workload|0|x")->confidence, 0.1);
    EXPECT_DOUBLE_EQ(parse("CODE|Workload|high|x")->confidence, 0.6);
    EXPECT_DOUBLE_EQ(parse("CODE|Workload| 0.7|x")->confidence, 0.6);
    EXPECT_EQ(parse("CODE|Workload|0.7|")->rationale, "Suggested by the local model.");
    EXPECT_EQ(parse("CODE|Workload|0.7|a\nCODE|Workload|0.2|b")->suggestedCodeIDs.size(), 2u); // repeats kept
}

// A fake helper with a model that knows one segment, fails on requests holding $FAIL_ON,
// and says NONE to everything with SILENT=true. Its status waits for the file $WAIT_FOR
// when that is set, so a test can act while a run is surely under way.
const char* const kModelHelper = R"(
while IFS= read -r request; do
  printf '%s\n' "$request" >> "$LOG"
  case "$request" in
    *ai.status*) while [ -n "$WAIT_FOR" ] && [ ! -e "$WAIT_FOR" ]; do sleep 0.01; done; echo "{\"ok\":true,\"result\":{\"available\":$AVAILABLE,\"model\":\"Local model\"}}" ;;
    *"$FAIL_ON"*) echo '{"ok":false,"error":"The model stopped."}' ;;
    *'Segment:\nMy mentor'*)
      if [ "$SILENT" = true ]; then echo '{"ok":true,"result":{"text":"none"}}'
      else echo '{"ok":true,"result":{"text":"CODE|Mentor|0.9|asked a mentor\nCODE|Workload|0.4|hours"}}'; fi ;;
    *) echo '{"ok":true,"result":{"text":"NONE"}}' ;;
  esac
done
)";

class AssistRunTest : public ::testing::Test {
protected:
    AssistRunTest() {
        TeskProjectArchive::createEmpty(project, "Study", false);
        sources.bind(project);
        workspace.bind(project);
        testing::writeText(folder / "Interview.txt", "placeholder");
        sources.importTranscript(folder / "Interview.txt");
        sourceID = sources.sources()[0].id;
        sources.updateTranscript({{{"a", std::nullopt, std::nullopt, "My mentor helped with the late hours."},
                                   {"b", std::nullopt, std::nullopt, "Salary was never enough."},
                                   {"c", std::nullopt, std::nullopt, "Nothing to see."}}},
                                 sourceID);
        workspace.addCode("Mentor", "A colleague who guides");
        workspace.addCode("Workload", "Late hours");
        useModel("true", "no such request");
    }

    void useModel(const std::string& available, const std::string& failOn, bool silent = false,
                  const std::string& waitFor = "") {
        const fs::path script = folder / ("helper-" + std::to_string(++helpers));
        const std::string settings = "LOG='" + (folder / "requests.log").string() + "'\nAVAILABLE=" + available +
                                     "\nFAIL_ON='" + failOn + "'\nSILENT=" + (silent ? "true" : "false") +
                                     "\nWAIT_FOR='" + waitFor + "'\n";
        testing::writeText(script, "#!/bin/bash\n" + settings + kModelHelper);
        fs::permissions(script, fs::perms::owner_all);
        helper = std::make_unique<MibrelAppleHelperSidecar>([script] { return script; });
        run.useHelper(*helper);
    }

    void waitForRun() {
        ASSERT_TRUE(testing::processEventsUntil([this] { return !run.isRunning(); }));
    }

    Uuid codeID(std::size_t index) const { return workspace.workspace().codes[index].id; }

    TemporaryDirectory folder;
    fs::path project = folder / "Study.mvibrl";
    MibrelScriptedPanels panels;
    MibrelSourcesState sources{panels};
    MibrelWorkspaceState workspace;
    MibrelAssistRun run{sources, workspace};
    std::unique_ptr<MibrelAppleHelperSidecar> helper;
    int helpers = 0;
    Uuid sourceID;
};

TEST_F(AssistRunTest, TheModelSuggestsAndAcceptingAppliesEveryCodeWithTheWholeSegment) {
    EXPECT_EQ(run.display().heading, "Ready when you are");
    run.runSuggestions();
    EXPECT_EQ(run.display().command, "Cancel");
    waitForRun();
    EXPECT_TRUE(run.usedAppleIntelligence());
    ASSERT_EQ(run.suggestions().size(), 1u);
    const TeskCodeSuggestion suggestion = run.suggestions()[0];
    EXPECT_EQ(suggestion.suggestedCodeIDs, (std::vector<Uuid>{codeID(0), codeID(1)}));
    EXPECT_EQ(MibrelAssistRun::matchText(suggestion.confidence), "90% match");
    EXPECT_EQ(run.display().text,
              "Review each match from the local model. Accept routes through the same coding path as manual apply.");
    const std::string log = testing::readText(folder / "requests.log");
    EXPECT_NE(log.find("\"context\":\"Codebook:\\n- Mentor: A colleague who guides\\n- Workload: Late hours\\n\\n"
                       "Segment:\\nMy mentor helped with the late hours.\""),
              std::string::npos)
        << log;
    EXPECT_NE(log.find("\"max_tokens\":220"), std::string::npos);

    run.accept(suggestion.id);
    const auto applications = workspace.applicationsForSource(sourceID);
    ASSERT_EQ(applications.size(), 2u);
    for (const auto& application : applications) {
        EXPECT_EQ(application.excerpt, "My mentor helped with the late hours.");
        EXPECT_EQ(application.memo, "Accepted from Merivante Intelligence (local model)");
    }
    EXPECT_TRUE(run.suggestions().empty());

    // Coded segments are never suggested for again.
    run.runSuggestions();
    waitForRun();
    EXPECT_TRUE(run.suggestions().empty() || run.suggestions()[0].response.segmentID != "a");
}

TEST_F(AssistRunTest, ASilentOrFailingModelFallsBackOnKeywords) {
    useModel("true", "no such request", true);
    run.runSuggestions();
    waitForRun();
    EXPECT_TRUE(run.usedAppleIntelligence()); // the flag stays as the run began
    ASSERT_EQ(run.suggestions().size(), 1u); // the local engine's
    EXPECT_EQ(run.suggestions()[0].rationale.rfind("Matched terms: ", 0), 0u);

    useModel("true", "Segment:\\nMy mentor"); // fails on the one segment it would have answered
    run.runSuggestions();
    waitForRun();
    EXPECT_FALSE(run.lastError());
    ASSERT_EQ(run.suggestions().size(), 1u);
    EXPECT_EQ(run.suggestions()[0].rationale.rfind("Matched terms: ", 0), 0u);

    // Nothing from the model and nothing from the keywords either: the failure is shown.
    workspace.deleteCode(codeID(1));
    workspace.deleteCode(codeID(0));
    workspace.addCode("Policy", "District rules");
    useModel("true", "ai.generate");
    run.runSuggestions();
    waitForRun();
    EXPECT_EQ(run.lastError(), "The model stopped.");
    EXPECT_FALSE(run.usedAppleIntelligence());
    EXPECT_EQ(run.display().heading, "Suggestions could not run");
}

TEST_F(AssistRunTest, WithoutTheModelKeywordsMatchAndAStaleRunNeverWins) {
    useModel("false", "no such request");
    run.runSuggestions();
    workspace.addCode("Salary", "Pay that is never enough");
    run.runSuggestions(); // the first run, cancelled, must not show as canceled nor with its findings
    waitForRun();
    EXPECT_FALSE(run.usedAppleIntelligence());
    EXPECT_FALSE(run.wasCanceled());
    ASSERT_EQ(run.suggestions().size(), 2u);
    run.dismiss(run.suggestions()[1].id);
    EXPECT_EQ(run.display().text, "Review each local match. Accept routes through the same coding path as manual apply.");
    run.accept(run.suggestions()[0].id);
    EXPECT_EQ(workspace.applicationsForSource(sourceID)[0].memo, "Accepted from Merivante Intelligence suggestion");

    useModel("false", "no such request", false, (folder / "go").string());
    run.runSuggestions();
    run.cancel();
    testing::writeText(folder / "go", "");
    waitForRun();
    EXPECT_TRUE(run.wasCanceled());
    EXPECT_TRUE(run.suggestions().empty());
    EXPECT_EQ(run.display().heading, "Canceled");

    run.dismiss(Uuid::random());
    workspace.deleteCode(workspace.workspace().codes[2].id);
    run.runSuggestions();
    waitForRun();
    EXPECT_EQ(run.display().heading, "No matches found");
    EXPECT_EQ(run.display().text, "No segments in this source matched your codebook.");
}

TEST_F(AssistRunTest, AGoneSegmentKeepsItsRowAndTheCodebookMustNotBeEmpty) {
    useModel("false", "no such request");
    run.runSuggestions();
    waitForRun();
    ASSERT_EQ(run.suggestions().size(), 1u);
    sources.updateTranscriptSegmentText(sourceID, "a", "");
    EXPECT_EQ(run.segmentText(run.suggestions()[0].response), "(segment no longer exists)");
    run.accept(run.suggestions()[0].id);
    EXPECT_EQ(run.suggestions().size(), 1u);
    EXPECT_TRUE(workspace.applicationsForSource(sourceID).empty());
    run.dismiss(run.suggestions()[0].id);
    EXPECT_TRUE(run.suggestions().empty());

    workspace.deleteCode(codeID(1));
    workspace.deleteCode(codeID(0));
    EXPECT_EQ(run.display().heading, "Add codes first");
    EXPECT_EQ(run.suggestCommandHint(), "Add codes in the Codebook before running suggest.");
    sources.select(std::nullopt);
    EXPECT_EQ(run.suggestCommandHint(), "Select a source in the sidebar.");
    EXPECT_EQ(run.inspectorStatus().first, "Local matching");
}

TEST_F(AssistRunTest, OpeningTheToolAsksWhetherTheModelIsThere) {
    EXPECT_EQ(run.suggestCommandHint(), std::nullopt);
    run.refreshIntelligenceStatus();
    testing::processEventsUntil([this] { return run.intelligenceStatus().available; });
    EXPECT_EQ(run.intelligenceStatus().model, "Local model");
    EXPECT_EQ(run.inspectorStatus(),
              std::make_pair(std::string("Local model ready"),
                             std::string("On-device model suggests codes when you run Suggest.")));
    EXPECT_EQ(run.display().text,
              "Select a source, then click Suggest Codes in the inspector. A local model is available on this computer.");
}

TEST(AppleIntelligenceStatusTest, AnyFailureReadsAsNotAvailable) {
    MibrelAppleHelperSidecar missing([]() -> fs::path { throw std::runtime_error("no helper"); });
    EXPECT_EQ(assist::status(missing),
              (TeskAppleIntelligenceStatus{false, "the local model", "Not available on this computer."}));
}

} // namespace
} // namespace mibrel
