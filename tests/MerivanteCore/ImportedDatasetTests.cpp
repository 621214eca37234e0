#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "MerivanteCore/Dataset/BlankDatasetFactory.h"
#include "MerivanteCore/Dataset/DatasetGridEditor.h"
#include "MerivanteCore/Dataset/ImportedDataset.h"
#include "MerivanteCore/Import/VariableClassifier.h"
#include "Platform/Json/JsonCoding.h"
#include "Platform/Json/JsonError.h"

namespace merivante {
namespace {

using Strings = std::vector<std::string>;
using Numbers = std::vector<std::optional<double>>;
using enum VariableKind;
constexpr std::nullopt_t none = std::nullopt;

constexpr VariableKind allKinds[] = {demographicBackground, status,   psychometricItem, testItem,       rubricItem,
                                     outcome,               grouping, textResponse,     administrative, exclude};

// A variable that passes every selection test except, possibly, its kind.
DataVariable candidate(VariableKind kind) {
    DataVariable variable;
    variable.assignedType = kind;
    variable.numericSummary = NumericSummary{1, 3, 2};
    variable.nonMissingCount = 10;
    variable.uniqueCount = 3;
    return variable;
}

std::string paddedRowMessage(int row) {
    return "Row " + std::to_string(row) + " has 1 fewer field(s) than the header; missing cells were padded as blank.";
}

TEST(DataVariableTest, AssigningAKindResetsBothInclusionChoices) {
    DataVariable variable = VariableClassifier::classify("Q1", {"1", "2", "3", "4", "5"});
    ASSERT_EQ(variable.inferredType, psychometricItem);
    variable.includeInDescriptives = false;

    variable.assignType(outcome);
    EXPECT_EQ(variable.assignedType, outcome);
    EXPECT_EQ(variable.inferredType, psychometricItem); // what was inferred stays on record
    EXPECT_TRUE(variable.includeInDescriptives);
    EXPECT_FALSE(variable.includeInReliability);

    variable.assignType(administrative);
    EXPECT_FALSE(variable.includeInDescriptives);
    variable.assignType(exclude);
    EXPECT_FALSE(variable.includeInDescriptives);
    EXPECT_FALSE(variable.includeInReliability);

    for (const VariableKind item : {psychometricItem, testItem, rubricItem}) {
        variable.includeInReliability = false;
        variable.assignType(item);
        EXPECT_TRUE(variable.includeInReliability);
        EXPECT_TRUE(variable.includeInDescriptives);
    }
}

TEST(DataVariableTest, SelectionCandidatesNeedTheRightKindAndEnoughAnswers) {
    for (const VariableKind kind : allKinds) {
        const bool dependent = kind == status || kind == psychometricItem || kind == testItem || kind == rubricItem ||
                               kind == outcome;
        const bool groups = kind == demographicBackground || kind == status || kind == psychometricItem ||
                            kind == testItem || kind == rubricItem || kind == grouping;
        EXPECT_EQ(candidate(kind).isOutcomeSelectionCandidate(), dependent) << displayName(kind);
        EXPECT_EQ(candidate(kind).isGroupingSelectionCandidate(10), groups) << displayName(kind);
    }

    DataVariable noNumbers = candidate(outcome);
    noNumbers.numericSummary = none;
    EXPECT_FALSE(noNumbers.isOutcomeSelectionCandidate());
    DataVariable noAnswers = candidate(status);
    noAnswers.nonMissingCount = 0;
    EXPECT_FALSE(noAnswers.isOutcomeSelectionCandidate());
    EXPECT_FALSE(noAnswers.isGroupingSelectionCandidate(10));

    // {rows, most levels}
    const std::vector<std::pair<std::int64_t, std::int64_t>> levels{
        {0, 12}, {10, 12}, {23, 12}, {24, 12}, {25, 12}, {26, 13}, {59, 29}, {60, 30}, {1000, 30}};
    for (const auto& [rows, most] : levels) {
        EXPECT_EQ(DataVariable::maximumGroupingLevelCount(rows), most) << rows;
        DataVariable variable = candidate(grouping);
        variable.uniqueCount = most;
        EXPECT_TRUE(variable.isGroupingSelectionCandidate(rows)) << rows;
        variable.uniqueCount = most + 1;
        EXPECT_FALSE(variable.isGroupingSelectionCandidate(rows)) << rows;
    }
    DataVariable oneLevel = candidate(grouping);
    oneLevel.uniqueCount = 1;
    EXPECT_FALSE(oneLevel.isGroupingSelectionCandidate(10));
    oneLevel.uniqueCount = 2;
    EXPECT_TRUE(oneLevel.isGroupingSelectionCandidate(10));
}

TEST(ImportedDatasetTest, ColumnsAreReadByTheFirstHeaderOfTheirName) {
    ImportedDataset dataset;
    dataset.headers = {"a", "b", "a"};
    dataset.rows = {{"4.5", "x", "9"}, {"n/a"}, {" 0x10 ", "N/A", "7"}, {"12abc", "1e3", "8"}, {"", " NA ", "6"}};

    EXPECT_EQ(dataset.values("a"), (Strings{"4.5", "n/a", " 0x10 ", "12abc", ""}));
    EXPECT_EQ(dataset.values("b"), (Strings{"x", "", "N/A", "1e3", " NA "})); // the short row gives ""
    EXPECT_TRUE(dataset.values("c").empty());
    EXPECT_TRUE(dataset.values("A").empty());

    EXPECT_EQ(dataset.numericValues("a"), (Numbers{4.5, none, 16, none, none}));
    EXPECT_EQ(dataset.numericValues("b"), (Numbers{none, none, none, 1000, none}));
    EXPECT_TRUE(dataset.numericValues("c").empty());
}

TEST(ImportedDatasetTest, JsonKeepsEveryFieldOfADataset) {
    ImportedDataset dataset = BlankDatasetFactory::make("Pilot", 6, 2, Strings{"Q1", "comment"});
    const Strings q1{"1", "2", "3", "4", "5", "4"};
    for (std::size_t row = 0; row < q1.size(); ++row) dataset.rows[row][0] = q1[row];
    dataset.rows[0][1] = "Too long, honestly";
    DatasetGridEditor::refreshMetadata(dataset);
    dataset.variables[0].label = "I trust my team";
    dataset.variables[0].assignedConstruct = "Trust";
    dataset.variables[1].assignType(exclude);
    dataset.importMetadata.sourceKind = ImportSourceKind::csv;
    ASSERT_EQ(dataset.variables[0].numericSummary, (NumericSummary{1, 5, 19.0 / 6.0}));

    const std::string json = platform::json::encode(dataset);
    for (const char* key : {"\"headers\"", "\"importMetadata\"", "\"name\"", "\"rows\"", "\"variables\""}) {
        EXPECT_NE(json.find(key), std::string::npos) << key;
    }
    EXPECT_EQ(platform::json::decode<ImportedDataset>(json), dataset);
}

TEST(ImportedDatasetTest, SavedJsonNeedsTheTableButNotItsFindings) {
    const std::string saved =
        R"({"headers": ["a", "b"], "name": "Saved", "rows": [["1", "x"], ["2"]], "variables": []})";
    const ImportedDataset dataset = platform::json::decode<ImportedDataset>(saved);
    EXPECT_EQ(dataset.name, "Saved");
    EXPECT_EQ(dataset.rows, (std::vector<Strings>{{"1", "x"}, {"2"}}));

    const ImportReadinessMetadata& metadata = dataset.importMetadata;
    EXPECT_EQ(metadata.sourceKind, ImportSourceKind::unknown);
    EXPECT_EQ(metadata.worksheetName, none);
    EXPECT_EQ(metadata.rowCount, 2);
    EXPECT_EQ(metadata.columnCount, 2);
    ASSERT_EQ(metadata.rowSummaries.size(), 2u);
    EXPECT_EQ(metadata.rowSummaries[0].sourceRowNumber, 2);
    EXPECT_EQ(metadata.rowSummaries[0].originalColumnCount, 2);
    EXPECT_EQ(metadata.rowSummaries[0].paddedFieldCount, 0);
    EXPECT_EQ(metadata.rowSummaries[1].sourceRowNumber, 3);
    EXPECT_EQ(metadata.rowSummaries[1].originalColumnCount, 1);
    EXPECT_EQ(metadata.rowSummaries[1].normalizedColumnCount, 2);
    EXPECT_EQ(metadata.rowSummaries[1].paddedFieldCount, 1);
    ASSERT_EQ(metadata.issues.size(), 1u); // no header issues, one short row
    EXPECT_EQ(metadata.issues[0].kind, ImportReadinessIssueKind::rowColumnMismatch);
    EXPECT_EQ(metadata.issues[0].message, paddedRowMessage(3));
    EXPECT_EQ(metadata.issues[0].sourceRowNumber, 3);

    // A null is as good as no key.
    const std::string savedWithNull =
        R"({"headers": ["a", "b"], "importMetadata": null, "name": "Saved", "rows": [["1", "x"], ["2"]],)"
        R"( "variables": []})";
    EXPECT_EQ(platform::json::decode<ImportedDataset>(savedWithNull), dataset);

    // Everything else is required.
    using platform::json::DecodingError;
    using platform::json::decode;
    EXPECT_THROW(decode<ImportedDataset>(R"({"headers": ["a"], "name": "N", "variables": []})"), DecodingError);
    EXPECT_THROW(decode<ImportedDataset>(R"({"name": "N", "rows": [], "variables": []})"), DecodingError);
    EXPECT_THROW(decode<ImportedDataset>(R"({"headers": ["a"], "name": "N", "rows": []})"), DecodingError);
    EXPECT_THROW(decode<ImportedDataset>(R"({"headers": ["a"], "rows": [], "variables": []})"), DecodingError);
    EXPECT_THROW(decode<ImportedDataset>(R"({"headers": ["a"], "name": "N", "rows": "a,b", "variables": []})"),
                 DecodingError);
    EXPECT_THROW(decode<ImportedDataset>(R"({"headers": ["a"], "name": "N", "rows": [],)"), DecodingError);
    EXPECT_THROW(decode<ImportedDataset>("[]"), DecodingError);
}

TEST(BlankDatasetTest, AGridOfEmptyCellsWithNumberedColumns) {
    const ImportedDataset dataset = BlankDatasetFactory::make("Survey", 3, 2);
    EXPECT_EQ(dataset.name, "Survey");
    EXPECT_EQ(dataset.headers, (Strings{"Var1", "Var2"}));
    EXPECT_EQ(dataset.rows, (std::vector<Strings>(3, Strings{"", ""})));
    ASSERT_EQ(dataset.variables.size(), 2u);
    for (const DataVariable& variable : dataset.variables) {
        EXPECT_EQ(variable.assignedType, grouping);
        EXPECT_TRUE(variable.warnings.empty());
        EXPECT_EQ(variable.missingCount, 3);
        EXPECT_EQ(variable.nonMissingCount, 0);
    }
    EXPECT_EQ(dataset.variables[1].name, "Var2");
    EXPECT_NE(dataset.variables[0].id, dataset.variables[1].id);

    const ImportReadinessMetadata& metadata = dataset.importMetadata;
    EXPECT_EQ(metadata.sourceKind, ImportSourceKind::blank);
    EXPECT_EQ(metadata.worksheetName, "New dataset");
    EXPECT_EQ(metadata.rowCount, 3);
    EXPECT_EQ(metadata.columnCount, 2);
    ASSERT_EQ(metadata.rowSummaries.size(), 3u);
    EXPECT_EQ(metadata.rowSummaries[0].sourceRowNumber, 2);
    EXPECT_EQ(metadata.rowSummaries[2].sourceRowNumber, 4);
    EXPECT_TRUE(metadata.issues.empty());
}

TEST(BlankDatasetTest, SizesAreClampedAndHeadersUsedOnlyWhenTheyFit) {
    const ImportedDataset tiny = BlankDatasetFactory::make("x", 0, -3);
    EXPECT_EQ(tiny.headers, (Strings{"Var1"}));
    EXPECT_EQ(tiny.rows, (std::vector<Strings>{{""}}));

    const ImportedDataset wide = BlankDatasetFactory::make("x", -5, 500);
    EXPECT_EQ(wide.columnCount(), 200);
    EXPECT_EQ(wide.rowCount(), 1);
    EXPECT_EQ(wide.headers.back(), "Var200");
    EXPECT_EQ(wide.variables.size(), 200u);

    const ImportedDataset tall = BlankDatasetFactory::make("x", 20'000, 1);
    EXPECT_EQ(tall.rowCount(), 10'000);
    EXPECT_EQ(tall.importMetadata.rowSummaries.back().sourceRowNumber, 10'001);

    // The given headers must match the clamped column count.
    EXPECT_EQ(BlankDatasetFactory::make("x", 1, 0, Strings{"only"}).headers, (Strings{"only"}));
    EXPECT_EQ(BlankDatasetFactory::make("x", 1, 3, Strings{"a", "b"}).headers, (Strings{"Var1", "Var2", "Var3"}));
    EXPECT_EQ(BlankDatasetFactory::make("x", 1, 1, Strings{}).headers, (Strings{"Var1"}));
    EXPECT_EQ(BlankDatasetFactory::make("x", 1, 300, Strings(300, "h")).headers.front(), "Var1");

    // Blank and repeated headers are repaired as an import would repair them.
    const ImportedDataset repaired = BlankDatasetFactory::make("x", 2, 3, Strings{"age", " ", "age"});
    EXPECT_EQ(repaired.headers, (Strings{"age", "Column 2", "age 2"}));
    EXPECT_EQ(repaired.variables[2].name, "age 2");
    EXPECT_EQ(repaired.variables[2].assignedType, demographicBackground);
    EXPECT_EQ(repaired.rows, (std::vector<Strings>(2, Strings{"", "", ""})));
}

TEST(DatasetGridEditorTest, EditedGridsAreClassifiedAndReportedAgain) {
    EXPECT_EQ(DatasetGridEditor::sanitizeHeaders({" ", "Score", "Score", "Score"}),
              (Strings{"Column 1", "Score", "Score 2", "Score 3"}));
    EXPECT_TRUE(DatasetGridEditor::sanitizeHeaders({}).empty());

    ImportedDataset dataset = BlankDatasetFactory::make("Grid", 6, 2, Strings{"Q1", "comment"});
    const Strings q1{"1", "2", "3", "4", "5", "4"};
    for (std::size_t row = 0; row < q1.size(); ++row) dataset.rows[row][0] = q1[row];
    dataset.rows[0][1] = "good";
    dataset.rows[1][1] = "bad";
    DatasetGridEditor::refreshMetadata(dataset);

    ASSERT_EQ(dataset.variables.size(), 2u);
    EXPECT_EQ(dataset.variables[0].assignedType, psychometricItem);
    EXPECT_EQ(dataset.variables[0].nonMissingCount, 6);
    EXPECT_EQ(dataset.variables[0].scaleRange, (ScaleRange{1, 5}));
    EXPECT_EQ(dataset.variables[1].assignedType, textResponse);
    EXPECT_EQ(dataset.variables[1].missingCount, 4);
    EXPECT_EQ(dataset.importMetadata.sourceKind, ImportSourceKind::blank);
    EXPECT_EQ(dataset.importMetadata.worksheetName, "New dataset");
    EXPECT_EQ(dataset.importMetadata.totalCellCount, 12);
    EXPECT_EQ(dataset.importMetadata.nonMissingCellCount, 8);
    EXPECT_EQ(dataset.importMetadata.missingCellCount, 4);
    EXPECT_TRUE(dataset.importMetadata.issues.empty());

    // A renamed column, a short new row and a different source all show after the next refresh.
    dataset.headers[1] = "status";
    dataset.rows.push_back({"3"});
    dataset.importMetadata.sourceKind = ImportSourceKind::xlsx;
    dataset.importMetadata.worksheetName = "Sheet2";
    DatasetGridEditor::refreshMetadata(dataset);

    EXPECT_EQ(dataset.variables[1].name, "status");
    EXPECT_EQ(dataset.variables[1].assignedType, grouping);
    EXPECT_EQ(dataset.variables[0].nonMissingCount, 7);
    EXPECT_EQ(dataset.variables[1].missingCount, 5); // the short row's absent cell is a gap
    EXPECT_EQ(dataset.importMetadata.sourceKind, ImportSourceKind::xlsx);
    EXPECT_EQ(dataset.importMetadata.worksheetName, "Sheet2");
    EXPECT_EQ(dataset.importMetadata.rowCount, 7);
    ASSERT_EQ(dataset.importMetadata.rowSummaries.size(), 7u);
    EXPECT_EQ(dataset.importMetadata.rowSummaries[6].sourceRowNumber, 8);
    ASSERT_EQ(dataset.importMetadata.issues.size(), 1u);
    EXPECT_EQ(dataset.importMetadata.issues[0].message, paddedRowMessage(8));
}

} // namespace
} // namespace merivante
