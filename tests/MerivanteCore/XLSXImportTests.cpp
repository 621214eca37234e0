#include <algorithm>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

#include <zip.h>

#include <gtest/gtest.h>

#include "MerivanteCore/Import/WorksheetParser.h"
#include "MerivanteCore/Import/XLSXImportError.h"
#include "MerivanteCore/Import/XLSXImporter.h"
#include "Platform/Json/JsonFields.h"
#include "tests/support/TestSupport.h"
#include "tests/support/ZipBuilder.h"

namespace merivante {
namespace {

namespace fs = std::filesystem;
using Strings = std::vector<std::string>;

const fs::path fixtures = fs::path(MIBREL_DATASET_FIXTURES) / "xlsx";

// ---- Workbooks made in memory -------------------------------------------------------------

struct Part {
    std::string name;
    std::string text;
};

// A zip of the parts; `storedPart` is kept uncompressed so a test can damage its bytes.
std::string zipped(const std::vector<Part>& parts, const std::string& storedPart = {}) {
    zip_error_t error;
    zip_error_init(&error);
    zip_source_t* buffer = zip_source_buffer_create(nullptr, 0, 0, &error);
    zip_source_keep(buffer);
    zip_t* archive = zip_open_from_source(buffer, ZIP_TRUNCATE, &error);
    for (const auto& part : parts) {
        zip_source_t* source = zip_source_buffer(archive, part.text.data(), part.text.size(), 0);
        const auto index = zip_file_add(archive, part.name.c_str(), source, ZIP_FL_OVERWRITE);
        if (part.name == storedPart) zip_set_file_compression(archive, static_cast<zip_uint64_t>(index), ZIP_CM_STORE, 0);
    }
    zip_close(archive);
    zip_source_open(buffer);
    zip_source_seek(buffer, 0, SEEK_END);
    std::string bytes(static_cast<std::size_t>(zip_source_tell(buffer)), '\0');
    zip_source_seek(buffer, 0, SEEK_SET);
    zip_source_read(buffer, bytes.data(), bytes.size());
    zip_source_close(buffer);
    zip_source_free(buffer);
    zip_error_fini(&error);
    return bytes;
}

// One row of inline strings from column A on.
std::string row(int number, const Strings& texts) {
    std::string xml = "<row r=\"" + std::to_string(number) + "\">";
    for (std::size_t i = 0; i < texts.size(); ++i) {
        xml += "<c r=\"" + std::string(1, static_cast<char>('A' + i)) + std::to_string(number) +
               "\" t=\"inlineStr\"><is><t>" + texts[i] + "</t></is></c>";
    }
    return xml + "</row>";
}

std::string worksheet(const std::string& rows) {
    return "<worksheet xmlns=\"http://schemas.openxmlformats.org/spreadsheetml/2006/main\"><sheetData>" + rows +
           "</sheetData></worksheet>";
}

// A workbook whose sheet i is "xl/worksheets/sheet{i+1}.xml" through relationship "rId{i+1}".
std::vector<Part> workbookParts(const std::vector<std::pair<std::string, std::string>>& sheets) {
    std::string workbook = "<workbook xmlns:r=\"http://schemas.openxmlformats.org/officeDocument/2006/relationships\"><sheets>";
    std::string relationships = "<Relationships>";
    std::vector<Part> parts;
    for (std::size_t i = 0; i < sheets.size(); ++i) {
        const auto n = std::to_string(i + 1);
        workbook += "<sheet name=\"" + sheets[i].first + "\" sheetId=\"" + n + "\" r:id=\"rId" + n + "\"/>";
        relationships += "<Relationship Id=\"rId" + n + "\" Target=\"worksheets/sheet" + n + ".xml\"/>";
        parts.push_back({"xl/worksheets/sheet" + n + ".xml", worksheet(sheets[i].second)});
    }
    parts.push_back({"xl/workbook.xml", workbook + "</sheets></workbook>"});
    parts.push_back({"xl/_rels/workbook.xml.rels", relationships + "</Relationships>"});
    return parts;
}

ImportedDataset imported(const std::vector<Part>& parts) { return XLSXImporter().importXLSX("book.xlsx", zipped(parts)); }

XLSXImportError failure(const std::function<void()>& import) {
    try {
        import();
    } catch (const XLSXImportError& error) {
        return error;
    }
    ADD_FAILURE() << "imported";
    return XLSXImportError::noHeaderRow();
}

XLSXImportError failure(const std::string& bytes) {
    return failure([&] { XLSXImporter().importXLSX("book.xlsx", bytes); });
}

XLSXImportError failure(const std::vector<Part>& parts) { return failure(zipped(parts)); }

const std::string headersAndTwoRows = row(1, {"id", "answer"}) + row(2, {"1", "yes"}) + row(3, {"2", "no"});

// ---- Workbooks saved by real programs (make-xlsx-fixtures.sh) -------------------------------

struct ExpectedRow {
    std::int64_t sourceRowNumber = 0;
    Strings values;

    static constexpr auto jsonFields() {
        using namespace platform::json;
        return std::tuple{required("sourceRowNumber", &ExpectedRow::sourceRowNumber),
                          required("values", &ExpectedRow::values)};
    }
};

struct ExpectedDataset {
    Strings headers;
    std::vector<ExpectedRow> rows;
    std::string worksheetName;

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = ExpectedDataset;
        return std::tuple{required("headers", &T::headers), required("rows", &T::rows),
                          required("worksheetName", &T::worksheetName)};
    }
};

class XLSXFixtureTest : public ::testing::TestWithParam<std::string> {};

TEST_P(XLSXFixtureTest, ImportsWhatTheProgramWrote) {
    const auto expected = platform::json::decode<ExpectedDataset>(
        mibrel::testing::readText(fixtures / (GetParam() + ".expected.json")));
    const auto dataset = XLSXImporter().importXLSX(fixtures / (GetParam() + ".xlsx"));

    EXPECT_EQ(dataset.name, GetParam() + ".xlsx");
    EXPECT_EQ(dataset.headers, expected.headers);
    EXPECT_EQ(dataset.importMetadata.sourceKind, ImportSourceKind::xlsx);
    EXPECT_EQ(dataset.importMetadata.worksheetName, expected.worksheetName);
    ASSERT_EQ(dataset.rows.size(), expected.rows.size());
    ASSERT_EQ(dataset.importMetadata.rowSummaries.size(), expected.rows.size());
    for (std::size_t i = 0; i < expected.rows.size(); ++i) {
        EXPECT_EQ(dataset.rows[i], expected.rows[i].values) << "row " << i;
        EXPECT_EQ(dataset.importMetadata.rowSummaries[i].sourceRowNumber, expected.rows[i].sourceRowNumber);
    }
}

// survey: a codebook sheet before the data, a title in A1 above headers in row 3, booleans,
// nothing in C5, and a row of missing markers. wide: columns to AB, a lone answer in AA.
// clinic: the same layout in shared strings, with dates as day serials.
INSTANTIATE_TEST_SUITE_P(XLSXPrograms, XLSXFixtureTest,
                         ::testing::Values("openpyxl-survey", "openpyxl-wide", "openpyxl-codebook-only",
                                           "libreoffice-clinic", "libreoffice-from-csv"),
                         [](const auto& info) {
                             std::string name = info.param;
                             std::erase(name, '-');
                             return name;
                         });

TEST(XLSXImportTest, AnExtensionInCapitalsIsAccepted) {
    const mibrel::testing::TemporaryDirectory folder;
    fs::copy_file(fixtures / "libreoffice-from-csv.xlsx", folder / "SURVEY.XLSX");
    const auto dataset = XLSXImporter().importXLSX(folder / "SURVEY.XLSX");
    EXPECT_EQ(dataset.name, "SURVEY.XLSX");
    EXPECT_EQ(dataset.rowCount(), 3);
}

// ---- Cells and rows ----------------------------------------------------------------------

TEST(XLSXWorksheetTest, ColumnReferencesCountFromAAsZero) {
    EXPECT_EQ(WorksheetParser::columnIndex("A1"), 0);
    EXPECT_EQ(WorksheetParser::columnIndex("Z9"), 25);
    EXPECT_EQ(WorksheetParser::columnIndex("AA3"), 26);
    EXPECT_EQ(WorksheetParser::columnIndex("AB"), 27);
    EXPECT_EQ(WorksheetParser::columnIndex("XFD1048576"), 16383);
    EXPECT_EQ(WorksheetParser::columnIndex("XFE1"), std::nullopt);
    EXPECT_EQ(WorksheetParser::columnIndex(std::string(40, 'Z') + "1"), std::nullopt);
    EXPECT_EQ(WorksheetParser::columnIndex("a1"), std::nullopt);
    EXPECT_EQ(WorksheetParser::columnIndex("12"), std::nullopt);
    EXPECT_EQ(WorksheetParser::columnIndex(""), std::nullopt);
}

TEST(XLSXWorksheetTest, CellsResolveByTheirType) {
    const Strings shared{"zero", " one "};
    const auto rows = WorksheetParser::parse(
        worksheet("<row r=\"2\"><c r=\"A2\" t=\"s\"><v> 1 </v></c><c r=\"B2\" t=\"s\"><v>2</v></c>"
                  "<c r=\"C2\" t=\"s\"><v>-1</v></c><c r=\"D2\" t=\"b\"><v>1</v></c><c r=\"E2\" t=\"b\"><v>0</v></c>"
                  "<c r=\"F2\" t=\"b\"><v>yes</v></c><c r=\"G2\"><v>\n 2.5 </v></c>"
                  "<c r=\"H2\" t=\"inlineStr\"><is><r><t xml:space=\"preserve\"> rich </t></r><r><t>text</t></r>"
                  "<rPh><t>furigana</t></rPh></is></c><c r=\"I2\" t=\"str\"><f>A1</f><v>formula</v></c>"
                  "<c r=\"J2\" t=\"e\"><v>#N/A</v></c><c r=\"K2\" t=\"s\"/></row>"),
        shared);
    ASSERT_EQ(rows.size(), 1u);
    EXPECT_EQ(rows[0].sourceRowNumber, 2);
    EXPECT_EQ(rows[0].values,
              (Strings{" one ", "", "", "TRUE", "FALSE", "FALSE", "2.5", " rich text", "formula", "#N/A", ""}));
}

TEST(XLSXWorksheetTest, RowsKeepTheirNumbersAndGaps) {
    const auto rows = WorksheetParser::parse(
        worksheet(row(1, {"Title"}) + "<row r=\"3\"><c r=\"D3\"><v>4</v></c><c r=\"A3\"><v>1</v></c></row>" +
                  "<row r=\"4\"><c><v>no reference</v></c></row>" + "<row><c r=\"A5\"><v>no row number</v></c></row>" +
                  row(6, {"NA", "", "-"}) + "<row r=\"7\"/>" + "<row r=\"8\"><c r=\"B8\"><v>x</v></c></row>"),
        {});
    ASSERT_EQ(rows.size(), 3u);
    EXPECT_EQ(rows[0], (ImportSourceRow{1, {"Title"}}));
    EXPECT_EQ(rows[1], (ImportSourceRow{3, {"1", "", "", "4"}}));
    EXPECT_EQ(rows[2], (ImportSourceRow{8, {"", "x"}}));
}

TEST(XLSXWorksheetTest, TheHeaderRowIsTheFirstWithTwoAnswers) {
    const auto dataset = XLSXImporter::dataset(
        {{1, {"Survey title"}}, {2, {"Note", "NA", ""}}, {4, {"id", "answer", "note"}}, {5, {"1", "a", "b", "extra"}}, {7, {"2"}}},
        "book.xlsx", "Data");
    EXPECT_EQ(dataset.headers, (Strings{"id", "answer", "note"}));
    EXPECT_EQ(dataset.rows, (std::vector<Strings>{{"1", "a", "b"}, {"2", "", ""}}));
    EXPECT_EQ(dataset.importMetadata.rowSummaries[1].sourceRowNumber, 7);

    EXPECT_EQ(failure([] { XLSXImporter::dataset({}, "b.xlsx", "S"); }).kind(), XLSXImportError::Kind::noHeaderRow);
    EXPECT_EQ(failure([] { XLSXImporter::dataset({{1, {"Only"}}, {2, {"one", "n/a"}}}, "b.xlsx", "S"); }).what(),
              std::string("The Excel worksheet needs one header row before the respondent rows."));
}

// ---- Choosing the sheet ------------------------------------------------------------------

TEST(XLSXImportTest, CodebookSheetsAreTheLastResort) {
    const auto dataFirst = imported(workbookParts({{"Variable CODEBOOK", headersAndTwoRows},
                                                  {"Responses", row(1, {"q1", "q2"}) + row(2, {"3", "4"})}}));
    EXPECT_EQ(dataFirst.importMetadata.worksheetName, "Responses");

    // A data sheet without data rows lets the codebook be tried.
    const auto fallback = imported(workbookParts({{"Codebook", headersAndTwoRows}, {"Data", row(1, {"q1", "q2"})}}));
    EXPECT_EQ(fallback.importMetadata.worksheetName, "Codebook");
    EXPECT_EQ(fallback.headers, (Strings{"id", "answer"}));
}

TEST(XLSXImportTest, WhenNoSheetGivesADatasetTheLastFailureIsReported) {
    const auto onlyHeaders = failure(workbookParts({{"Data", row(2, {"id", "age", "answer"})}}));
    EXPECT_EQ(onlyHeaders.kind(), XLSXImportError::Kind::noDataRows);
    EXPECT_EQ(onlyHeaders.columnCount(), 3);
    EXPECT_STREQ(onlyHeaders.what(), "The Excel worksheet has 3 column headers but no data rows.");

    const auto both = failure(workbookParts({{"Data", row(1, {"id", "age"})}, {"Codebook", row(1, {"Notes"})}}));
    EXPECT_EQ(both.kind(), XLSXImportError::Kind::noHeaderRow);

    auto sheetMissing = workbookParts({{"Data", headersAndTwoRows}});
    std::erase_if(sheetMissing, [](const Part& part) { return part.name == "xl/worksheets/sheet1.xml"; });
    EXPECT_EQ(failure(sheetMissing).kind(), XLSXImportError::Kind::missingWorksheet);
    EXPECT_STREQ(failure(workbookParts({})).what(), "The Excel workbook does not contain a readable worksheet.");
}

TEST(XLSXImportTest, SheetsAreFoundThroughTheirRelationships) {
    const std::string rows = headersAndTwoRows;
    auto parts = [&](const std::string& sheetElement, const std::string& relationships, const std::string& partName) {
        return std::vector<Part>{
            {"xl/workbook.xml", "<workbook xmlns:rel=\"urn:r\"><sheets>" + sheetElement + "</sheets></workbook>"},
            {"xl/_rels/workbook.xml.rels", "<Relationships>" + relationships + "</Relationships>"},
            {partName, worksheet(rows)}};
    };
    const std::string relative = "<Relationship Id=\"s\" Target=\"./sheets/../data/answers.xml\"/>";
    EXPECT_EQ(imported(parts("<sheet name=\"A\" rel:id=\"s\"/>", relative, "xl/data/answers.xml")).rowCount(), 2);
    EXPECT_EQ(imported(parts("<sheet name=\"A\" id=\"s\"/>", relative, "xl/data/answers.xml")).rowCount(), 2);
    const std::string rooted = "<Relationship Id=\"s\" Target=\"/answers.xml\"/>";
    EXPECT_EQ(imported(parts("<sheet name=\"A\" id=\"s\"/>", rooted, "answers.xml")).rowCount(), 2);
    // Without a relationship the first worksheet's usual name is tried.
    EXPECT_EQ(imported(parts("<sheet name=\"A\"/>", "", "xl/worksheets/sheet1.xml")).rowCount(), 2);
    // A target climbing out of the package names no part.
    const std::string escaping = "<Relationship Id=\"s\" Target=\"../../answers.xml\"/>";
    EXPECT_EQ(failure(parts("<sheet name=\"A\" id=\"s\"/>", escaping, "answers.xml")).kind(),
              XLSXImportError::Kind::missingWorksheet);
}

TEST(XLSXImportTest, SharedStringsJoinTheirRunsAndABadIndexIsEmpty) {
    auto parts = workbookParts({{"Data", "<row r=\"1\"><c r=\"A1\" t=\"s\"><v>0</v></c><c r=\"B1\" t=\"s\"><v>1</v></c></row>"
                                         "<row r=\"2\"><c r=\"A2\" t=\"s\"><v>2</v></c><c r=\"B2\" t=\"s\"><v>9</v></c></row>"}});
    parts.push_back({"xl/sharedStrings.xml", "<sst><si><t>id</t></si><si><r><t>fav</t></r><r><t>ourite</t></r>"
                                             "<rPh><t>reading</t></rPh></si><si><t>7</t></si></sst>"});
    const auto dataset = imported(parts);
    EXPECT_EQ(dataset.headers, (Strings{"id", "favourite"}));
    EXPECT_EQ(dataset.rows, (std::vector<Strings>{{"7", ""}}));
}

// ---- Damaged workbooks -------------------------------------------------------------------

TEST(XLSXImportTest, AnArchiveThatCannotBeReadIsAnUnzipFailure) {
    const std::string prefix = "The Excel workbook could not be opened as an .xlsx file. ";
    const std::string good = mibrel::testing::readText(fixtures / "openpyxl-survey.xlsx");
    for (const std::string& bytes : {std::string(), std::string("PK\x03\x04 not really a zip"), good.substr(0, good.size() / 2)}) {
        const auto error = failure(bytes);
        EXPECT_EQ(error.kind(), XLSXImportError::Kind::unzipFailed);
        EXPECT_FALSE(error.detail().empty());
        EXPECT_EQ(error.errorDescription(), prefix + error.detail());
    }

    // A part whose stored bytes were changed fails its checksum while being read.
    const auto parts = workbookParts({{"Data", headersAndTwoRows}});
    std::string damaged = zipped(parts, "xl/worksheets/sheet1.xml");
    damaged[damaged.find("answer")] = 'X';
    const auto error = failure(damaged);
    EXPECT_EQ(error.kind(), XLSXImportError::Kind::unzipFailed);
    EXPECT_TRUE(error.errorDescription().starts_with(prefix)) << error.what();
}

// A small workbook whose sheet would unpack to more than any workbook holds is refused
// when it passes the bound, before memory runs out.
TEST(XLSXImportTest, AZipBombIsAnUnzipFailureThatSaysSo) {
    std::vector<mibrel::testing::ZipBuilderEntry> entries;
    for (const auto& part : workbookParts({{"Data", headersAndTwoRows}})) entries.push_back({part.name, part.text, 8});
    const std::string filler = "<row><c t=\"inlineStr\"><is><t>" + std::string(1 << 20, 'a') + "</t></is></c></row>";
    for (auto& entry : entries) {
        if (entry.name != "xl/worksheets/sheet1.xml") continue;
        entry.packed = mibrel::testing::rawDeflateRepeated(filler, 100);
        entry.declaredSize = filler.size() * 100;
    }
    const auto error = failure(mibrel::testing::zipArchive(entries));
    EXPECT_EQ(error.kind(), XLSXImportError::Kind::unzipFailed);
    EXPECT_EQ(error.detail(), "Its part xl/worksheets/sheet1.xml unpacks to far more than any workbook holds.");
}

TEST(XLSXImportTest, MissingOrMalformedPartsAreNamed) {
    auto parts = workbookParts({{"Data", headersAndTwoRows}, {"Later", headersAndTwoRows}});
    parts.push_back({"xl/sharedStrings.xml", "<sst/>"});
    auto withoutWorkbook = parts;
    std::erase_if(withoutWorkbook, [](const Part& part) { return part.name == "xl/workbook.xml"; });
    EXPECT_STREQ(failure(withoutWorkbook).what(), "The Excel workbook is missing its workbook definition.");

    const std::string broken = "<a><b></a>";
    const auto parseFailure = [&](const std::string& part) {
        auto damaged = parts;
        std::find_if(damaged.begin(), damaged.end(), [&](const Part& p) { return p.name == part; })->text = broken;
        const auto error = failure(damaged);
        EXPECT_EQ(error.kind(), XLSXImportError::Kind::xmlParseFailed);
        return error.errorDescription();
    };
    EXPECT_EQ(parseFailure("xl/workbook.xml"), "The Excel workbook could not be parsed. Workbook XML parse failed.");
    EXPECT_EQ(parseFailure("xl/_rels/workbook.xml.rels"),
              "The Excel workbook could not be parsed. Workbook relationship XML parse failed.");
    EXPECT_EQ(parseFailure("xl/sharedStrings.xml"), "The Excel workbook could not be parsed. Shared strings XML parse failed.");
    // A broken worksheet ends the import, although the next sheet is fine.
    EXPECT_EQ(parseFailure("xl/worksheets/sheet1.xml"), "The Excel workbook could not be parsed. Worksheet XML parse failed.");
}

} // namespace
} // namespace merivante
