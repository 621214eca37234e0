// Readers on files made by real programs (see tests/fixtures/import/make-fixtures.sh).
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "MibrelCore/Import/DocxArchive.h"
#include "MibrelCore/Import/TeskResponsesImport.h"
#include "MibrelCore/Import/TeskTranscriptImport.h"
#include "MibrelCore/Sources/TeskTranscript.h"
#include "tests/support/TestSupport.h"

namespace mibrel {
namespace {

namespace fs = std::filesystem;
using Rows = std::vector<std::vector<std::string>>;
using Strings = std::vector<std::string>;

const fs::path fixtures = MIBREL_IMPORT_FIXTURES;

const std::string couldNotReadText = "Could not read text from this file. Try exporting it as .txt and import again.";
const std::string couldNotReadTable = "Could not read this file. Export it as .csv and try again.";

std::string transcript(const std::string& name) {
    return TeskTranscriptImport::text(fixtures / name);
}

TeskResponsesImport::Table responses(const std::string& name) {
    return TeskResponsesImport::table(fixtures / name);
}

// The words the user would see, or a note that there was nothing to see.
template <class Read>
std::string errorShownFor(Read read) {
    try {
        read();
    } catch (const std::exception& error) {
        return error.what();
    }
    return "(no error)";
}

Strings segmentTexts(const std::string& text) {
    Strings texts;
    for (const auto& segment : TeskTranscript::fromPlainText(text).segments) texts.push_back(segment.text);
    return texts;
}

TEST(ImportFixturesTest, WordDocumentsGiveTheirParagraphsWithoutDeletedTextOrFieldCodes) {
    // Two breaks in a row end up as a paragraph break; one stays a line break.
    const std::string fromPythonDocx = transcript("python-docx.docx");
    EXPECT_EQ(fromPythonDocx, "Interviewer: What brought you to the town?\n\nParticipant:\tWork, at first.\n\n"
                              "We stayed for the school.\nThen for the friends.\n\nBefore\n\nAfter\n\n"
                              "Question\n\nAnswer\n\nYears here\n\n12\n\nEnd of interview.");
    EXPECT_EQ(segmentTexts(fromPythonDocx),
              (Strings{"Interviewer: What brought you to the town?", "Participant:\tWork, at first.",
                       "We stayed for the school.\nThen for the friends.", "Before", "After", "Question", "Answer",
                       "Years here", "12", "End of interview."}));
    EXPECT_EQ(transcript("python-docx-stored.docx"), fromPythonDocx);

    // The tab stops of LibreOffice's paragraph properties fall to the trim; the tracked
    // deletion and the field instructions leave nothing, the fields' results stay. As
    // LibreOffice writes it, streamed, the sizes come from the central directory.
    const std::string fromLibreOffice = transcript("libreoffice.docx");
    EXPECT_EQ(fromLibreOffice,
              "Interviewer:\tHow did you start?\n\nParticipant:\tWell, it began at school.\nThen it grew.\n\n"
              "Recorded 3/1/24, page 1 of 1\n\nQuestion\n\nAnswer\n\nAge\n\n34\n\nEnd of interview.");
    EXPECT_EQ(transcript("libreoffice-repacked.docx"), fromLibreOffice);
}

// Each paragraph of a long document comes through, in order, however far its XML inflates.
void expectNumberedParagraphs(const std::string& text, std::size_t count, const std::string& label) {
    const Strings segments = segmentTexts(text);
    ASSERT_EQ(segments.size(), count) << label;
    for (std::size_t n = 1; n <= count; ++n) {
        const std::string number = "(" + std::to_string(n) + ")";
        const std::string turn = "Turn " + std::to_string(n) + ":";
        if (!segments[n - 1].starts_with(turn) && segments[n - 1].find(number) == std::string::npos) {
            ADD_FAILURE() << label << ": paragraph " << n << " reads " << segments[n - 1];
            return;
        }
    }
}

TEST(ImportFixturesTest, LongWordDocumentsComeInWhole) {
    // python-docx: 420 speaker turns whose XML inflates to almost six times its packed size.
    const std::string interview = transcript("python-docx-long.docx");
    expectNumberedParagraphs(interview, 420, "python-docx");
    EXPECT_TRUE(segmentTexts(interview).back().starts_with("Participant (420): ")) << interview.substr(interview.size() - 80);
    // LibreOffice, streamed: 6000 paragraphs in 1.2 MB of XML behind 20 KB of DEFLATE.
    const std::string numbered = transcript("libreoffice-long.docx");
    expectNumberedParagraphs(numbered, 6000, "LibreOffice");
    EXPECT_EQ(segmentTexts(numbered).back(), "Turn 6000: We stayed because the school felt like a family.");
}

// A Word file cut short anywhere gives its whole text or a sentence, never a part of it.
TEST(ImportFixturesTest, ATruncatedWordFileIsWholeOrRefused) {
    for (const std::string name : {"python-docx-long.docx", "libreoffice.docx"}) {
        const std::string bytes = testing::readText(fixtures / name);
        const std::string whole = transcript(name);
        testing::TemporaryDirectory folder;
        for (std::size_t length = 0; length < bytes.size(); length += 613) {
            testing::writeText(folder / "cut.docx", bytes.substr(0, length));
            try {
                EXPECT_TRUE(TeskTranscriptImport::text(folder / "cut.docx") == whole) << name << " cut at " << length;
            } catch (const DocxArchive::ArchiveError& error) {
                EXPECT_TRUE(std::string(error.what()).starts_with("This Word file is damaged")) << error.what();
            } catch (const TeskTranscriptImport::ImportError& error) {
                ADD_FAILURE() << name << " cut at " << length << ": " << error.what();
            }
        }
    }
}

TEST(ImportFixturesTest, PDFPagesBecomeParagraphsUnlessLockedOrScanned) {
    const std::string twoPages = transcript("two-pages.pdf");
    EXPECT_EQ(twoPages, "Interviewer: How did you start?\nParticipant: It began at school.\n\nInterviewer: And then?");
    EXPECT_EQ(segmentTexts(twoPages).size(), 2u);
    // An owner password restricts editing but asks nothing of a reader.
    EXPECT_EQ(transcript("owner-password.pdf"), twoPages);

    EXPECT_EQ(errorShownFor([] { transcript("locked.pdf"); }), couldNotReadText);
    EXPECT_EQ(errorShownFor([] { transcript("image-only.pdf"); }), couldNotReadText);
}

TEST(ImportFixturesTest, ALatin1TextFileIsReadAfterUTF8Fails) {
    EXPECT_EQ(transcript("latin1.txt"), "Notes from the interview in Ålesund.\n\nWe met at the café by the harbour. "
                                        "She said it was naïve to think the town would stay the same.\n");
}

TEST(ImportFixturesTest, WorkbooksGiveTheFirstSheetsCellsAsTheyAreStored) {
    // openpyxl writes strings inline; numbers, booleans and dates stay raw, gaps are filled,
    // a short row stays short, and the second sheet is not read.
    const auto fromOpenpyxl = responses("openpyxl.xlsx");
    EXPECT_EQ(fromOpenpyxl.headers, (Strings{"Participant", "Age", "Consented", "Interviewed", "Answer"}));
    EXPECT_EQ(fromOpenpyxl.rows, (Rows{{"P01", "34", "1", "45352", "Work, at first."},
                                       {"P02", "", "0", "", "The school & the friends"},
                                       {"P03", "2.5"}}));
    EXPECT_EQ(fromOpenpyxl.suggestedTextColumn(), 4);

    // LibreOffice shares its strings and keeps a formula's last result.
    const auto fromLibreOffice = responses("libreoffice.xlsx");
    EXPECT_EQ(fromLibreOffice.headers, (Strings{"Participant", "Age", "Answer", "Twice"}));
    EXPECT_EQ(fromLibreOffice.rows, (Rows{{"P01", "34", "She said \"it's home\", then laughed.", "68"},
                                          {"P02", "", "First line\nsecond line, with a comma"},
                                          {"P03", "2.5", "Café in Ålesund"}}));
    EXPECT_EQ(fromLibreOffice.suggestedTextColumn(), 2);

    EXPECT_EQ(errorShownFor([] { responses("first-sheet-not-sheet1.xlsx"); }), couldNotReadTable);
}

TEST(ImportFixturesTest, CSVFromLibreOfficeReadsWithAnyLineEndAndMark) {
    const Rows rows{{"P01", "34", "She said \"it's home\", then laughed.", "68"},
                    {"P02", "", "First line\nsecond line, with a comma", ""},
                    {"P03", "2.5", "Café in Ålesund", ""}};
    const Strings headers{"Participant", "Age", "Answer", "Twice"};
    // LF, a UTF-8 byte order mark, CR LF behind it, and UTF-16 with its mark all read alike.
    for (const std::string name :
         {"libreoffice.csv", "libreoffice-bom.csv", "libreoffice-bom-crlf.csv", "libreoffice-utf16.csv"}) {
        const auto table = responses(name);
        EXPECT_EQ(table.headers, headers) << name;
        EXPECT_EQ(table.rows, rows) << name;
    }

    // Calc in a German locale separates with semicolons and writes decimal commas.
    const auto german = responses("libreoffice-semicolon-de.csv");
    EXPECT_EQ(german.headers, headers);
    EXPECT_EQ(german.rows, (Rows{{"P01", "34", "She said \"it's home\", then laughed.", "68"},
                                 {"P02", "", "First line\nsecond line, with a comma", ""},
                                 {"P03", "2,5", "Café in Ålesund", ""}}));
    EXPECT_EQ(german.suggestedTextColumn(), 2);
}

// pandas with CR LF, and the two text forms Excel saves: "CSV UTF-8" (a byte order mark) and
// plain "CSV" (windows-1252). The accents, curly quotes and dashes come through in all three.
TEST(ImportFixturesTest, CSVFromWindowsProgramsKeepsItsRowsAndAccents) {
    const Strings headers{"Participant", "Age", "Answer", "Site"};
    const Rows rows{{"P01", "34.0", "She said \"it’s home\" – then laughed.", "Nord"},
                    {"P02", "", "First line\nsecond line, with a comma", "Süd"},
                    {"P03", "2.5", "Café in Ålesund, naïve but größer", "Mitte"}};
    for (const std::string name : {"pandas-crlf.csv", "excel-csv-utf8.csv", "excel-csv-windows1252.csv"}) {
        const auto table = responses(name);
        EXPECT_EQ(table.headers, headers) << name;
        EXPECT_EQ(table.rows, rows) << name;
    }
    // A Windows line break inside a quoted cell stays in the cell, as one line break.
    const auto inCell = responses("pandas-crlf-in-cell.csv");
    EXPECT_EQ(inCell.rows.size(), 3u);
    EXPECT_EQ(inCell.rows[1][2], "First line\r\nsecond line, with a comma");
    EXPECT_EQ(segmentTexts(inCell.rows[1][2]), (Strings{"First line\nsecond line, with a comma"}));
}

} // namespace
} // namespace mibrel
