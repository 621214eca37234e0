#include <gtest/gtest.h>

#include "MerivanteCore/Import/StatPackageImporter.h"
#include "MerivanteCore/Import/StataReader.h"
#include "tests/support/DtaBuilder.h"
#include "tests/support/TestSupport.h"

using merivante::StataImport;
using mibrel::testing::DtaBuilder;
namespace StataReader = merivante::StataReader;

namespace {

using Rows = std::vector<std::vector<std::string>>;

constexpr std::uint16_t kByte = 65530, kInt = 65529, kLong = 65528, kFloat = 65527, kDouble = 65526, kStrL = 32768;

// Every numeric type at and just past the edge of its missing codes.
DtaBuilder edges(int release, bool bigEndian) {
    DtaBuilder file(release, bigEndian);
    file.label("Wave 1").timestamp("21 Nov 2026 10:00")
        .variable("b", kByte, "Byte item", "agree")
        .variable("i", kInt)
        .variable("l", kLong)
        .variable("f", kFloat)
        .variable("d", kDouble, "Weight")
        .variable("s", 6)
        .valueLabelTable("agree", {{1, "Disagree"}, {100, "Agree"}});
    file.row({file.int8(100), file.int16(32740), file.int32(2147483620), file.float32(0.5f), file.float64(1.5),
              DtaBuilder::text("caf\xC3\xA9", 6)});
    file.row({file.int8(101), file.int16(32741), file.int32(2147483621), file.float32(1.7014118346e38f),
              file.float64(8.98846567431158e307), std::string(6, '\0')});
    file.row({file.int8(-127), file.int16(-5), file.int32(-7), file.float32(-2.25f), file.float64(1e20),
              DtaBuilder::text(" x ", 6)});
    return file;
}

StataImport readOrFail(const std::string& bytes) {
    auto result = StataReader::read(bytes);
    EXPECT_TRUE(result.has_value());
    return result.value_or(StataImport());
}

} // namespace

TEST(StataReaderTests, ReadsEveryReleaseInBothByteOrders) {
    for (const int release : {117, 118, 119}) {
        for (const bool bigEndian : {false, true}) {
            SCOPED_TRACE(std::to_string(release) + (bigEndian ? " MSF" : " LSF"));
            const StataImport result = readOrFail(edges(release, bigEndian).bytes());
            EXPECT_EQ(result.variableNames, (std::vector<std::string>{"b", "i", "l", "f", "d", "s"}));
            EXPECT_EQ(result.rows, (Rows{{"100", "32740", "2147483620", "0.5", "1.5", "caf\xC3\xA9"},
                                         {"", "", "", "", "", ""},
                                         {"-127", "-5", "-7", "-2.25", "1e+20", "x"}}));
            EXPECT_EQ(result.variableLabels,
                      (std::map<std::string, std::string>{{"b", "Byte item"}, {"d", "Weight"}}));
            EXPECT_EQ(result.valueLabels,
                      (std::map<std::string, std::map<std::string, std::string>>{
                          {"b", {{"1", "Disagree"}, {"100", "Agree"}}}}));
            EXPECT_EQ(result.notes, (std::vector<std::string>{
                                        "Dataset label: Wave 1", "Timestamp: 21 Nov 2026 10:00",
                                        "Stata release " + std::to_string(release) + ", " +
                                            (bigEndian ? "MSF" : "LSF") +
                                            " byte order, 6 variables, 3 observations."}));
        }
    }
}

TEST(StataReaderTests, LongStringsComeFromTheirSection) {
    for (const int release : {117, 118}) {
        SCOPED_TRACE(release);
        DtaBuilder file(release, false);
        file.variable("essay", kStrL).variable("id", kByte);
        file.strl(1, 1, std::string("A long answer\0junk", 18)).strl(1, 3, "raw\0bytes", true);
        file.row({file.strLKey(1, 1), file.int8(1)})
            .row({file.strLKey(0, 0), file.int8(2)})
            .row({file.strLKey(1, 2), file.int8(3)});
        EXPECT_EQ(readOrFail(file.bytes()).rows, (Rows{{"A long answer", "1"}, {"", "2"}, {"", "3"}}));

        DtaBuilder empty(release, false);
        empty.variable("essay", kStrL).row({empty.strLKey(1, 1)});
        EXPECT_EQ(readOrFail(empty.bytes()).rows, (Rows{{""}})) << "an empty strls section";
    }
}

TEST(StataReaderTests, RefusesWhatIsNotATaggedFile) {
    EXPECT_FALSE(StataReader::read(std::string("\x73\x02\x01\x00", 4))) << "release 115 has no tags";
    EXPECT_FALSE(StataReader::read(""));

    std::string bytes = edges(118, false).bytes();
    EXPECT_FALSE(StataReader::read(bytes.substr(0, bytes.size() - 40))) << "cut in the value labels";
    EXPECT_FALSE(StataReader::read(edges(118, false).observationCount(1000).bytes())) << "more rows than bytes";
    EXPECT_FALSE(StataReader::read(edges(118, false).omitSection("variable_labels").bytes()));

    // Without value label names, or without the table they name, there are no labels.
    EXPECT_TRUE(readOrFail(edges(118, false).omitSection("value_label_names").bytes()).valueLabels.empty());
    DtaBuilder unnamed(118, false);
    unnamed.variable("q", kByte, "", "scale").row({unnamed.int8(1)});
    EXPECT_TRUE(readOrFail(unnamed.bytes()).valueLabels.empty());
}

TEST(StataReaderTests, AnUnsupportedReleaseIsExplained) {
    const StataImport result = readOrFail("<stata_dta><header><release>120</release><byteorder>LSF</byteorder>");
    EXPECT_TRUE(result.variableNames.empty());
    EXPECT_EQ(result.notes, std::vector<std::string>{"Stata release 120 is not supported. Merivante reads .dta "
                                                     "versions 117 (Stata 13), 118 (Stata 14-15), and 119 (Stata "
                                                     "15-18)."});

    mibrel::testing::TemporaryDirectory folder;
    mibrel::testing::writeText(folder / "new.dta", "<stata_dta><header><release>120</release>");
    try {
        merivante::StatPackageImporter().importStata(folder / "new.dta");
        FAIL();
    } catch (const merivante::StatPackageImportError& error) {
        EXPECT_STREQ(error.what(), "The file has 0 variables but no data rows.");
    }
    mibrel::testing::writeText(folder / "old.dta", "\x72\x02");
    try {
        merivante::StatPackageImporter().importStata(folder / "old.dta");
        FAIL();
    } catch (const merivante::StatPackageImportError& error) {
        EXPECT_EQ(error.kind(), merivante::StatPackageImportError::Kind::unreadableStata);
    }
}

TEST(StataReaderTests, FormatsNumbersWithTenSignificantDigits) {
    EXPECT_EQ(StataReader::formatNumber(1.5), "1.5");
    EXPECT_EQ(StataReader::formatNumber(1e20), "1e+20");
    EXPECT_EQ(StataReader::formatNumber(3.0), "3");
    EXPECT_EQ(StataReader::formatNumber(1.0 / 3.0), "0.3333333333");
    EXPECT_EQ(StataReader::formatNumber(0.1f), "0.1000000015");
    EXPECT_EQ(StataReader::formatNumber(2.5e-7), "2.5e-07");
}

TEST(StataReaderTests, ImporterKeepsLabelsAndNumbersRowsFromTwo) {
    DtaBuilder file(118, false);
    file.variable("q", kByte, "First").variable("", kByte).row({file.int8(1), file.int8(2)});
    mibrel::testing::TemporaryDirectory folder;
    mibrel::testing::writeText(folder / "dup.dta", file.bytes());
    const auto dataset = merivante::StatPackageImporter().importStata(folder / "dup.dta");
    ASSERT_EQ(dataset.headers.size(), 2u);
    EXPECT_EQ(dataset.variables[0].label, "First");
    EXPECT_EQ(dataset.variables[1].label, std::nullopt);
    EXPECT_EQ(dataset.importMetadata.rowSummaries.front().sourceRowNumber, 2);
}
