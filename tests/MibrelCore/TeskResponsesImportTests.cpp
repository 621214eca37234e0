#include "MibrelCore/Import/TeskResponsesImport.h"

#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <zip.h>

#include "tests/support/TestSupport.h"
#include "tests/support/ZipBuilder.h"

namespace mibrel {
namespace {

namespace fs = std::filesystem;
using namespace TeskResponsesImport;
using testing::TemporaryDirectory;
using Rows = std::vector<std::vector<std::string>>;

ImportError::Kind delimitedFailure(const std::string& text) {
    try {
        tableFromDelimited(text, ",");
    } catch (const ImportError& error) {
        return error.kind();
    }
    ADD_FAILURE() << "read: " << text;
    return ImportError::Kind::unreadable;
}

void writeWorkbook(const fs::path& path, const std::map<std::string, std::string>& entries) {
    int error = 0;
    zip_t* archive = zip_open(path.c_str(), ZIP_CREATE | ZIP_TRUNCATE, &error);
    ASSERT_NE(archive, nullptr);
    for (const auto& [name, data] : entries) {
        zip_source_t* source = zip_source_buffer(archive, data.data(), data.size(), 0);
        zip_file_add(archive, name.c_str(), source, ZIP_FL_ENC_UTF_8);
    }
    ASSERT_EQ(zip_close(archive), 0);
}

TEST(TeskResponsesImportTest, DelimitedTextFollowsTheQuoteAndLineRules) {
    EXPECT_EQ(tableFromDelimited("a,b\n1,2\n", ","), (Table{{"a", "b"}, Rows{{"1", "2"}}}));
    EXPECT_EQ(tableFromDelimited(" a ,b\n1,2", ",").rows, (Rows{{"1", "2"}})); // last line kept
    EXPECT_EQ(tableFromDelimited(" a ,b\n1,2", ",").headers, (std::vector<std::string>{"a", "b"}));
    EXPECT_EQ(tableFromDelimited("h\n\"say \"\"hi\"\"\",x\n", ",").rows, (Rows{{"say \"hi\"", "x"}}));
    EXPECT_EQ(tableFromDelimited("h\n\"line one\nline two\",x\n,,\n \t, \n", ",").rows,
              (Rows{{"line one\nline two", "x"}})); // blank rows go
    EXPECT_EQ(tableFromDelimited("h\n\"a\r\nb\"\n", ",").rows, (Rows{{"a\r\nb"}})); // inside quotes it belongs
    EXPECT_EQ(tableFromDelimited("q\tn\nlong answer\t7\textra\n", "\t").rows, (Rows{{"long answer", "7", "extra"}}));

    EXPECT_EQ(delimitedFailure("only,headers\n"), ImportError::Kind::empty);
    EXPECT_EQ(delimitedFailure("only,headers\r\n"), ImportError::Kind::empty);
    EXPECT_EQ(delimitedFailure(""), ImportError::Kind::empty);
    EXPECT_STREQ(ImportError(ImportError::Kind::empty).what(), "This file has no data rows.");
}

TEST(TeskResponsesImportTest, EveryPlatformsLineEndEndsARow) {
    const Table expected{{"a", "b"}, Rows{{"1", "2"}, {"3", "4"}}};
    EXPECT_EQ(tableFromDelimited("a,b\r\n1,2\r\n3,4\r\n", ","), expected);
    EXPECT_EQ(tableFromDelimited("a,b\r1,2\r3,4", ","), expected); // classic Mac
    EXPECT_EQ(tableFromDelimited("a,b\r\n1,2\n\r\n3,4", ","), expected);
    // Inside quotes a line break of any kind stays in the cell.
    EXPECT_EQ(tableFromDelimited("q\r\n\"one\r\ntwo\rthree\"\r\n", ",").rows, (Rows{{"one\r\ntwo\rthree"}}));
}

// Without its partner a quote would take the rest of the file into one cell; the researcher
// is told where it opened, and nothing is read.
TEST(TeskResponsesImportTest, AQuoteThatNeverClosesIsRefusedWithItsLine) {
    try {
        tableFromDelimited("id,answer\r\n1,\"fine\"\r\n2,\"It was \"\"hard\"\"\nvery\r\n3,ok\r\n", ",");
        ADD_FAILURE() << "read";
    } catch (const ImportError& error) {
        EXPECT_EQ(error.kind(), ImportError::Kind::unclosedQuote);
        EXPECT_STREQ(error.what(), "A quoted cell in this file never closes: the quote mark on line 3 has no "
                                   "partner. Fix that line, or export the table as .csv again.");
    }
    EXPECT_EQ(delimitedFailure("a,b\n5\" tall,x\n"), ImportError::Kind::unclosedQuote);
}

// A ".csv" is read with the separator its first line holds most of: commas unless semicolons
// or tabs outnumber them outside quotes. A byte order mark never reaches the first header.
TEST(TeskResponsesImportTest, ACSVFileIsSplitByTheSeparatorItsFirstLineUses) {
    TemporaryDirectory folder;
    const auto read = [&](const std::string& text) {
        testing::writeText(folder / "table.csv", text);
        return TeskResponsesImport::table(folder / "table.csv");
    };
    EXPECT_EQ(read("\xEF\xBB\xBFid;answer\r\n1;3,5 hours, then home\r\n"),
              (Table{{"id", "answer"}, Rows{{"1", "3,5 hours, then home"}}}));
    EXPECT_EQ(read("id\tanswer\n1\tyes, mostly\n").rows, (Rows{{"1", "yes, mostly"}}));
    EXPECT_EQ(read("id,answer\n1,a; b; c\n").rows, (Rows{{"1", "a; b; c"}}));
    EXPECT_EQ(read("\"a;b;c\",answer\n1,x\n").headers, (std::vector<std::string>{"a;b;c", "answer"}));
    EXPECT_EQ(read("a;b,c\n1;2,3\n").headers, (std::vector<std::string>{"a;b", "c"})); // a tie stays with commas
    // A ".tsv" is always split at tabs.
    testing::writeText(folder / "table.tsv", "a;b\tc\n1;2\t3\n");
    EXPECT_EQ(TeskResponsesImport::table(folder / "table.tsv").headers, (std::vector<std::string>{"a;b", "c"}));
}

TEST(TeskResponsesImportTest, ColumnsAreNamedAndTheLongestTextIsSuggested) {
    EXPECT_EQ(columnIndex("A1"), 0);
    EXPECT_EQ(columnIndex("Z9"), 25);
    EXPECT_EQ(columnIndex("AA3"), 26);
    EXPECT_EQ(columnIndex("ab12"), 27);
    EXPECT_EQ(columnIndex(""), 0);

    const Table table{{"id", "answer", "again"},
                      Rows{{"12", std::string(40, 'a'), std::string(40, 'b')}, {"13"}}};
    EXPECT_EQ(table.suggestedTextColumn(), 1); // the leftmost of equal averages
    EXPECT_FALSE((Table{{"a"}, {}}).suggestedTextColumn());
}

TEST(TeskResponsesImportTest, WorkbooksReadTheFirstSheetWithSharedStrings) {
    TemporaryDirectory folder;
    const std::string shared =
        R"(<sst><si><t>Participant</t></si><si><r><t>Why </t></r><r><t>stay?</t></r></si><si><t>T01</t></si></sst>)";
    const std::string sheet =
        R"(<worksheet><sheetData><row r="1"><c r="A1" t="s"><v>0</v></c><c r="C1" t="s"><v>1</v></c></row>)"
        R"(<row r="2"><c r="a2" t="s"><v>2</v></c><c r="B2"><v>3.5</v></c><c r="C2" t="inlineStr"><is><t>The kids.</t></is></c></row>)"
        R"(<row r="3"><c r="A3" t="s"><v>9</v></c></row></sheetData></worksheet>)";
    writeWorkbook(folder / "answers.XLSX", {{"xl/sharedStrings.xml", shared}, {"xl/worksheets/sheet1.xml", sheet}});
    const Table table = TeskResponsesImport::table(folder / "answers.XLSX");
    EXPECT_EQ(table.headers, (std::vector<std::string>{"Participant", "", "Why stay?"}));
    EXPECT_EQ(table.rows, (Rows{{"T01", "3.5", "The kids."}, {"9"}})); // an index past the table stays a number

    writeWorkbook(folder / "renamed.xlsx", {{"xl/worksheets/data.xml", sheet}});
    EXPECT_THROW(TeskResponsesImport::table(folder / "renamed.xlsx"), ImportError);
    testing::writeText(folder / "broken.xlsx", "not a zip");
    EXPECT_THROW(TeskResponsesImport::table(folder / "broken.xlsx"), ImportError);
    EXPECT_FALSE(unzipEntry(folder / "broken.xlsx", "xl/worksheets/sheet1.xml"));
    // A sheet that would unpack far beyond its workbook is not unpacked.
    const std::string filler = "<row><c t=\"inlineStr\"><is><t>" + std::string(1 << 20, 'a') + "</t></is></c></row>";
    testing::writeText(folder / "bomb.xlsx",
                       testing::zipArchive({{"xl/worksheets/sheet1.xml", "", 8, testing::rawDeflateRepeated(filler, 100),
                                             filler.size() * 100}}));
    EXPECT_FALSE(unzipEntry(folder / "bomb.xlsx", "xl/worksheets/sheet1.xml"));
    EXPECT_THROW(TeskResponsesImport::table(folder / "bomb.xlsx"), ImportError);
    testing::writeText(folder / "answers.ods", "x");
    EXPECT_THROW(TeskResponsesImport::table(folder / "answers.ods"), ImportError);
}

} // namespace
} // namespace mibrel
