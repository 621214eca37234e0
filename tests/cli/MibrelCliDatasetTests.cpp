#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "MerivanteCore/Dataset/ImportedDataset.h"
#include "MerivanteCore/Dataset/MerivanteProjectManifest.h"
#include "MerivanteCore/Dataset/ProjectArchive.h"
#include "MerivanteCore/Import/ScaleItemClassifier.h"
#include "MerivanteCore/Import/StataReader.h"
#include "MerivanteCore/Statistics/GroupComparisonRecords.h"
#include "MerivanteCore/Statistics/ReliabilityRecords.h"
#include "tests/cli/CliTestSupport.h"
#include "tests/support/DtaBuilder.h"
#include "tests/support/SavBuilder.h"
#include "tests/support/TestSupport.h"

namespace mibrel::cli {
namespace {

using mibrel::testing::folderListing;
using mibrel::testing::readText;
using mibrel::testing::TemporaryDirectory;
using mibrel::testing::writeText;

class MibrelCliDatasetTest : public ::testing::Test {
protected:
    std::string survey() {
        const auto path = folder / "survey.csv";
        writeText(path, "id,Q1,Q2,Q3\n1,4,5,4\n2,3,4,3\n3,5,5,4\n4,2,3,2\n");
        return path.string();
    }

    TemporaryDirectory folder;
};

TEST_F(MibrelCliDatasetTest, ImportPrintsTheDatasetOrTheReasonItCannot) {
    const CliResult imported = run({"dataset", "import", survey()});
    ASSERT_EQ(imported.status, kExitSuccess) << imported.err;
    const auto dataset = platform::json::decode<merivante::ImportedDataset>(imported.out);
    EXPECT_EQ(dataset.name, "survey.csv");
    EXPECT_EQ(dataset.rowCount(), 4);
    EXPECT_EQ(dataset.variables[1].assignedType, merivante::VariableKind::psychometricItem);

    writeText(folder / "survey.sav", "not a system file");
    const CliResult refused = run({"dataset", "import", (folder / "survey.sav").string()});
    EXPECT_EQ(refused.status, kExitFailure);
    EXPECT_EQ(refused.err, "This .sav file could not be read. Re-export it from SPSS as a standard system file, "
                           "then import it again.\n");
    writeText(folder / "survey.ods", "");
    EXPECT_EQ(run({"dataset", "import", (folder / "survey.ods").string()}).err,
              "Merivante Studio imports .xlsx and .csv files, not .ods files.\n");
    writeText(folder / "open.csv", "a,b\n\"never closed\n");
    EXPECT_EQ(run({"dataset", "import", (folder / "open.csv").string()}).status, kExitFailure);
}

TEST_F(MibrelCliDatasetTest, ReadersPrintLabelsAndNotesOfStatisticalFiles) {
    mibrel::testing::SavBuilder sav(true);
    sav.numeric("Q1", "Satisfaction").valueLabels({{mibrel::testing::SavBuilder::float64(1), "Low"}}, {1});
    writeText(folder / "wave.sav", sav.endDictionary().row({std::optional<double>(1)}).bytes());
    const CliResult spss = run({"dataset", "read-spss", (folder / "wave.sav").string()});
    ASSERT_EQ(spss.status, kExitSuccess) << spss.err;
    const auto read = platform::json::decode<merivante::TabularImport>(spss.out);
    EXPECT_EQ(read.valueLabels.at("Q1").at("1"), "Low");
    EXPECT_EQ(read.variableLabels.at("Q1"), "Satisfaction");
    EXPECT_EQ(read.notes.back(), "Parsed 1 variables, 1 cases.");

    mibrel::testing::DtaBuilder dta(117, true);
    dta.variable("q1", 65530, "", "scale").valueLabelTable("scale", {{3, "Often"}}).row({dta.int8(3)});
    writeText(folder / "wave.dta", dta.bytes());
    const CliResult stata = run({"dataset", "read-stata", (folder / "wave.dta").string()});
    ASSERT_EQ(stata.status, kExitSuccess) << stata.err;
    EXPECT_EQ(platform::json::decode<merivante::StataImport>(stata.out).valueLabels.at("q1").at("3"), "Often");

    const CliResult refused = run({"dataset", "read-stata", (folder / "wave.sav").string()});
    EXPECT_EQ(refused.status, kExitFailure);
    EXPECT_EQ(refused.err.rfind("This .dta file could not be read.", 0), 0u);
}

TEST_F(MibrelCliDatasetTest, StatsDistPrintsOneNumberPerCall) {
    EXPECT_EQ(run({"stats", "dist", "studentTPValue", "-2.5", "10"}).out, "0.03144684423660893\n");
    EXPECT_EQ(run({"stats", "dist", "chiSquareRightTailPValue", "-1", "3"}).out, "nan\n");
    const CliResult wrongCount = run({"stats", "dist", "logGamma", "1", "2"});
    EXPECT_NE(wrongCount.status, kExitSuccess);
    EXPECT_NE(wrongCount.err.find("studentizedRangeQuantile p k df"), std::string::npos);
    EXPECT_NE(run({"stats", "dist", "logGamma", "one"}).status, kExitSuccess);
}

TEST_F(MibrelCliDatasetTest, StatsCommandsAnalyseColumnsOfADataFile) {
    const auto path = folder / "study.csv";
    writeText(path, "site,score,q1,q2,q3\n"
                    "North,4.1,4,5,4\nNorth,5.0,3,4,3\nNorth,4.4,5,5,\nNorth,3.9,2,3,2\n"
                    "South,6.2,4,4,5\nSouth,7.1,3,3,3\nSouth,6.6,1,2,1\nNA,9,5,4,5\n");
    const std::string file = path.string();

    const CliResult compared = run({"stats", "compare", file, "--outcome", "score", "--group", "site",
                                    "--missing-rule", "complete cases"});
    ASSERT_EQ(compared.status, kExitSuccess) << compared.err;
    const auto comparison = platform::json::decode<merivante::GroupComparisonAnalysisResult>(compared.out);
    EXPECT_EQ(comparison.groupSummaries.size(), 2u);
    EXPECT_EQ(comparison.missingGroupRows, 1);
    EXPECT_EQ(comparison.methodFile.missingDataRule, "complete cases");
    EXPECT_EQ(comparison.methodFile.outcomeVariable, "score");

    // Text outcomes leave no group with values: the readiness says why, and the command fails.
    const CliResult blocked = run({"stats", "compare", file, "--outcome", "site", "--group", "q1"});
    EXPECT_NE(blocked.status, kExitSuccess);
    EXPECT_NE(blocked.out.find("\"status\": \"blocked\""), std::string::npos);
    EXPECT_NE(blocked.err.find("ANOVA needs at least two groups with two or more valid outcome values."),
              std::string::npos);
    const CliResult unknown = run({"stats", "compare", file, "--outcome", "score", "--group", "region"});
    EXPECT_NE(unknown.status, kExitSuccess);
    EXPECT_NE(unknown.err.find("The dataset has no column named \u201cregion\u201d."), std::string::npos);

    const CliResult reliability = run({"stats", "reliability", file, "--items", "q1,q2,q3", "--rule",
                                       "available-item-mean", "--method", "sum", "--min-completion", "0.6"});
    ASSERT_EQ(reliability.status, kExitSuccess) << reliability.err;
    const auto alpha = platform::json::decode<merivante::ReliabilityResult>(reliability.out);
    EXPECT_EQ(alpha.casesUsed, 8);
    EXPECT_EQ(alpha.itemNames, (std::vector<std::string>{"q1", "q2", "q3"}));
    EXPECT_EQ(alpha.methodMetadata->scaleScoreMethod, merivante::ScaleScoreMethod::sum);
    EXPECT_NE(run({"stats", "reliability", file, "--items", "q1,q2", "--rule", "pairwise"}).status, kExitSuccess);

    const CliResult omega = run({"stats", "omega", file, "--items", "q1,q2,q3"});
    ASSERT_EQ(omega.status, kExitSuccess) << omega.err;
    EXPECT_EQ(platform::json::decode<merivante::OmegaReliabilityResult>(omega.out).casesUsed, 7);
    const CliResult oneItem = run({"stats", "omega", file, "--items", "q1"});
    EXPECT_NE(oneItem.status, kExitSuccess);
    EXPECT_NE(oneItem.err.find("McDonald omega needs at least two item columns."), std::string::npos);
}

TEST_F(MibrelCliDatasetTest, ClassifyScaleTakesQuestionTexts) {
    writeText(folder / "questions.json", R"({"id": "Your email address"})");
    const CliResult result =
        run({"dataset", "classify-scale", survey(), "--questions", (folder / "questions.json").string()});
    ASSERT_EQ(result.status, kExitSuccess) << result.err;
    const auto verdicts = platform::json::decode<std::vector<merivante::ScaleItemClassification>>(result.out);
    ASSERT_EQ(verdicts.size(), 4u);
    EXPECT_EQ(verdicts[0].reasons.front(), "Name contains 'email' (ID / metadata)");
    EXPECT_TRUE(verdicts[2].autoSelectAsScale);
}

TEST_F(MibrelCliDatasetTest, ArchiveAndPackageWriteTheirFiles) {
    const std::string archive = (folder / "study.mvk").string();
    const CliResult archived = run({"dataset", "archive", survey(), archive, "--reverse", "Q2,nobody", "--unreliable", "Q3"});
    ASSERT_EQ(archived.status, kExitSuccess) << archived.err;
    const auto decoded = merivante::ProjectArchive::decode(readText(archive));
    ASSERT_EQ(decoded.variableStates.size(), 4u);
    EXPECT_TRUE(decoded.variableStates[2].isReverseCoded);
    EXPECT_FALSE(decoded.variableStates[1].isReverseCoded);
    EXPECT_TRUE(decoded.variableStates[3].isUnreliableFlagged);

    const auto package = folder / "nested" / "Study.merivante";
    const CliResult packaged = run({"dataset", "package", package.string(), "--name", "Study", "--mode", "pointer"});
    ASSERT_EQ(packaged.status, kExitSuccess) << packaged.err;
    EXPECT_EQ(folderListing(package),
              "analyses audit_log.json construct_map.json dataset method_files project.json reports variable_map.json");
    EXPECT_EQ(platform::json::decode<merivante::MerivanteProjectManifest>(readText(package / "project.json")).datasetMode,
              merivante::DatasetStorageMode::pointer);
    EXPECT_EQ(run({"dataset", "package", package.string(), "--name", "S", "--mode", "link"}).status, kExitUsage);
}

} // namespace
} // namespace mibrel::cli
