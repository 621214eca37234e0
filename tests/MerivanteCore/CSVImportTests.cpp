#include <filesystem>
#include <fstream>
#include <functional>

#include <unistd.h>

#include <gtest/gtest.h>

#include "MerivanteCore/Dataset/ImportReadinessBuilder.h"
#include "MerivanteCore/Import/CSVImporter.h"
#include "MerivanteCore/Import/CSVParser.h"

namespace merivante {
namespace {

namespace fs = std::filesystem;
using Rows = std::vector<std::vector<std::string>>;
using Strings = std::vector<std::string>;

CSVParseResult parse(std::string_view text) { return CSVParser().parse(text); }

CSVParserError failure(std::string_view text) {
    try {
        parse(text);
    } catch (CSVParserError error) {
        return error;
    }
    ADD_FAILURE() << "parsed: " << text;
    return CSVParserError::emptyFile;
}

TEST(CSVParserTest, QuotesOpenOnlyAnEmptyField) {
    const auto result = parse("a,b,c\n\"x,1\",\"a\"\"b\",x\"y\n\"ab\"cd, \"q,r\"\n");
    EXPECT_EQ(result.headers, (Strings{"a", "b", "c"}));
    EXPECT_EQ(result.rows, (Rows{{"x,1", "a\"b", "x\"y"}, {"abcd", " \"q", "r\""}}));
    EXPECT_EQ(parse("h\n\"line\r\nbreak\"\n").rows, (Rows{{"line\nbreak"}}));
    EXPECT_EQ(parse("h1,h2\n\"\",\"end\"").rows, (Rows{{"", "end"}}));
    EXPECT_EQ(failure("a,b\n\"open,1\n"), CSVParserError::unterminatedQuote);
    EXPECT_EQ(failure("a,b\n1,\"2"), CSVParserError::unterminatedQuote);
    EXPECT_EQ(failure(""), CSVParserError::emptyFile);
    EXPECT_EQ(failure("\n \n\r\n"), CSVParserError::emptyFile);
}

TEST(CSVParserTest, TheDelimiterIsFoundAndACommaWinsATie) {
    EXPECT_EQ(CSVParser::detectDelimiter("a;b;c\n1;2,5;3\n"), ';');
    EXPECT_EQ(CSVParser::detectDelimiter("a;b,c\n"), ',');
    EXPECT_EQ(CSVParser::detectDelimiter("a\tb\tc\n\"x;y;z;w\"\t2\t3\n"), '\t');
    EXPECT_EQ(CSVParser::detectDelimiter("single"), ',');
    // Only the first eight non-blank lines count.
    std::string text = "a,b\n\n";
    for (int i = 0; i < 7; ++i) text += "1,2\n";
    for (int i = 0; i < 20; ++i) text += "1;2;3;4\n";
    EXPECT_EQ(CSVParser::detectDelimiter(text), ',');
    EXPECT_EQ(parse("x;y\n1;2\n").rows, (Rows{{"1", "2"}}));
}

TEST(CSVParserTest, RowsAreNumberedByKeptRecordsAndFittedToTheHeader) {
    const auto result = parse("\xEF\xBB\xBFid, Name \xEF\xBB\xBF,age\r\n1,Ann,30\r\n\r\n2,Bo\n3,Cy,40,extra,more\nNA,,n/a\n,,,\n4,Di,50");
    EXPECT_EQ(result.headers, (Strings{"id", "Name", "age"}));
    EXPECT_EQ(result.rows, (Rows{{"1", "Ann", "30"}, {"2", "Bo", ""}, {"3", "Cy", "40"}, {"4", "Di", "50"}}));
    ASSERT_EQ(result.rowReports.size(), 4u);
    EXPECT_EQ(result.rowReports[1], (ImportRowNormalizationReport{3, 2, 3, 0, 1}));
    EXPECT_EQ(result.rowReports[2], (ImportRowNormalizationReport{4, 5, 3, 2, 0}));
    EXPECT_EQ(result.rowReports[3].sourceRowNumber, 7); // the blank line does not count
    EXPECT_EQ(parse(",,\n1,2,3").headers, (Strings{"", "", ""}));
    EXPECT_EQ(parse("h\n x \n").rows, (Rows{{" x "}})); // data cells keep their blanks
    EXPECT_EQ(parse("é,ü\ncafé,naïve\n").rows, (Rows{{"café", "naïve"}}));
}

TEST(ImportReadinessTest, HeadersAreNamedAndNumberedWithAnIssueEach) {
    const auto named = ImportReadinessBuilder::normalizedHeaders({"a", "a", "a 2", " ", "Score", "Score", "Score"});
    EXPECT_EQ(named.headers, (Strings{"a", "a 2", "a 2", "Column 4", "Score", "Score 2", "Score 3"}));
    ASSERT_EQ(named.issues.size(), 4u);
    EXPECT_EQ(named.issues[0].message, "Duplicate header a at column 2 was renamed a 2.");
    EXPECT_EQ(named.issues[1].message, "Column 4 had a blank header and was named Column 4.");
    EXPECT_EQ(named.issues[1].kind, ImportReadinessIssueKind::emptyHeader);
    EXPECT_EQ(named.issues[1].columnIndex, 4);
    EXPECT_EQ(named.issues[3].header, "Score 3");
    EXPECT_TRUE(ImportReadinessBuilder::normalizedHeaders({}).headers.empty());
}

TEST(ImportReadinessTest, MetadataCountsWhatIsMissingAndReportsEveryRepair) {
    const auto parsed = parse("id,score,comment\n1,4,Good\n2,N/A ,\n3,5,fine,extra\n4,x");
    const auto metadata = ImportReadinessBuilder::metadata(ImportSourceKind::csv, std::nullopt, parsed.headers,
                                                           parsed.rows, parsed.rowReports, {});
    EXPECT_EQ(metadata.rowCount, 4);
    EXPECT_EQ(metadata.totalCellCount, 12);
    EXPECT_EQ(metadata.missingCellCount, 3);
    EXPECT_EQ(metadata.nonMissingCellCount, 9);
    EXPECT_EQ(metadata.observedMissingMarkers, (std::map<std::string, std::int64_t>{{"(blank)", 2}, {"n/a", 1}}));
    const ImportColumnSummary& score = metadata.columnSummaries[1];
    EXPECT_EQ(score.columnIndex, 2);
    EXPECT_EQ(score.numericCount, 2);
    EXPECT_EQ(score.textCount, 1);
    EXPECT_EQ(score.sampleValues, (Strings{"4", "5", "x"}));
    EXPECT_EQ(score.numericSummary, (NumericSummary{4, 5, 4.5}));
    EXPECT_EQ(metadata.rowSummaries[1].missingCount, 2);
    EXPECT_EQ(metadata.rowSummaries[1].nonMissingCount, 1);
    ASSERT_EQ(metadata.issues.size(), 2u);
    EXPECT_EQ(metadata.issues[0].message,
              "Row 4 has 1 more field(s) than the header; extra values were not imported.");
    EXPECT_EQ(metadata.issues[1].message,
              "Row 5 has 1 fewer field(s) than the header; missing cells were padded as blank.");
    EXPECT_EQ(metadata.issues[1].expectedColumnCount, 3);
    EXPECT_EQ(metadata.issues[1].actualColumnCount, 2);
    EXPECT_EQ(metadata.missingValueMarkers.size(), 17u);
}

TEST(CSVParserTest, AnAccentedDelimiterOrQuoteIsText) {
    // A comma or quote carrying a combining accent is one character, and not the delimiter.
    EXPECT_EQ(parse("a,b\nx,\u0301y,z\n").rows, (Rows{{"x,\u0301y", "z"}}));
    EXPECT_EQ(parse("a\n\"\u0301q\n").rows, (Rows{{"\"\u0301q"}}));
    EXPECT_EQ(CSVParser::detectDelimiter("a;b;c\nx,\u0301,\u0301,\u0301y;z\n"), ';');
}

// Large texts are read in two halves; the reading must not depend on where the middle falls.
TEST(CSVParserTest, LargeTextsReadTheSameAsSmallOnes) {
    const std::string row = "17,\"plain, quoted\",x\n";
    std::string body;
    while (body.size() < (3u << 20)) body += row;
    const std::size_t bodyRows = body.size() / row.size();
    const std::string header = "n,answer,tag\n";

    // The middle falls inside a quoted answer of many lines.
    const std::string lines(4000, '\n');
    const auto across = parse(header + body + "18,\"one" + lines + "two\",y\n" + body);
    ASSERT_EQ(across.rows.size(), 2 * bodyRows + 1);
    EXPECT_EQ(across.rows[bodyRows], (Strings{"18", "one" + lines + "two", "y"}));
    EXPECT_EQ(across.rows.back(), (Strings{"17", "plain, quoted", "x"}));

    // The middle falls among blank lines, which count for nothing.
    const auto between = parse(header + body + lines + body);
    ASSERT_EQ(between.rows.size(), 2 * bodyRows);
    EXPECT_EQ(between.rowReports.back().sourceRowNumber, static_cast<std::int64_t>(2 * bodyRows + 1));
    EXPECT_EQ(failure(header + body + lines + body + "19,\"open"), CSVParserError::unterminatedQuote);
}

fs::path writeFile(const std::string& name, std::string_view bytes) {
    const fs::path path = fs::temp_directory_path() / ("merivante-csv-test-" + std::to_string(::getpid())) / name;
    fs::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << bytes;
    return path;
}

CSVImportError importFailure(const std::function<void()>& import) {
    try {
        import();
    } catch (const CSVImportError& error) {
        return error;
    }
    ADD_FAILURE() << "imported";
    return CSVImportError::unreadableTextEncoding();
}

TEST(CSVImporterTest, ImportsAFileUnderItsNameWithEveryColumnClassified) {
    const auto dataset = CSVImporter().importCSV(writeFile("Wave 2.CSV", "id,Q1,Q1\n1,4,2\n2,5,\n"));
    EXPECT_EQ(dataset.name, "Wave 2.CSV");
    EXPECT_EQ(dataset.headers, (Strings{"id", "Q1", "Q1 2"}));
    ASSERT_EQ(dataset.variables.size(), 3u);
    EXPECT_EQ(dataset.variables[0].assignedType, VariableKind::administrative);
    EXPECT_EQ(dataset.variables[2].name, "Q1 2");
    EXPECT_EQ(dataset.importMetadata.sourceKind, ImportSourceKind::csv);
    EXPECT_EQ(dataset.importMetadata.worksheetName, std::nullopt);
    ASSERT_EQ(dataset.importMetadata.issues.size(), 1u);
    EXPECT_EQ(dataset.importMetadata.issues[0].kind, ImportReadinessIssueKind::duplicateHeader);
    EXPECT_EQ(CSVImporter().importCSV(writeFile("export", "a\n1\n")).rowCount(), 1);
}

TEST(CSVImporterTest, RefusesOtherFilesAndTablesWithoutData) {
    const auto wrongType = importFailure([] { CSVImporter().importCSV(writeFile("survey.XLSX", "a\n1\n")); });
    EXPECT_EQ(wrongType.kind(), CSVImportError::Kind::unsupportedFileType);
    EXPECT_STREQ(wrongType.what(), "Merivante Studio currently imports CSV or plain text files, not .xlsx files.");
    const auto headersOnly = importFailure([] { CSVImporter().importCSV("h.csv", "a,b,c\n"); });
    EXPECT_EQ(headersOnly.columnCount(), 3);
    EXPECT_STREQ(headersOnly.what(), "The file has 3 column headers but no data rows. Export the worksheet as a normal "
                                     "CSV with one header row followed by respondent rows.");
    EXPECT_EQ(importFailure([] { CSVImporter().importCSV("h.csv", "a,b\nNA,\n , n/a\n"); }).columnCount(), 2);
    EXPECT_THROW(CSVImporter().importCSV("empty.csv", ""), CSVParserError);
}

TEST(CSVImporterTest, TextIsDecodedInTheFixedOrderOfEncodings) {
    const std::string utf16le("\xFF\xFEh\0i\0\n\0\xE9\0,\0", 12);
    EXPECT_EQ(CSVImporter::decodeText(utf16le), "hi\n\u00E9,");
    EXPECT_EQ(CSVImporter::decodeText(std::string("\xFE\xFF\0h\0i", 6)), "hi");
    // Without a mark, little-endian comes first (plain ASCII in UTF-16 would already pass as UTF-8).
    EXPECT_EQ(CSVImporter::decodeText(std::string("\xE9\0,\0b\0\n\0", 8)), "\u00E9,b\n");
    // Odd-length Latin 1 is no UTF-16; the byte 0x80 is a control there, not the euro sign.
    EXPECT_EQ(CSVImporter::decodeText("caf\xE9\x80"), "caf\u00E9\u0080");
    EXPECT_EQ(CSVImporter::decodeText("\xEF\xBB\xBFid"), "\xEF\xBB\xBFid");
    // Even-length Latin 1 would read as UTF-16 too, but yields no line end there.
    const auto dataset = CSVImporter().importCSV(writeFile("latin.csv", "name\nJos\xE9\n"));
    EXPECT_EQ(dataset.rows, (Rows{{"Jos\u00E9"}}));
}

} // namespace
} // namespace merivante
