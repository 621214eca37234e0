#include "tools/mibrel-cli/MibrelCli.h"

#include <sstream>
#include <istream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "MibrelCore/Sources/TeskTranscript.h"
#include "tests/cli/CliTestSupport.h"
#include "tests/support/TestSupport.h"

namespace mibrel::cli {
namespace {

using mibrel::testing::folderListing;
using mibrel::testing::readText;
using mibrel::testing::TemporaryDirectory;
using mibrel::testing::unsortedKeysIn;
using mibrel::testing::writeText;

class MibrelCliTest : public ::testing::Test {
protected:
    std::string createProject(const std::string& name = "study.mvibrl") {
        const std::string path = (folder / name).string();
        const CliResult created = run({"project", "create", path, "--title", "Study"});
        EXPECT_EQ(created.status, kExitSuccess) << created.err;
        return path;
    }

    TemporaryDirectory folder;
};

TEST_F(MibrelCliTest, CreateMakesAPackageHoldingOnlyItsManifest) {
    const CliResult result = run({"project", "create", (folder / "x.mvibrl").string(), "--title", "X"});
    ASSERT_EQ(result.status, kExitSuccess) << result.err;
    EXPECT_EQ(folderListing(folder / "x.mvibrl"), "manifest.json");
    const std::string manifest = readText(folder / "x.mvibrl" / "manifest.json");
    EXPECT_EQ(unsortedKeysIn(manifest), "");
    EXPECT_NE(manifest.find("\"title\": \"X\""), std::string::npos);
    EXPECT_NE(result.out.find("\"path\": \"" + (folder / "x.mvibrl").string() + "\""), std::string::npos);
}

TEST_F(MibrelCliTest, CreateAddsTheEndingAndNeverReplacesThroughAnExtendedName) {
    ASSERT_EQ(run({"project", "create", (folder / "Pilot").string()}).status, kExitSuccess);
    EXPECT_NE(readText(folder / "Pilot.mvibrl" / "manifest.json").find("\"title\": \"Pilot\""), std::string::npos);

    // The name had to be extended, so --replace must not remove the existing package.
    writeText(folder / "Pilot.mvibrl" / "keep.txt", "notes");
    const CliResult again = run({"project", "create", (folder / "Pilot").string(), "--replace"});
    EXPECT_EQ(again.status, kExitFailure);
    EXPECT_EQ(again.err, "Could not save project: A project named Pilot.mvibrl already exists here. Keep the "
                         ".mvibrl ending in the save dialog and choose Replace, or pick another name.\n");
    EXPECT_EQ(readText(folder / "Pilot.mvibrl" / "keep.txt"), "notes");

    // Named in full, the replacement is confirmed.
    EXPECT_EQ(run({"project", "create", (folder / "Pilot.mvibrl").string(), "--replace"}).status, kExitSuccess);
    EXPECT_EQ(folderListing(folder / "Pilot.mvibrl"), "manifest.json");
}

TEST_F(MibrelCliTest, WorkspaceShowDecodesDefaultsAndRefusesDamage) {
    const std::string project = createProject();
    EXPECT_EQ(run({"workspace", "show", project}).status, kExitSuccess); // no analysis yet

    writeText(folder / "study.mvibrl" / "qual" / "workspace.json", "{}");
    const CliResult empty = run({"workspace", "show", project});
    ASSERT_EQ(empty.status, kExitSuccess) << empty.err;
    EXPECT_NE(empty.out.find("\"formatVersion\": 1"), std::string::npos);
    EXPECT_NE(empty.out.find("\"codes\": []"), std::string::npos);
    EXPECT_EQ(empty.out.find("reportDraftRTFData"), std::string::npos);
    EXPECT_EQ(unsortedKeysIn(empty.out), "");

    const std::string damaged = R"({"categories":[{}]})";
    writeText(folder / "study.mvibrl" / "qual" / "workspace.json", damaged);
    const CliResult failed = run({"workspace", "show", project});
    EXPECT_EQ(failed.status, kExitFailure);
    EXPECT_EQ(failed.out, "");
    EXPECT_NE(failed.err.find("“codeIDs”"), std::string::npos) << failed.err;
    EXPECT_NE(failed.err.find("categories[0]"), std::string::npos) << failed.err;
    EXPECT_EQ(readText(folder / "study.mvibrl" / "qual" / "workspace.json"), damaged);
}

TEST_F(MibrelCliTest, CommandsRefuseWhatIsNoProject) {
    std::filesystem::create_directories(folder / "plain.mvibrl");
    for (const auto& command : std::vector<std::vector<std::string>>{
             {"project", "info"}, {"workspace", "show"}, {"sources", "list"}, {"audit", "show"}}) {
        auto arguments = command;
        arguments.push_back((folder / "plain.mvibrl").string());
        const CliResult result = run(arguments);
        EXPECT_EQ(result.status, kExitFailure) << command[0];
        EXPECT_EQ(result.err, "This file is not a valid Merivante Mibrel project.\n");
    }
}

TEST_F(MibrelCliTest, SourcesAndTranscriptsAreListedAndLookedUpById) {
    const std::string project = createProject();
    const std::string sourceID = "6F9619FF-8B86-D011-B42D-00CF4FC964FF";
    const auto sourceFolder = folder / "study.mvibrl" / "sources" / sourceID;
    writeText(sourceFolder / "meta.json", R"({"id":")" + sourceID + R"(","label":"Interview 1"})");
    writeText(sourceFolder / "transcript.json", R"({"segments":[{"id":"s1","text":"We stayed."}]})");

    const CliResult listed = run({"sources", "list", project});
    ASSERT_EQ(listed.status, kExitSuccess) << listed.err;
    EXPECT_NE(listed.out.find("\"label\": \"Interview 1\""), std::string::npos);

    const CliResult shown = run({"transcript", "show", project, "6f9619ff-8b86-d011-b42d-00cf4fc964ff"});
    ASSERT_EQ(shown.status, kExitSuccess) << shown.err;
    EXPECT_NE(shown.out.find("\"text\": \"We stayed.\""), std::string::npos);
    EXPECT_EQ(run({"transcript", "show", project, "00000000-0000-4000-8000-000000000000"}).status, kExitFailure);
    EXPECT_EQ(run({"transcript", "show", project, "not-an-id"}).status, kExitUsage);
}

TEST_F(MibrelCliTest, AuditAppendsInOrderAndReportsADamagedLog) {
    const std::string project = createProject();
    ASSERT_EQ(run({"audit", "append", project, "code_created", "Workload"}).status, kExitSuccess);
    const CliResult second = run({"audit", "append", project, "code_deleted", ""});
    ASSERT_EQ(second.status, kExitSuccess) << second.err;
    EXPECT_NE(second.out.find("\"event\": \"code_deleted\""), std::string::npos);
    const CliResult shown = run({"audit", "show", project});
    EXPECT_LT(shown.out.find("code_created"), shown.out.find("code_deleted"));
    EXPECT_EQ(run({"audit", "append", project, " ", "x"}).status, kExitUsage);

    writeText(folder / "study.mvibrl" / "trustworthiness" / "audit.json", "[{");
    const CliResult failed = run({"audit", "append", project, "code_created", "Trust"});
    EXPECT_EQ(failed.status, kExitFailure);
    EXPECT_FALSE(failed.err.empty());
}

TEST_F(MibrelCliTest, ProjectInfoCountsWhatItCanAndReportsWhatIsDamaged) {
    const std::string project = createProject();
    run({"audit", "append", project, "code_created", "Workload"});
    writeText(folder / "study.mvibrl" / "qual" / "workspace.json", R"({"themes":"oops"})");
    const CliResult info = run({"project", "info", project});
    ASSERT_EQ(info.status, kExitSuccess) << info.err;
    EXPECT_NE(info.out.find("\"auditEvents\": 1"), std::string::npos);
    EXPECT_NE(info.out.find("\"sources\": 0"), std::string::npos);
    EXPECT_NE(info.out.find("\"workspaceError\":"), std::string::npos);
    EXPECT_EQ(info.out.find("\"workspace\":"), std::string::npos);

    writeText(folder / "study.mvibrl" / "qual" / "workspace.json", R"({"codes":[{},{}]})");
    EXPECT_NE(run({"project", "info", project}).out.find("\"codes\": 2"), std::string::npos);
}

TEST_F(MibrelCliTest, EditScriptsRunOperationsWithUndoAndLeaveTheFilesAndAuditLogRight) {
    const std::string project = createProject();
    ASSERT_EQ(run({"edit", project, "addCode", R"({"name":"Support","definition":"Help from colleagues"})"}).status,
              kExitSuccess);
    const std::string workspace = readText(folder / "study.mvibrl" / "qual" / "workspace.json");
    const auto idAt = workspace.find("\"id\": \"") + 7;
    const std::string code = workspace.substr(idAt, 36);
    const std::string source = "6F9619FF-8B86-D011-B42D-00CF4FC964FF";
    const std::string reference = R"({"sourceID":")" + source + R"(","segmentID":"s1"})";
    writeText(folder / "script.jsonl",
              R"({"op":"addApplication","args":{"response":)" + reference + R"(,"codeID":")" + code + "\"}}\n" +
                  R"({"op":"addTheme","args":{"name":"Collegial ties","codeIDs":[")" + code + "\"]}}\n\n" +
                  R"({"op":"deleteCode","args":{"id":")" + code + "\"}}\n" + R"({"op":"undo"})" + "\n" +
                  R"({"op":"redo"})" + "\n" + R"({"op":"deleteCode","args":{}})" + "\n");

    const CliResult result = run({"edit", project, "--script", (folder / "script.jsonl").string()});
    ASSERT_EQ(result.status, kExitSuccess) << result.err;
    std::vector<std::string> lines;
    std::istringstream output(result.out);
    for (std::string line; std::getline(output, line);) lines.push_back(line);
    ASSERT_EQ(lines.size(), 6u);
    EXPECT_NE(lines[0].find(R"("ok":true)"), std::string::npos);
    EXPECT_NE(lines[0].find(R"("undoTitle":"Undo Apply Code")"), std::string::npos);
    EXPECT_NE(lines[3].find(R"("redoTitle":"Redo Delete Code")"), std::string::npos);
    EXPECT_NE(lines[5].find(R"("ok":false)"), std::string::npos);
    EXPECT_NE(lines[5].find("“id”"), std::string::npos);

    // After the redo the code is gone again, with its application, and the theme stays, unlinked.
    const std::string saved = readText(folder / "study.mvibrl" / "qual" / "workspace.json");
    EXPECT_EQ(saved.find(code), std::string::npos);
    EXPECT_NE(saved.find("Collegial ties"), std::string::npos);
    EXPECT_NE(saved.find("\"applications\": []"), std::string::npos);
    const std::string audit = readText(folder / "study.mvibrl" / "trustworthiness" / "audit.json");
    std::vector<std::string> events;
    for (auto at = audit.find("\"event\": \""); at != std::string::npos; at = audit.find("\"event\": \"", at + 1)) {
        events.push_back(audit.substr(at + 10, audit.find('"', at + 10) - at - 10));
    }
    EXPECT_EQ(events, (std::vector<std::string>{"code_created", "application_added", "theme_created", "code_deleted"}));
}

TEST_F(MibrelCliTest, ImportsReadDocumentsAndTablesAndFailInTheReadersWords) {
    const std::string project = createProject();
    writeText(folder / "notes.md", "# Notes\n\nSecond paragraph");
    EXPECT_EQ(run({"text", (folder / "notes.md").string()}).out, "# Notes\n\nSecond paragraph\n");
    const CliResult unsupported = run({"text", (folder / "notes.odt").string()});
    EXPECT_EQ(unsupported.status, kExitFailure);
    EXPECT_EQ(unsupported.err, "This file type is not supported for transcript import.\n");

    writeText(folder / "answers.csv", "id,answer,name\n1,Workload is heavy,Ann\n2,,Bob\n3,Pay,\n");
    const CliResult table = run({"table", (folder / "answers.csv").string()});
    ASSERT_EQ(table.status, kExitSuccess) << table.err;
    EXPECT_NE(table.out.find("\"suggestedTextColumn\": 1"), std::string::npos);

    const CliResult imported = run({"import", "responses", project, (folder / "answers.csv").string(), "--label-column", "2"});
    ASSERT_EQ(imported.status, kExitSuccess) << imported.err;
    EXPECT_NE(imported.out.find("\"imported\": 2"), std::string::npos);
    EXPECT_NE(imported.out.find("\"notice\": \"2 response sources imported. The newest source is selected.\""),
              std::string::npos);
    const std::string index = readText(folder / "study.mvibrl" / "sources" / "index.json");
    EXPECT_LT(index.find("\"label\": \"Ann\""), index.find("\"label\": \"Row 3\""));
    EXPECT_EQ(run({"import", "responses", project, (folder / "answers.csv").string(), "--text-column", "3"}).status,
              kExitUsage);
    writeText(folder / "header.csv", "id,answer\n");
    const CliResult empty = run({"import", "responses", project, (folder / "header.csv").string()});
    EXPECT_EQ(empty.err, "This file has no data rows.\n");

    const CliResult document = run({"import", "transcript", project, MIBREL_IMPORT_FIXTURES "/python-docx.docx"});
    ASSERT_EQ(document.status, kExitSuccess) << document.err;
    const auto idAt = document.out.find("\"id\": \"") + 7;
    const std::string sourceID = document.out.substr(idAt, 36);
    const auto transcript = platform::json::decode<TeskTranscript>(run({"transcript", "show", project, sourceID}).out);
    std::vector<std::string> segments;
    for (const auto& segment : transcript.segments) segments.push_back(segment.text);
    EXPECT_EQ(segments, (std::vector<std::string>{"Interviewer: What brought you to the town?",
                                                  "Participant:\tWork, at first.",
                                                  "We stayed for the school.\nThen for the friends.", "Before", "After",
                                                  "Question", "Answer", "Years here", "12", "End of interview."}));

    const CliResult word = run({"export", "word", project, sourceID, "--format", "text"});
    ASSERT_EQ(word.status, kExitSuccess) << word.err;
    EXPECT_TRUE(word.out.starts_with("python-docx\n\n¶: Interviewer: What brought you to the town?\n\n")) << word.out;
    EXPECT_EQ(run({"export", "word", project, sourceID, "--format", "rtf"}).status, kExitUsage);

    // Source operations run through edit as the window runs them.
    ASSERT_EQ(run({"edit", project, "deleteSource", R"({"id":")" + sourceID + "\"}"}).status, kExitSuccess);
    EXPECT_EQ(readText(folder / "study.mvibrl" / "sources" / "index.json").find(sourceID), std::string::npos);
    EXPECT_EQ(run({"edit", project, "importTranscript", R"({"path":")" + (folder / "gone.txt").string() + "\"}"}).status,
              kExitFailure);
}

// Files as Windows programs and LibreOffice write them: every paragraph, every row.
TEST_F(MibrelCliTest, RealWordFilesAndTablesComeInWhole) {
    const CliResult streamed = run({"text", MIBREL_IMPORT_FIXTURES "/libreoffice-long.docx"});
    ASSERT_EQ(streamed.status, kExitSuccess) << streamed.err;
    EXPECT_TRUE(streamed.out.starts_with("Turn 1: The pay was low")) << streamed.out.substr(0, 80);
    EXPECT_TRUE(streamed.out.ends_with("\n\nTurn 6000: We stayed because the school felt like a family.\n"));
    const CliResult interview = run({"text", MIBREL_IMPORT_FIXTURES "/python-docx-long.docx"});
    ASSERT_EQ(interview.status, kExitSuccess) << interview.err;
    EXPECT_NE(interview.out.find("\n\nParticipant (420): "), std::string::npos);

    const std::string project = createProject();
    for (const std::string name : {"pandas-crlf.csv", "libreoffice-semicolon-de.csv", "excel-csv-windows1252.csv"}) {
        const CliResult imported =
            run({"import", "responses", project, MIBREL_IMPORT_FIXTURES "/" + name, "--label-column", "0"});
        ASSERT_EQ(imported.status, kExitSuccess) << name << ": " << imported.err;
        EXPECT_NE(imported.out.find("\"imported\": 3"), std::string::npos) << name << imported.out;
        // The newest source is the last row's answer, from the text column the table suggested.
        const auto idAt = imported.out.find("\"selectedSourceID\": \"") + 21;
        const auto last = platform::json::decode<TeskTranscript>(run({"transcript", "show", project, imported.out.substr(idAt, 36)}).out);
        ASSERT_EQ(last.segments.size(), 1u);
        EXPECT_TRUE(last.segments[0].text.starts_with("Café in Ålesund")) << name << ": " << last.segments[0].text;
    }
    const std::string index = readText(folder / "study.mvibrl" / "sources" / "index.json");
    std::size_t labels = 0;
    for (auto at = index.find("\"label\": \"P0"); at != std::string::npos; at = index.find("\"label\": \"P0", at + 1)) ++labels;
    EXPECT_EQ(labels, 9u);
    const CliResult sources = run({"sources", "list", project});
    EXPECT_EQ(sources.out.find("Row "), std::string::npos);

    writeText(folder / "open.csv", "id,answer\n1,\"It started well\n2,fine\n");
    const CliResult open = run({"import", "responses", project, (folder / "open.csv").string()});
    EXPECT_EQ(open.status, kExitFailure);
    EXPECT_EQ(open.err, "A quoted cell in this file never closes: the quote mark on line 2 has no partner. Fix that "
                        "line, or export the table as .csv again.\n");
}

TEST_F(MibrelCliTest, ExportsWriteThePacketAndTheHandoffBundle) {
    const std::string project = createProject();
    const std::string packet = (folder / "study.zvk").string();
    const CliResult empty = run({"export", "packet", project, packet});
    EXPECT_EQ(empty.status, kExitFailure);
    EXPECT_EQ(empty.err, "Could not save project: This project has no themes or quotes to present yet.\n");
    EXPECT_FALSE(std::filesystem::exists(packet));

    writeText(folder / "Interview 1.txt", "We stayed.\n\nFor the school.");
    ASSERT_EQ(run({"import", "transcript", project, (folder / "Interview 1.txt").string()}).status, kExitSuccess);
    ASSERT_EQ(run({"edit", project, "addTheme", R"({"name":"Belonging"})"}).status, kExitSuccess);

    const CliResult written = run({"export", "packet", project, packet});
    ASSERT_EQ(written.status, kExitSuccess) << written.err;
    EXPECT_NE(written.out.find("\"themes\": 1"), std::string::npos);
    EXPECT_NE(written.out.find("\"sources\": 1"), std::string::npos);
    EXPECT_NE(readText(packet).find("\"datasetName\": \"Study\""), std::string::npos);
    ASSERT_EQ(run({"export", "packet", project, packet, "--title", "Pilot"}).status, kExitSuccess);
    EXPECT_NE(readText(packet).find("\"datasetName\": \"Pilot\""), std::string::npos);

    const std::string bundle = (folder / "study.mvibrl-handoff").string();
    const CliResult handedOff = run({"export", "handoff", project, bundle});
    ASSERT_EQ(handedOff.status, kExitSuccess) << handedOff.err;
    EXPECT_NE(handedOff.out.find("\"path\": \"" + bundle + "\""), std::string::npos);
    EXPECT_NE(handedOff.out.find("\"themes\": 1"), std::string::npos);
    EXPECT_EQ(readText(folder / "study.mvibrl-handoff" / "handoff" / "dataset.csv"),
              "case_id,participant_label,interview_text\n1,Interview 1,\"We stayed.\n\nFor the school.\"\n");
    EXPECT_NE(readText(folder / "study.mvibrl-handoff" / "handoff" / "manifest.json").find("\"qualProjectTitle\": \"Study\""),
              std::string::npos);
    EXPECT_EQ(run({"export", "handoff", project}).status, kExitUsage);
}

TEST(MibrelCliUsage, HelpAtEveryLevelAndUsageErrors) {
    for (const auto& command : std::vector<std::vector<std::string>>{
             {"--help"}, {"project", "--help"}, {"project", "create", "--help"}, {"workspace", "show", "--help"},
             {"sources", "--help"}, {"transcript", "show", "--help"}, {"audit", "append", "--help"},
             {"import", "responses", "--help"}, {"table", "--help"}}) {
        const CliResult result = run(command);
        EXPECT_EQ(result.status, kExitSuccess) << command.back();
        EXPECT_NE(result.out.find("Usage:"), std::string::npos);
    }
    EXPECT_EQ(run({}).status, kExitUsage);
    EXPECT_EQ(run({"project"}).status, kExitUsage);
    EXPECT_EQ(run({"frobnicate"}).status, kExitUsage);
    EXPECT_EQ(run({"project", "create"}).status, kExitUsage);
    EXPECT_EQ(run({"audit", "append", "p", "e"}).status, kExitUsage);
    EXPECT_EQ(run({"edit", "p"}).status, kExitUsage);
    EXPECT_EQ(run({"import", "responses", "p", "f", "--text-column", "x"}).status, kExitUsage);
}

} // namespace
} // namespace mibrel::cli

namespace mibrel::cli {
namespace {

TEST_F(MibrelCliTest, SuggestionsAreListedAndAcceptedOnlyWhenAsked) {
    const std::string project = createProject();
    writeText(folder / "talk.txt", "My mentor helped a lot.\n\nThe weather was fine.\n\nMentor meetings helped.");
    const CliResult imported = run({"import", "transcript", project, (folder / "talk.txt").string()});
    ASSERT_EQ(imported.status, kExitSuccess) << imported.err;
    const std::string sourceID = imported.out.substr(imported.out.find("\"id\": \"") + 7, 36);
    ASSERT_EQ(run({"edit", project, "addCode", R"({"name":"Mentor","definition":"Guidance from a colleague"})"}).status,
              kExitSuccess);

    const CliResult listed = run({"suggest", project, sourceID, "--local"});
    ASSERT_EQ(listed.status, kExitSuccess) << listed.err;
    EXPECT_NE(listed.out.find("\"accepted\": 0"), std::string::npos);
    EXPECT_NE(listed.out.find("\"rationale\": \"Matched terms: mentor.\""), std::string::npos) << listed.out;
    EXPECT_EQ(readText(folder / "study.mvibrl" / "qual" / "workspace.json").find("Accepted from"), std::string::npos);

    const CliResult accepted = run({"suggest", project, sourceID, "--local", "--accept-all"});
    ASSERT_EQ(accepted.status, kExitSuccess) << accepted.err;
    EXPECT_NE(accepted.out.find("\"accepted\": 2"), std::string::npos) << accepted.out;
    const std::string workspace = readText(folder / "study.mvibrl" / "qual" / "workspace.json");
    EXPECT_NE(workspace.find("\"excerpt\": \"My mentor helped a lot.\""), std::string::npos);
    EXPECT_NE(workspace.find("Accepted from Merivante Intelligence suggestion"), std::string::npos);
    // Each accepted code is logged as a manual apply would be.
    const CliResult audit = run({"audit", "show", project});
    ASSERT_EQ(audit.status, kExitSuccess) << audit.err;
    std::size_t applied = 0;
    for (std::size_t at = audit.out.find("\"application_added\""); at != std::string::npos;
         at = audit.out.find("\"application_added\"", at + 1)) {
        ++applied;
    }
    EXPECT_EQ(applied, 2u) << audit.out;
    // Coded segments are not suggested for again.
    EXPECT_NE(run({"suggest", project, sourceID, "--local"}).out.find("\"suggestions\": []"), std::string::npos);
    EXPECT_EQ(run({"suggest", project, "not-an-id"}).status, kExitUsage);
}

} // namespace
} // namespace mibrel::cli
