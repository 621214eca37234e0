#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "MibrelCore/Export/TeskFindingsExporter.h"
#include "MibrelCore/Export/TeskHandoffExporter.h"
#include "MibrelCore/Storage/TeskProjectError.h"
#include "MibrelCore/Storage/TeskSourceStore.h"
#include "MibrelCore/Storage/TeskWorkspaceStore.h"
#include "Platform/Files/FileSystem.h"
#include "Platform/Json/JsonFile.h"
#include "tests/support/TestSupport.h"

using namespace mibrel;
namespace fs = std::filesystem;
namespace packet = mibrel::TeskFindingsExporter;
namespace handoff = mibrel::TeskHandoffExporter;
namespace support = mibrel::testing;
using platform::json::readJsonFile;

namespace {

TeskSource addSource(const fs::path& project, std::vector<TeskSource>& index, std::string label,
                     const std::string& text = {}) {
    TeskSource source{.label = std::move(label)};
    TeskSourceStore::saveSource(source, project);
    if (!text.empty()) TeskSourceStore::saveTranscript(TeskTranscript::fromPlainText(text), source.id, project);
    index.push_back(source);
    TeskSourceStore::saveIndex(index, project);
    return source;
}

TeskQuote quoteFrom(const Uuid& sourceID, std::string text, std::vector<Uuid> themeIDs) {
    return TeskQuote{.response = {.sourceID = sourceID, .segmentID = "s1"},
                     .text = std::move(text),
                     .themeIDs = std::move(themeIDs)};
}

TeskCodeApplication applicationOf(const Uuid& codeID) {
    return TeskCodeApplication{.response = {.sourceID = Uuid::random(), .segmentID = "s1"}, .codeID = codeID};
}

std::string errorOf(auto&& run) {
    try {
        run();
    } catch (const std::exception& error) {
        return error.what();
    }
    return "no error";
}

} // namespace

TEST(TeskFindingsExporter, PacketNarratesCountsAndDescribesEachThemeAndQuote) {
    const support::TemporaryDirectory folder;
    const fs::path project = folder / "study.mvibrl";
    std::vector<TeskSource> index;
    const TeskSource ann = addSource(project, index, "Ann");

    const TeskCode workload{.name = "Workload"};
    const TeskCode time{.name = "Time"};
    const TeskTheme theme{.name = "Pressure", .memo = "  Heavy load\n", .codeIDs = {workload.id, Uuid::random(), time.id}};
    TeskWorkspace workspace;
    workspace.codes = {workload, time, TeskCode{.name = "Other"}};
    workspace.themes = {theme};
    workspace.applications = {applicationOf(workload.id), applicationOf(time.id), applicationOf(Uuid::random())};
    const Uuid removedSource = Uuid::random();
    TeskQuote counter = quoteFrom(removedSource, "Never home.", {Uuid::random(), theme.id});
    counter.role = TeskQuoteRole::counterExample; // every role goes in
    workspace.quotes = {quoteFrom(ann.id, "Too much.", {theme.id}), counter};
    workspace.trustworthiness = {.reflexivityNotes = " I taught there. ", .auditTrailNotes = "kept out",
                                 .memberChecks = {TeskMemberCheck{}}};
    TeskWorkspaceStore::save(workspace, project);

    const fs::path output = folder / "out" / "study.zvk";
    fs::create_directories(output.parent_path());
    const auto result = packet::exportPacket(project, "Retention", "2.3.0", output);
    EXPECT_EQ(result.fileURL, output);
    EXPECT_EQ((std::vector{result.themeCount, result.quoteCount, result.sourceCount, result.memberCheckCount}),
              (std::vector<std::int64_t>{1, 2, 1, 1}));
    EXPECT_EQ(support::folderListing(output.parent_path()), "study.zvk");

    const std::string text = support::readText(output);
    EXPECT_EQ(support::unsortedKeysIn(text), "");
    EXPECT_EQ(text.find("\"construct\""), std::string::npos);
    const auto payload = readJsonFile<packet::PresentationPayload>(output);
    EXPECT_EQ(payload.schemaVersion, "1.4");
    EXPECT_EQ(payload.zolvarVersion, "2.3.0");
    EXPECT_EQ(payload.datasetName, "Retention");
    EXPECT_EQ(payload.rowCount, 1);
    EXPECT_EQ(payload.columnCount, 0);
    EXPECT_EQ(payload.surveyDesign, packet::SurveyDesignPayload{});
    EXPECT_TRUE(payload.variables.empty() && payload.findings.empty() && payload.constructs.empty());

    const auto& mixed = payload.mixedMethods;
    EXPECT_EQ(mixed.integrationNarrative,
              "This packet presents 1 theme and 2 quotes from qualitative analysis of 1 source in Merivante Mibrel.");
    EXPECT_EQ(mixed.studyDesign, "Qualitative");
    EXPECT_EQ(mixed.convergenceLabel, "Qualitative evidence");
    EXPECT_EQ(mixed.convergenceSummary, "Reflexivity: I taught there.\n1 member check recorded.");
    EXPECT_EQ(mixed.jointDisplayNote, "Exported from Merivante Mibrel. Themes and quotes reflect the qualitative "
                                      "strand only; no quantitative results are included.");
    // Two applications of the theme's own codes and two quotes that name it.
    EXPECT_EQ(mixed.themes, (std::vector<packet::ThemePayload>{
                                {4, theme.id.uuidString(), "Heavy load\nCodes: Workload, Time", "Pressure"}}));
    ASSERT_EQ(mixed.quotes.size(), 2u);
    EXPECT_EQ(mixed.quotes[0], (packet::QuotePayload{workspace.quotes[0].id.uuidString(), "Ann", "Too much.", "Pressure"}));
    EXPECT_EQ(mixed.quotes[1].participantLabel, "Participant");
    EXPECT_EQ(mixed.quotes[1].themeTitle, "Pressure");
}

TEST(TeskFindingsExporter, QuotesAloneAreExportedAndZeroCountsTakeThePlural) {
    const support::TemporaryDirectory folder;
    const fs::path project = folder / "study.mvibrl";
    TeskWorkspace workspace;
    workspace.quotes = {quoteFrom(Uuid::random(), "Alone.", {Uuid::random()})};
    TeskWorkspaceStore::save(workspace, project); // and no "sources/" at all

    const auto result = packet::exportPacket(project, "T", "1.0.0", folder / "p.zvk");
    EXPECT_EQ(result.sourceCount, 0);
    const auto mixed = readJsonFile<packet::PresentationPayload>(folder / "p.zvk").mixedMethods;
    EXPECT_EQ(mixed.integrationNarrative,
              "This packet presents 0 themes and 1 quote from qualitative analysis of 0 sources in Merivante Mibrel.");
    EXPECT_TRUE(mixed.themes.empty());
    EXPECT_EQ(mixed.quotes.at(0).themeTitle, "");
    EXPECT_EQ(mixed.quotes.at(0).participantLabel, "Participant");
    EXPECT_EQ(mixed.convergenceSummary, "No trustworthiness notes recorded yet.");
}

TEST(TeskFindingsExporter, SummariesKeepOnlyWhatWasWritten) {
    TeskWorkspace workspace;
    const TeskTheme bare{.name = "Bare", .memo = " \n ", .codeIDs = {Uuid::random()}};
    workspace.themes = {bare};
    workspace.trustworthiness = {.limitationsNotes = "Small sample", .negativeCaseNotes = "One leaver stayed",
                                 .auditTrailNotes = "Not in the packet",
                                 .memberChecks = {TeskMemberCheck{}, TeskMemberCheck{}}};
    const auto payload = packet::buildPayload(workspace, {}, "T", "1.0.0");
    EXPECT_EQ(payload.mixedMethods.themes.at(0).summary, "");
    EXPECT_EQ(payload.mixedMethods.themes.at(0).evidenceCount, 0);
    EXPECT_EQ(payload.mixedMethods.convergenceSummary,
              "Limitations: Small sample\nNegative cases: One leaver stayed\n2 member checks recorded.");
    EXPECT_EQ(packet::trustworthinessSummary({.reflexivityNotes = "   "}), "No trustworthiness notes recorded yet.");
}

TEST(TeskFindingsExporter, RefusesAnEmptyProjectAndADamagedIndexWithoutWritingAnything) {
    const support::TemporaryDirectory folder;
    const fs::path project = folder / "study.mvibrl";
    fs::create_directories(project);
    EXPECT_EQ(errorOf([&] { packet::exportPacket(project, "T", "1.0.0", folder / "p.zvk"); }),
              "Could not save project: This project has no themes or quotes to present yet.");

    TeskWorkspace workspace;
    workspace.themes = {TeskTheme{.name = "A"}};
    TeskWorkspaceStore::save(workspace, project);
    support::writeText(project / "sources" / "index.json", "[{");
    EXPECT_THROW(packet::exportPacket(project, "T", "1.0.0", folder / "p.zvk"), platform::json::DecodingError);

    support::writeText(project / "qual" / "workspace.json", R"({"themes":"oops"})");
    EXPECT_THROW(packet::exportPacket(project, "T", "1.0.0", folder / "p.zvk"), platform::json::DecodingError);
    EXPECT_EQ(support::folderListing(folder.path()), "study.mvibrl");
}

TEST(TeskHandoffExporter, BundleHoldsOneRowPerSourceTheMappingsAndCopies) {
    const support::TemporaryDirectory folder;
    const fs::path project = folder / "study.mvibrl";
    std::vector<TeskSource> index;
    const TeskSource smith = addSource(project, index, "Smith, Ann", "First answer.\n\nShe said \"no\".");
    const TeskSource quiet = addSource(project, index, "The \"quiet\" one"); // a recording, not transcribed
    addSource(project, index, "Bo", "Fine");
    support::writeText(TeskSourceStore::sourceDirectory(project, quiet.id) / "audio.m4a", "sound");
    TeskWorkspace workspace;
    workspace.codes = {TeskCode{.name = "A"}, TeskCode{.name = "B"}};
    workspace.themes = {TeskTheme{.name = "T"}};
    TeskWorkspaceStore::save(workspace, project);

    const fs::path bundle = folder / "out" / "study.mvibrl-handoff";
    const auto result = handoff::exportBundle(project, "Retention", "2.3.0", bundle);
    EXPECT_EQ(result.handoffURL, bundle);
    EXPECT_EQ(support::folderListing(bundle), "handoff qual sources");
    EXPECT_EQ(support::folderListing(bundle / "handoff"), "dataset.csv manifest.json variable-map.json");
    EXPECT_EQ(support::readText(bundle / "handoff" / "dataset.csv"),
              "case_id,participant_label,interview_text\n"
              "1,\"Smith, Ann\",\"First answer.\n\nShe said \"\"no\"\".\"\n"
              "2,\"The \"\"quiet\"\" one\",\n"
              "3,Bo,Fine\n");
    EXPECT_EQ(handoff::csvField("a\rb"), "\"a\rb\"");

    const auto manifest = readJsonFile<handoff::Manifest>(bundle / "handoff" / "manifest.json");
    EXPECT_EQ(manifest.sources, result.manifest.sources);
    EXPECT_EQ(manifest.handoffVersion, 1);
    EXPECT_EQ(manifest.mibrelVersion, "2.3.0");
    EXPECT_EQ(manifest.qualProjectTitle, "Retention");
    EXPECT_EQ((std::vector{manifest.codesExported, manifest.themesExported, manifest.quotesExported}),
              (std::vector<std::int64_t>{2, 1, 0}));
    ASSERT_EQ(manifest.sources.size(), 3u);
    // The row index counts from 0 where the dataset's case_id counts from 1.
    EXPECT_EQ(manifest.sources[0], (handoff::SourceMapping{"Smith, Ann", "interview_text", 0, smith.id}));
    EXPECT_EQ(manifest.sources[2].rowIndex, 2);
    const std::string manifestText = support::readText(bundle / "handoff" / "manifest.json");
    EXPECT_EQ(support::unsortedKeysIn(manifestText), "");
    EXPECT_NE(manifestText.find("\"sourceId\": \"" + smith.id.uuidString() + "\""), std::string::npos);

    EXPECT_EQ(support::readText(bundle / "handoff" / "variable-map.json"),
              "{\n  \"case_id\": {\n    \"role\": \"identifier\"\n  },\n"
              "  \"interview_text\": {\n    \"role\": \"qual\"\n  },\n"
              "  \"participant_label\": {\n    \"role\": \"identifier\"\n  }\n}");
    EXPECT_EQ(readJsonFile<TeskWorkspace>(bundle / "qual" / "workspace.json").codes.size(), 2u);
    EXPECT_EQ(support::readText(TeskSourceStore::sourceDirectory(bundle, quiet.id) / "audio.m4a"), "sound");

    const auto last = readJsonFile<handoff::LastHandoff>(project / "export" / "last-handoff.json");
    EXPECT_EQ(last.destination, bundle.string());
    EXPECT_EQ(last.sourceCount, 3);
}

TEST(TeskHandoffExporter, ExportingAgainReplacesTheBundleAndLeavesNothingBehind) {
    const support::TemporaryDirectory folder;
    const fs::path project = folder / "study.mvibrl";
    std::vector<TeskSource> index;
    addSource(project, index, "Ann", "Hello");
    const fs::path bundle = folder / "out" / "b.mvibrl-handoff";
    handoff::exportBundle(project, "T", "1.0.0", bundle);
    support::writeText(bundle / "stale.txt", "from before");

    handoff::exportBundle(project, "T", "1.0.0", bundle.string() + "/");
    EXPECT_EQ(support::folderListing(folder / "out"), "b.mvibrl-handoff");
    EXPECT_EQ(support::folderListing(bundle), "handoff qual sources");
}

TEST(TeskHandoffExporter, RecoversLostIndexesAndDefaultsAMissingWorkspace) {
    const support::TemporaryDirectory folder;
    const fs::path project = folder / "study.mvibrl";
    fs::create_directories(project);
    EXPECT_EQ(errorOf([&] { handoff::exportBundle(project, "T", "1.0.0", folder / "b"); }),
              "Could not save project: This project has no sources to hand off.");

    std::vector<TeskSource> index;
    addSource(project, index, "Ann", "Hello");
    fs::remove(project / "sources" / "index.json"); // rebuilt from the source's own folder
    const auto result = handoff::exportBundle(project, "T", "1.0.0", folder / "b");
    EXPECT_EQ(result.manifest.sources.size(), 1u);
    EXPECT_EQ((std::vector{result.manifest.codesExported, result.manifest.themesExported,
                           result.manifest.quotesExported}),
              (std::vector<std::int64_t>{0, 0, 0}));
    EXPECT_TRUE(fs::exists(folder / "b" / "qual" / "workspace.json"));
    EXPECT_FALSE(fs::exists(project / "qual"));

    // The bundle replaces what is at its destination, so the project itself is refused.
    EXPECT_THROW(handoff::exportBundle(project, "T", "1.0.0", project), TeskProjectError);
    EXPECT_THROW(handoff::exportBundle(project, "T", "1.0.0", folder.path()), TeskProjectError);
    EXPECT_THROW(handoff::exportBundle(project, "T", "1.0.0", project / "sources" / "b"), TeskProjectError);
    EXPECT_TRUE(fs::exists(project / "sources"));
    // Anywhere else inside the project is a place like any other.
    EXPECT_NO_THROW(handoff::exportBundle(project, "T", "1.0.0", project / "export" / "b.mvibrl-handoff"));
}

TEST(TeskHandoffExporter, CorruptTranscriptStopsTheExportAndKeepsTheEarlierBundle) {
    const support::TemporaryDirectory folder;
    const fs::path project = folder / "study.mvibrl";
    std::vector<TeskSource> index;
    addSource(project, index, "Ann", "Hello");
    const TeskSource bo = addSource(project, index, "Bo", "Hi");
    const fs::path bundle = folder / "out" / "b.mvibrl-handoff";
    handoff::exportBundle(project, "T", "1.0.0", bundle);
    const std::string before = support::readText(bundle / "handoff" / "manifest.json");

    support::writeText(TeskSourceStore::sourceDirectory(project, bo.id) / "transcript.json", "{\"segments\":");
    EXPECT_THROW(handoff::exportBundle(project, "New", "1.0.0", bundle), platform::json::DecodingError);
    EXPECT_THROW(handoff::exportBundle(project, "New", "1.0.0", folder / "out" / "fresh"), platform::json::DecodingError);
    EXPECT_EQ(support::folderListing(folder / "out"), "b.mvibrl-handoff");
    EXPECT_EQ(support::readText(bundle / "handoff" / "manifest.json"), before);
}

TEST(TeskHandoffExporter, AFailedSwapPutsTheEarlierItemBack) {
    const support::TemporaryDirectory folder;
    support::writeText(folder / "b" / "keep.txt", "old");
    EXPECT_THROW(handoff::installBundle(folder / "missing.tmp", folder / "b"), platform::files::FileError);
    EXPECT_EQ(support::folderListing(folder.path()), "b");
    EXPECT_EQ(support::readText(folder / "b" / "keep.txt"), "old");
}
