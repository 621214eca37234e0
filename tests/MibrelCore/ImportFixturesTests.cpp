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
    // deletion and the field instructions leave nothing, the fields' results stay. Its XML
    // inflates to more than four times its deflated size, so the first buffer cuts it in the
    // table's second row, and only the paragraphs finished before the cut come through.
    EXPECT_EQ(transcript("libreoffice-repacked.docx"),
              "Interviewer:\tHow did you start?\n\nParticipant:\tWell, it began at school.\nThen it grew.\n\n"
              "Recorded 3/1/24, page 1 of 1\n\nQuestion\n\nAnswer");

    // As LibreOffice writes it, streamed: the first local header gives a size of 0, the walk
    // lands inside the data and the document part is never reached.
    try {
        transcript("libreoffice.docx");
        ADD_FAILURE() << "a streamed archive was read";
    } catch (const DocxArchive::ArchiveError& error) {
        EXPECT_EQ(error.kind(), DocxArchive::ArchiveError::Kind::missingEntry);
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

TEST(ImportFixturesTest, CSVFromLibreOfficeReadsWithLFButNotWithCRLF) {
    const Rows rows{{"P01", "34", "She said \"it's home\", then laughed.", "68"},
                    {"P02", "", "First line\nsecond line, with a comma", ""},
                    {"P03", "2.5", "Café in Ålesund", ""}};
    const auto plain = responses("libreoffice.csv");
    EXPECT_EQ(plain.headers, (Strings{"Participant", "Age", "Answer", "Twice"}));
    EXPECT_EQ(plain.rows, rows);

    // The byte order mark is text to the UTF-8 decoding, and no white space to the trim.
    const auto withMark = responses("libreoffice-bom.csv");
    EXPECT_EQ(withMark.headers, (Strings{"\xEF\xBB\xBFParticipant", "Age", "Answer", "Twice"}));
    EXPECT_EQ(withMark.rows, rows);

    const auto utf16 = responses("libreoffice-utf16.csv");
    EXPECT_EQ(utf16.headers, withMark.headers);
    EXPECT_EQ(utf16.rows, rows);

    // Outside quotes every CR LF is one character that ends no row: the file is one row.
    EXPECT_EQ(errorShownFor([] { responses("libreoffice-bom-crlf.csv"); }), "This file has no data rows.");
}

} // namespace
} // namespace mibrel
