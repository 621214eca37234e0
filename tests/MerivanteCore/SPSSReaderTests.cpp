#include <gtest/gtest.h>

#include "MerivanteCore/Import/SPSSReader.h"
#include "MerivanteCore/Import/StatPackageImporter.h"
#include "tests/support/SavBuilder.h"
#include "tests/support/TestSupport.h"

using merivante::TabularImport;
using mibrel::testing::SavBuilder;
namespace SPSSReader = merivante::SPSSReader;

namespace {

using Cells = std::vector<SavBuilder::Cell>;
using Rows = std::vector<std::vector<std::string>>;

SavBuilder::Cell number(double value) { return std::optional<double>(value); }
const SavBuilder::Cell systemMissing = std::optional<double>();

// A small survey: an item with value labels, a weight with decimals, and a 20-byte answer.
SavBuilder survey(bool compressed) {
    SavBuilder file(compressed);
    file.numeric("Q1", "Overall satisfaction")
        .numeric("WEIGHT", std::nullopt, 5, 2)
        .string("ANSWER", 20, "Open answer")
        .valueLabels({{SavBuilder::float64(1), "Poor"}, {SavBuilder::float64(2.0), "Good"}}, {1})
        .endDictionary()
        .row(Cells{number(1), number(0.5), std::string("too slow to load")})
        .row(Cells{number(2), number(-3), std::string("fine")})
        .row(Cells{number(300), number(1234.25), std::string("a reply of twenty ch")});
    return file;
}

TabularImport readOrFail(const std::string& bytes) {
    auto result = SPSSReader::read(bytes);
    EXPECT_TRUE(result.has_value());
    return result.value_or(TabularImport());
}

} // namespace

TEST(SPSSReaderTests, ReadsCompressedAndPlainDataAlike) {
    for (const bool compressed : {true, false}) {
        SCOPED_TRACE(compressed ? "compressed" : "plain");
        const TabularImport result = readOrFail(survey(compressed).bytes());
        EXPECT_EQ(result.variableNames, (std::vector<std::string>{"Q1", "WEIGHT", "ANSWER"}));
        // Whole numbers drop the format's decimals; others keep them.
        EXPECT_EQ(result.rows, (Rows{{"1", "0.50", "too slow to load"},
                                     {"2", "-3", "fine"},
                                     {"300", "1234.25", "a reply of twenty ch"}}));
        EXPECT_EQ(result.variableLabels,
                  (std::map<std::string, std::string>{{"ANSWER", "Open answer"}, {"Q1", "Overall satisfaction"}}));
        EXPECT_EQ(result.valueLabels.at("Q1"), (std::map<std::string, std::string>{{"1", "Poor"}, {"2", "Good"}}));
        EXPECT_EQ(result.notes,
                  (std::vector<std::string>{"No encoding record; defaulted to windows-1252.",
                                            compressed ? "Decoded bytecode-compressed data (bias 100)."
                                                       : "Decoded uncompressed data.",
                                            "Parsed 3 variables, 3 cases."}));
    }
}

TEST(SPSSReaderTests, RefusesFilesThatAreNotWholeSystemFiles) {
    std::string wrongMagic = survey(true).bytes();
    wrongMagic[3] = '3';
    EXPECT_FALSE(SPSSReader::read(wrongMagic)) << "$FL3 is another format";

    SavBuilder noEnd(false);
    noEnd.numeric("Q1");
    EXPECT_FALSE(SPSSReader::read(noEnd.bytes())) << "no record type 999";

    SavBuilder strayIndex(false);
    strayIndex.numeric("Q1").raw(SavBuilder::int32(4) + SavBuilder::int32(1) + SavBuilder::int32(1)).endDictionary();
    EXPECT_FALSE(SPSSReader::read(strayIndex.bytes())) << "a type 4 record without its type 3";

    SavBuilder negativeLabel(false);
    negativeLabel.raw(SavBuilder::int32(2) + SavBuilder::int32(0) + SavBuilder::int32(1) + SavBuilder::int32(0) +
                      SavBuilder::int32(0) + SavBuilder::int32(0) + "Q1      " + SavBuilder::int32(-5));
    EXPECT_FALSE(SPSSReader::read(negativeLabel.endDictionary().bytes()));

    // A raw value announced by code 253 that the file does not hold.
    SavBuilder shortRaw(true);
    shortRaw.numeric("Q1").endDictionary().raw(std::string("\xFD\0\0\0\0\0\0\0", 8) + "abc");
    EXPECT_FALSE(SPSSReader::read(shortRaw.bytes()));

    EXPECT_FALSE(SPSSReader::read(""));
}

TEST(SPSSReaderTests, CompressedDataEndsAtCode252OrAtTheLastWholeCase) {
    // Code 255 is system-missing.
    SavBuilder ended(true);
    ended.numeric("A").numeric("B").endDictionary().row(Cells{number(1), systemMissing}).endOfData();
    std::string bytes = ended.bytes();
    bytes += std::string("\x65\x65", 2); // after the end: never read
    EXPECT_EQ(readOrFail(bytes).rows, (Rows{{"1", ""}}));

    // Code 101 with bias 100 is the number 1; the second case breaks off after one slot.
    SavBuilder cut(true);
    cut.numeric("A").numeric("B").endDictionary().raw(std::string("\x65\x66\x67\0\0\0\0\0", 8));
    EXPECT_EQ(readOrFail(cut.bytes()).rows, (Rows{{"1", "2"}}));

    // Plain data: the partial case at the end is dropped.
    SavBuilder plain(false);
    plain.numeric("A").numeric("B").endDictionary().row(Cells{number(3), number(4)}).raw(SavBuilder::float64(5));
    EXPECT_EQ(readOrFail(plain.bytes()).rows, (Rows{{"3", "4"}}));

    // The bias is any double the file holds.
    SavBuilder hugeBias(true, -1e19);
    EXPECT_EQ(readOrFail(hugeBias.numeric("A").endDictionary().bytes()).notes[1],
              "Decoded bytecode-compressed data (bias -10000000000000000000).");

    SavBuilder noCases(true);
    EXPECT_EQ(readOrFail(noCases.numeric("A").endDictionary().bytes()).rows, Rows{});
}

TEST(SPSSReaderTests, NamesAreMadeUniqueAndLongNamesApplied) {
    SavBuilder file(false);
    file.numeric("A").numeric("a").numeric("").numeric("SATISFAC")
        .extension(13, "SATISFAC=satisfaction_overall\tBAD\t=x\tA=")
        .endDictionary()
        .row(Cells{number(1), number(2), number(3), number(4)});
    const TabularImport result = readOrFail(file.bytes());
    EXPECT_EQ(result.variableNames, (std::vector<std::string>{"A", "a_2", "VAR3", "satisfaction_overall"}));
    EXPECT_EQ(result.notes.front(), "Applied long variable names (subtype 13).");
}

TEST(SPSSReaderTests, ReadsLabelsWithOddLengthsAndStringValueLabels) {
    SavBuilder file(false);
    file.numeric("Q1", "Fives").string("CITY", 8).string("NOTE", 3, "")
        .valueLabels({{"NYC     ", "New York"}, {"LA", "Los Angeles"}}, {2})
        .endDictionary()
        .row(Cells{number(1), std::string("NYC"), std::string("ok")});
    const TabularImport result = readOrFail(file.bytes());
    EXPECT_EQ(result.variableLabels, (std::map<std::string, std::string>{{"Q1", "Fives"}}));
    EXPECT_EQ(result.valueLabels.at("CITY"),
              (std::map<std::string, std::string>{{"LA", "Los Angeles"}, {"NYC", "New York"}}));
    EXPECT_EQ(result.rows, (Rows{{"1", "NYC", "ok"}}));
}

TEST(SPSSReaderTests, RendersDatesOnlyInsideTheirRange) {
    constexpr double dayOne = 13928630400.0; // 2024-03-01 in seconds since 1582-10-14
    SavBuilder file(true);
    file.numeric("WHEN", std::nullopt, 20).numeric("STAMP", std::nullopt, 22)
        .endDictionary()
        .row(Cells{number(dayOne), number(dayOne + 3600.5)})
        .row(Cells{number(0.5), number(-86400)})
        .row(Cells{number(1e15), number(86400.0 * 366)});
    EXPECT_EQ(readOrFail(file.bytes()).rows,
              (Rows{{"2024-03-01", "2024-03-01"}, {"0.5", "-86400"}, {"1e+15", "1583-10-15"}}));
    EXPECT_EQ(SPSSReader::formatSPSSDate(86400.0 * 78), std::nullopt) << "still 1582";
}

TEST(SPSSReaderTests, FollowsTheEncodingRecordForData) {
    auto readWith = [](const std::string& encoding, const std::string& text) {
        SavBuilder file(false);
        file.string("T", 8).extension(20, encoding).endDictionary().row(Cells{text});
        return readOrFail(file.bytes());
    };
    const TabularImport utf8 = readWith("UTF-8", "caf\xC3\xA9");
    EXPECT_EQ(utf8.rows.front().front(), "caf\xC3\xA9");
    EXPECT_EQ(utf8.notes.front(), "Encoding: UTF-8.");
    EXPECT_EQ(readWith("windows-1252", "caf\xE9").rows.front().front(), "caf\xC3\xA9");
    // Windows-1252 leaves 0x81 undefined: the chain goes on to Latin 1.
    EXPECT_EQ(readWith("cp1252", "\x81").rows.front().front(), "\xC2\x81");
    const TabularImport unknown = readWith("EBCDIC-X", "plain");
    EXPECT_EQ(unknown.notes.front(), "Unknown encoding 'EBCDIC-X'; fell back to windows-1252.");
}

TEST(SPSSReaderTests, NotesTheByteOrderAndVeryLongStrings) {
    std::string integerInfo(32, '\0');
    integerInfo[24] = 1; // big-endian
    std::string bigEndianOne = SavBuilder::float64(1.5);
    std::reverse(bigEndianOne.begin(), bigEndianOne.end());
    SavBuilder file(false);
    file.numeric("X", std::nullopt, 5, 1)
        .extension(3, integerInfo)
        .extension(14, std::string("LONGTEXT=00300\0\t", 16))
        .endDictionary()
        .raw(bigEndianOne);
    const TabularImport result = readOrFail(file.bytes());
    EXPECT_EQ(result.rows, (Rows{{"1.5"}}));
    EXPECT_EQ(result.notes[0], "Big-endian system file detected.");
    EXPECT_EQ(result.notes[1], "Detected very-long-string variables (subtype 14).");
}

TEST(SPSSReaderTests, TrimsNumbersAsTheFormatAsks) {
    EXPECT_EQ(SPSSReader::trimNumber(3.0, 2), "3");
    EXPECT_EQ(SPSSReader::trimNumber(3.5, 2), "3.50");
    EXPECT_EQ(SPSSReader::trimNumber(0.1, 0), "0.1");
    EXPECT_EQ(SPSSReader::trimNumber(-2.25, 12), "-2.25");
    EXPECT_EQ(SPSSReader::trimNumber(1e20, 0), "1e+20");
}

TEST(SPSSReaderTests, ImporterBuildsTheDatasetOrSaysWhy) {
    mibrel::testing::TemporaryDirectory folder;
    const auto file = folder / "wave1.sav";
    mibrel::testing::writeText(file, survey(true).bytes());
    const auto dataset = merivante::StatPackageImporter().importSPSS(file);
    EXPECT_EQ(dataset.name, "wave1.sav");
    EXPECT_EQ(dataset.headers, (std::vector<std::string>{"Q1", "WEIGHT", "ANSWER"}));
    EXPECT_EQ(dataset.variables[0].label, "Overall satisfaction");
    EXPECT_EQ(dataset.importMetadata.sourceKind, merivante::ImportSourceKind::unknown);

    mibrel::testing::writeText(file, "$FL3");
    try {
        merivante::StatPackageImporter().importSPSS(file);
        FAIL();
    } catch (const merivante::StatPackageImportError& error) {
        EXPECT_STREQ(error.what(), "This .sav file could not be read. Re-export it from SPSS as a standard system "
                                   "file, then import it again.");
    }
    SavBuilder empty(true);
    mibrel::testing::writeText(file, empty.numeric("A").numeric("B").endDictionary().bytes());
    try {
        merivante::StatPackageImporter().importSPSS(file);
        FAIL();
    } catch (const merivante::StatPackageImportError& error) {
        EXPECT_STREQ(error.what(), "The file has 2 variables but no data rows.");
    }
}
