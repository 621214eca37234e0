#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "MerivanteCore/Dataset/MerivantePackageLayout.h"
#include "MerivanteCore/Dataset/MerivanteProjectManifest.h"
#include "MerivanteCore/Dataset/ProjectArchive.h"
#include "Platform/Files/FileError.h"
#include "Platform/Foundation/EnumRawValues.h"
#include "Platform/Json/JsonCoding.h"
#include "tests/support/TestSupport.h"

namespace merivante {
namespace {

namespace fs = std::filesystem;
using Kind = platform::json::DecodingError::Kind;
using mibrel::testing::folderListing;
using mibrel::testing::readText;
using mibrel::testing::TemporaryDirectory;
using mibrel::testing::unsortedKeysIn;
using mibrel::testing::writeText;

platform::Date at(std::string_view iso) { return *platform::parseISO8601(iso); }

DataVariable variable(std::string name, VariableKind kind) {
    DataVariable result;
    result.name = std::move(name);
    result.inferredType = VariableKind::textResponse;
    result.assignedType = kind;
    result.includeInReliability = isReliabilityEligible(kind);
    result.includeInDescriptives = includedInDescriptivesByDefault(kind);
    return result;
}

// Three items with everything a user can decide set somewhere, and import findings that
// must not travel into the archive.
ImportedDataset survey() {
    DataVariable q1 = variable("q1", VariableKind::psychometricItem);
    q1.label = "I enjoy maths";
    q1.assignedConstruct = "Enjoyment";
    q1.scaleRange = ScaleRange{1, 5};
    q1.missingCount = 1;
    q1.nonMissingCount = 2;
    q1.uniqueCount = 2;
    q1.sampleValues = {"4", "5"};
    q1.warnings = {"One response is missing."};
    DataVariable q2 = variable("q2", VariableKind::psychometricItem);
    q2.scaleRange = ScaleRange{1, std::nullopt};
    q2.includeInDescriptives = false;
    DataVariable group = variable("group", VariableKind::grouping);
    return ImportedDataset{"Survey", {"q1", "q2", "group"}, {{"4", "2", "A"}, {"", "3", "B"}, {"5", "1", "A"}},
                           {q1, q2, group}, {}};
}

ProjectArchive surveyArchive() {
    return ProjectArchive::make(survey(), {"Reverse-coded q2", "Dropped row 7"}, {{"alpha", "0.05"}, {"theme", "dark"}},
                                {"q2", "Q1", "ghost"}, {"group"}, at("2024-03-01T09:30:00Z"),
                                at("2024-03-02T10:00:00Z"));
}

TEST(ProjectArchiveTest, KeepsTheTableAndTheUsersDecisionsAboutEachVariable) {
    const ProjectArchive archive = surveyArchive();
    EXPECT_EQ(archive.schemaVersion, "1.0");
    EXPECT_EQ(archive.engineVersion, "Merivante native 0.1.0");
    EXPECT_EQ(archive.datasetName, "Survey");
    EXPECT_EQ(archive.headers, survey().headers);
    EXPECT_EQ(archive.rows, survey().rows);
    EXPECT_EQ(archive.transformationLog, (std::vector<std::string>{"Reverse-coded q2", "Dropped row 7"}));
    EXPECT_EQ(archive.settings.at("theme"), "dark");
    EXPECT_EQ(archive.createdAt, at("2024-03-01T09:30:00Z"));
    EXPECT_EQ(archive.modifiedAt, at("2024-03-02T10:00:00Z"));

    // "Q1" differs from "q1" only in case and "ghost" names no variable: neither marks anything.
    using P = ProjectVariableState;
    const auto item = VariableKind::psychometricItem;
    EXPECT_EQ(archive.variableStates,
              (std::vector<P>{P{"q1", "I enjoy maths", item, "Enjoyment", ScaleRange{1, 5}, true, true, false, false},
                              P{"q2", std::nullopt, item, std::nullopt, ScaleRange{1, std::nullopt}, true, false, true,
                                false},
                              P{"group", std::nullopt, VariableKind::grouping, std::nullopt, std::nullopt, false, true,
                                false, true}}));
}

TEST(ProjectArchiveTest, ADatasetWithoutVariablesKeepsItsTableAsItStands) {
    // Rows of uneven length stay uneven: the archive stores the table, it does not repair it.
    const ImportedDataset bare{"Bare", {"a", "b"}, {{"1"}, {"2", "3", "4"}}, {}, {}};
    const ProjectArchive archive =
        ProjectArchive::make(bare, {}, {}, {"a"}, {"b"}, at("2024-01-01T00:00:00Z"), at("2024-01-01T00:00:00Z"));
    EXPECT_TRUE(archive.variableStates.empty());
    EXPECT_EQ(archive.headers, bare.headers);
    EXPECT_EQ(archive.rows, bare.rows);
    EXPECT_EQ(ProjectArchive::decode(archive.encode()), archive);
}

TEST(ProjectArchiveTest, EncodesStablyWithoutImportFindingsAndRoundTrips) {
    const ProjectArchive archive = surveyArchive();
    const std::string json = archive.encode();
    EXPECT_EQ(json, surveyArchive().encode());
    EXPECT_EQ(unsortedKeysIn(json), "");
    EXPECT_EQ(ProjectArchive::decode(json), archive);

    EXPECT_NE(json.find(R"("createdAt": "2024-03-01T09:30:00Z")"), std::string::npos) << json;
    EXPECT_NE(json.find(R"("assignedType": "psychometric_item")"), std::string::npos) << json;
    for (const char* derived : {"inferredType", "missingCount", "sampleValues", "warnings", "importMetadata", "\"id\""}) {
        EXPECT_EQ(json.find(derived), std::string::npos) << derived;
    }
    // Only q1 has a label: absent values leave their keys out.
    ASSERT_NE(json.find("\"label\""), std::string::npos);
    EXPECT_EQ(json.find("\"label\""), json.rfind("\"label\""));
}

// A hand-written archive with one variable; `state` holds that variable's members.
std::string archiveJson(std::string_view state, std::string_view schemaVersion = "1.0") {
    return R"({"createdAt": "2023-05-06T07:08:09Z", "datasetName": "Old", "engineVersion": "Merivante 0.0.9",
               "headers": ["q1"], "modifiedAt": "2023-05-06T07:08:09+02:00", "rows": [["3"]],
               "schemaVersion": ")" +
           std::string(schemaVersion) + R"(", "settings": {"k": "v"}, "transformationLog": [],
               "variableStates": [{)" +
           std::string(state) + "}]}";
}

constexpr std::string_view withoutFlags =
    R"("assignedType": "test_item", "includeInDescriptives": true, "includeInReliability": true, "name": "q1")";

TEST(ProjectArchiveTest, ArchivesWithoutTheFlagsOrFromOtherVersionsOpen) {
    const ProjectArchive old = ProjectArchive::decode(archiveJson(withoutFlags, "9.9"));
    EXPECT_EQ(old.schemaVersion, "9.9");
    EXPECT_EQ(old.engineVersion, "Merivante 0.0.9");
    EXPECT_EQ(old.modifiedAt, at("2023-05-06T05:08:09Z"));
    EXPECT_EQ(old.settings, (std::map<std::string, std::string>{{"k", "v"}}));
    ASSERT_EQ(old.variableStates.size(), 1u);
    EXPECT_EQ(old.variableStates[0],
              (ProjectVariableState{"q1", std::nullopt, VariableKind::testItem, std::nullopt, std::nullopt, true, true,
                                    false, false}));

    const auto flagged = ProjectArchive::decode(
        archiveJson(std::string(withoutFlags) + R"(, "isReverseCoded": true, "isUnreliableFlagged": null)"));
    EXPECT_TRUE(flagged.variableStates[0].isReverseCoded);
    EXPECT_FALSE(flagged.variableStates[0].isUnreliableFlagged);
}

TEST(ProjectArchiveTest, AMissingRequiredValueOrDamagedTextIsADecodingError) {
    const auto failure = [](const std::string& text) -> std::optional<Kind> {
        try {
            (void)ProjectArchive::decode(text);
        } catch (const platform::json::DecodingError& error) {
            return error.kind();
        }
        return std::nullopt;
    };
    EXPECT_EQ(failure(archiveJson(R"("assignedType": "test_item", "includeInDescriptives": true, "name": "q1")")),
              Kind::missingKey);
    // The tolerance is the two flags' alone: a wrong type there is still an error.
    EXPECT_EQ(failure(archiveJson(std::string(withoutFlags) + R"(, "isReverseCoded": "yes")")), Kind::typeMismatch);
    const std::string whole = surveyArchive().encode();
    EXPECT_EQ(failure(whole.substr(0, whole.size() / 2)), Kind::syntax);
}

MerivanteProjectManifest manifest(std::string name, DatasetStorageMode mode = DatasetStorageMode::copy) {
    return MerivanteProjectManifest{std::move(name), at("2024-04-05T06:07:08Z"), "Merivante native 0.1.0", mode};
}

TEST(MerivantePackageTest, CreateFolderMakesEveryRequiredEntryUnderMissingParents) {
    const TemporaryDirectory temporary;
    const fs::path location = temporary / "studies/2024/Thesis.merivante";
    MerivantePackageLayout::createFolder(location, manifest("Thesis"));

    EXPECT_EQ(folderListing(location), "analyses audit_log.json construct_map.json dataset method_files project.json "
                                       "reports variable_map.json");
    for (const auto& entry : MerivantePackageLayout::requiredEntries) {
        const fs::path path = location / entry.name;
        if (entry.kind == MerivantePackageLayout::EntryKind::folder) {
            EXPECT_TRUE(fs::is_directory(path)) << entry.name;
            EXPECT_EQ(folderListing(path), "") << entry.name;
        } else if (entry.name != "project.json") {
            EXPECT_EQ(readText(path), "[]") << entry.name;
        }
    }
    EXPECT_EQ(readText(location / "project.json"), platform::json::encode(manifest("Thesis")));
}

TEST(MerivantePackageTest, CreatingOverAPackageRewritesItsFilesAndKeepsWhatTheFoldersHold) {
    const TemporaryDirectory temporary;
    const fs::path location = temporary / "Thesis.merivante";
    MerivantePackageLayout::createFolder(location, manifest("First draft"));
    // Longer than what replaces them, so leftovers of an untruncated write would show.
    writeText(location / "variable_map.json", R"([{"name": "q1", "construct": "Enjoyment"}])");
    writeText(location / "audit_log.json", R"([{"event": "opened"}])");
    writeText(location / "reports/summary.txt", "kept");
    writeText(location / "dataset/data.csv", "q1\n4\n");

    MerivantePackageLayout::createFolder(location, manifest("Thesis", DatasetStorageMode::pointer));
    EXPECT_EQ(platform::json::decode<MerivanteProjectManifest>(readText(location / "project.json")),
              manifest("Thesis", DatasetStorageMode::pointer));
    EXPECT_EQ(readText(location / "variable_map.json"), "[]");
    EXPECT_EQ(readText(location / "construct_map.json"), "[]");
    EXPECT_EQ(readText(location / "audit_log.json"), "[]");
    EXPECT_EQ(readText(location / "reports/summary.txt"), "kept");
    EXPECT_EQ(readText(location / "dataset/data.csv"), "q1\n4\n");
}

TEST(MerivantePackageTest, SomethingInTheWayFailsAndLeavesWhatWasMade) {
    const TemporaryDirectory temporary;
    const fs::path file = temporary / "Thesis.merivante";
    writeText(file, "not a folder");
    EXPECT_THROW(MerivantePackageLayout::createFolder(file, manifest("Thesis")), platform::files::FileError);
    EXPECT_EQ(readText(file), "not a folder");

    // A file where "analyses" belongs: the folder before it exists, nothing after it is written.
    const fs::path blocked = temporary / "Blocked.merivante";
    writeText(blocked / "analyses", "");
    try {
        MerivantePackageLayout::createFolder(blocked, manifest("Blocked"));
        ADD_FAILURE() << "expected a FileError";
    } catch (const platform::files::FileError& error) {
        EXPECT_EQ(error.operation(), platform::files::FileError::Operation::createFolder);
        EXPECT_NE(std::string(error.what()).find("analyses"), std::string::npos) << error.what();
    }
    EXPECT_EQ(folderListing(blocked), "analyses dataset");

    // A folder where a file belongs fails on writing, before the files after it.
    const fs::path occupied = temporary / "Occupied.merivante";
    fs::create_directories(occupied / "construct_map.json");
    EXPECT_THROW(MerivantePackageLayout::createFolder(occupied, manifest("Occupied")), platform::files::FileError);
    EXPECT_EQ(readText(occupied / "variable_map.json"), "[]");
    EXPECT_FALSE(fs::exists(occupied / "audit_log.json"));
}

} // namespace
} // namespace merivante
