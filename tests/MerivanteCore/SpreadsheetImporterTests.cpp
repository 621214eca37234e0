#include <gtest/gtest.h>

#include "MerivanteCore/Import/SpreadsheetImporter.h"
#include "tests/support/DtaBuilder.h"
#include "tests/support/SavBuilder.h"
#include "tests/support/TestSupport.h"

using merivante::SpreadsheetImporter;
using mibrel::testing::TemporaryDirectory;
using mibrel::testing::writeText;

namespace {

std::string messageOf(const std::function<void()>& import) {
    try {
        import();
    } catch (const std::exception& error) {
        return error.what();
    }
    return "no error";
}

} // namespace

TEST(SpreadsheetImporterTests, TheExtensionChoosesTheImporterInAnyCase) {
    TemporaryDirectory folder;
    writeText(folder / "answers.CSV", "q1,q2\n1,2\n");
    EXPECT_EQ(SpreadsheetImporter().importData(folder / "answers.CSV").rows.size(), 1u);

    mibrel::testing::SavBuilder sav(true);
    writeText(folder / "wave.Sav", sav.numeric("Q1").endDictionary().row({std::optional<double>(4)}).bytes());
    EXPECT_EQ(SpreadsheetImporter().importData(folder / "wave.Sav").rows,
              (std::vector<std::vector<std::string>>{{"4"}}));

    mibrel::testing::DtaBuilder dta(118, false);
    dta.variable("q1", 65530).row({dta.int8(3)});
    writeText(folder / "wave.DTA", dta.bytes());
    EXPECT_EQ(SpreadsheetImporter().importData(folder / "wave.DTA").headers, std::vector<std::string>{"q1"});

    writeText(folder / "study.mvkb", R"({"app": "Merivante Kessil Bench", "data": {"source_path": "wave1.sav"}})");
    EXPECT_EQ(messageOf([&] { SpreadsheetImporter().importData(folder / "study.mvkb"); }),
              "This survey package references an external data file (wave1.sav). Import that file to continue.");
    writeText(folder / "field.mvkbfield", "not an archive");
    EXPECT_EQ(messageOf([&] { SpreadsheetImporter().importData(folder / "field.mvkbfield"); }),
              "This .mvkbfield file could not be read as a Merivante Kessil Bench field-study package.");
    writeText(folder / "broken.xlsx", "not a workbook");
    EXPECT_EQ(messageOf([&] { SpreadsheetImporter().importData(folder / "broken.xlsx"); })
                  .rfind("The Excel workbook could not be opened as an .xlsx file.", 0),
              0u);
}

TEST(SpreadsheetImporterTests, OtherExtensionsAreRefusedWithTheirOwnWords) {
    TemporaryDirectory folder;
    writeText(folder / "old.xls", "");
    EXPECT_EQ(messageOf([&] { SpreadsheetImporter().importData(folder / "old.xls"); }),
              "Merivante Studio imports .xlsx and .csv files. Save this older Excel .xls file as .xlsx, then import "
              "it again.");
    // Tab-separated text is read by the text importer itself, but not through this door.
    writeText(folder / "answers.tsv", "a\tb\n1\t2\n");
    EXPECT_EQ(messageOf([&] { SpreadsheetImporter().importData(folder / "answers.tsv"); }),
              "Merivante Studio imports .xlsx and .csv files, not .tsv files.");
}
