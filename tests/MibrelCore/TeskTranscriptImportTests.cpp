#include "MibrelCore/Import/TeskTranscriptImport.h"

#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "MibrelCore/Import/DocxArchive.h"
#include "tests/support/TestSupport.h"
#include "tests/support/ZipBuilder.h"

namespace mibrel {
namespace {

namespace fs = std::filesystem;
using testing::rawDeflate;
using testing::rawDeflateRepeated;
using testing::TemporaryDirectory;
using testing::writeText;
using testing::zipArchive;
using testing::ZipBuilderEntry;
using testing::ZipLayout;
using Kind = TeskTranscriptImport::ImportError::Kind;
using ArchiveKind = DocxArchive::ArchiveError::Kind;

// Word files as python-docx and Word lay them out: sizes in the local headers.
std::string zipOf(const std::vector<ZipBuilderEntry>& entries, ZipLayout layout = ZipLayout::sizesInHeaders) {
    return zipArchive(entries, layout);
}

std::string wordXML(const std::string& body) {
    return R"(<?xml version="1.0"?><w:document xmlns:w="urn:w"><w:body>)" + body + "</w:body></w:document>";
}

// A minimal PDF whose pages each show one line of text (an empty line draws nothing).
std::string pdfWithPages(const std::vector<std::string>& lines) {
    std::vector<std::string> objects;
    std::string kids;
    const std::size_t fontObject = 3 + 2 * lines.size();
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const std::size_t page = 3 + 2 * i;
        kids += std::to_string(page) + " 0 R ";
        const std::string content = lines[i].empty() ? "" : "BT /F1 12 Tf 72 720 Td (" + lines[i] + ") Tj ET";
        objects.push_back("<< /Type /Page /Parent 2 0 R /MediaBox [0 0 612 792] /Contents " + std::to_string(page + 1) +
                          " 0 R /Resources << /Font << /F1 " + std::to_string(fontObject) + " 0 R >> >> >>");
        objects.push_back("<< /Length " + std::to_string(content.size()) + " >>\nstream\n" + content + "\nendstream");
    }
    objects.insert(objects.begin(), "<< /Type /Pages /Kids [" + kids + "] /Count " + std::to_string(lines.size()) + " >>");
    objects.insert(objects.begin(), "<< /Type /Catalog /Pages 2 0 R >>");
    objects.push_back("<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica >>");
    std::string pdf = "%PDF-1.4\n";
    std::vector<std::size_t> offsets;
    for (std::size_t i = 0; i < objects.size(); ++i) {
        offsets.push_back(pdf.size());
        pdf += std::to_string(i + 1) + " 0 obj\n" + objects[i] + "\nendobj\n";
    }
    const std::size_t xref = pdf.size();
    pdf += "xref\n0 " + std::to_string(objects.size() + 1) + "\n0000000000 65535 f \n";
    for (std::size_t offset : offsets) {
        std::string number = std::to_string(offset);
        pdf += std::string(10 - number.size(), '0') + number + " 00000 n \n";
    }
    return pdf + "trailer\n<< /Size " + std::to_string(objects.size() + 1) + " /Root 1 0 R >>\nstartxref\n" +
           std::to_string(xref) + "\n%%EOF\n";
}

class TranscriptImportTest : public ::testing::Test {
protected:
    std::string importText(const std::string& name, const std::string& bytes) {
        writeText(folder / name, bytes);
        return TeskTranscriptImport::text(folder / name);
    }

    template <class Error, class ErrorKind>
    ErrorKind failure(const std::string& name, const std::string& bytes) {
        try {
            importText(name, bytes);
        } catch (const Error& error) {
            return error.kind();
        }
        ADD_FAILURE() << name << " was read";
        return {};
    }

    TemporaryDirectory folder;
};

TEST_F(TranscriptImportTest, PlainTextIsReadByItsEndingAndDecodedWithDetectionAfterUTF8) {
    EXPECT_EQ(importText("notes.TXT", "Hello"), "Hello");
    EXPECT_EQ(importText("notes.Md", "# Heading"), "# Heading");
    EXPECT_EQ(importText("notes", "  kept as it is \n"), "  kept as it is \n");
    EXPECT_EQ(importText("letter.rtf", "{\\rtf1 Hi}"), "{\\rtf1 Hi}");
    // A byte order mark is no part of the first paragraph.
    EXPECT_EQ(importText("marked.txt", "\xEF\xBB\xBFHello\n\nAgain"), "Hello\n\nAgain");
    const std::string latin1 = "Le caf\xE9 \xE9tait ferm\xE9, alors nous avons parl\xE9 dans la cour de l'\xE9" "cole. "
                               "Les coll\xE8gues \xE9taient fatigu\xE9s apr\xE8s la r\xE9union.";
    EXPECT_NE(importText("latin.txt", latin1).find("café"), std::string::npos);

    EXPECT_EQ((failure<TeskTranscriptImport::ImportError, Kind>("notes.doc", "x")), Kind::unsupportedFormat);
    EXPECT_EQ((failure<TeskTranscriptImport::ImportError, Kind>("empty.txt", "")), Kind::unreadable);
    EXPECT_EQ((failure<TeskTranscriptImport::ImportError, Kind>("blank.txt", " \n\t ")), Kind::unreadable);
    EXPECT_STREQ(TeskTranscriptImport::ImportError(Kind::unreadable).what(),
                 "Could not read text from this file. Try exporting it as .txt and import again.");
}

TEST_F(TranscriptImportTest, WordParagraphsKeepTabsAndBreaksAndSkipDeletedText) {
    const std::string body =
        "<w:p><w:pPr><w:tabs><w:tab/></w:tabs></w:pPr><w:r><w:t>A</w:t><w:tab/><w:t>B</w:t></w:r></w:p>"
        "<w:p></w:p>"
        "<w:p><w:r><w:t>one</w:t><w:br/><w:br/><w:t>two</w:t><w:delText>gone</w:delText></w:r></w:p>"
        "<w:p><w:r><w:instrText>PAGE</w:instrText><w:t>three</w:t><w:cr/><w:t>four</w:t></w:r></w:p>";
    EXPECT_EQ(importText("stored.docx", zipOf({{"word/document.xml", wordXML(body), 0}})),
              "A\tB\n\none\n\ntwo\n\nthree\nfour");
    // Deflated, and behind other entries, one of them in a method the reader cannot decode.
    const std::string zip = zipOf({{"[Content_Types].xml", "<Types/>", 8},
                                   {"word/media/image.emf", "binary", 12},
                                   {"word/document.xml", wordXML(body), 8}});
    EXPECT_EQ(importText("deflated.docx", zip), "A\tB\n\none\n\ntwo\n\nthree\nfour");

    EXPECT_EQ((failure<TeskTranscriptImport::ImportError, Kind>("empty.docx",
                                                                 zipOf({{"word/document.xml", wordXML("<w:p/><w:p></w:p>")}}))),
              Kind::unreadable);
}

TEST_F(TranscriptImportTest, StreamedAndZip64WordFilesAreReadLikeAnyOther) {
    const std::string body = "<w:p><w:r><w:t>Interviewer: How did you start?</w:t></w:r></w:p>"
                             "<w:p><w:r><w:t>Participant: At school.</w:t></w:r></w:p>";
    for (const auto layout : {ZipLayout::dataDescriptors, ZipLayout::unsignedDataDescriptors, ZipLayout::zip64,
                              ZipLayout::zip64DataDescriptors}) {
        const std::string zip = zipOf({{"mimetype", "application/x", 0},
                                       {"word/styles.xml", "<w:styles/>", 8},
                                       {"word/document.xml", wordXML(body), 8}},
                                      layout);
        EXPECT_EQ(importText("streamed.docx", zip), "Interviewer: How did you start?\n\nParticipant: At school.");
    }
}

// Each failure says what happened and what to do, in the researcher's words.
TEST_F(TranscriptImportTest, WhatCannotBeReadIsRefusedWithASentenceThatSaysWhatToDo) {
    EXPECT_EQ((failure<DocxArchive::ArchiveError, ArchiveKind>("plain.docx", "not a zip at all, just text")),
              ArchiveKind::missingEntry);
    EXPECT_EQ((failure<DocxArchive::ArchiveError, ArchiveKind>("other.docx", zipOf({{"word/other.xml", "<x/>"}}))),
              ArchiveKind::missingEntry);
    EXPECT_EQ((failure<DocxArchive::ArchiveError, ArchiveKind>(
                  "method.docx", zipOf({{"word/document.xml", wordXML("<w:p><w:t>x</w:t></w:p>"), 12}}))),
              ArchiveKind::unsupportedCompression);
    const std::string damaged = zipOf({{"word/document.xml", "", 8, std::string(64, '\xFF')}});
    EXPECT_EQ((failure<DocxArchive::ArchiveError, ArchiveKind>("damaged.docx", damaged)), ArchiveKind::unreadable);
    // Word's password protection and the old .doc format keep the text in a compound file.
    const std::string compound = std::string("\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1", 8) + std::string(512, '\0');
    EXPECT_EQ((failure<DocxArchive::ArchiveError, ArchiveKind>("protected.docx", compound)),
              ArchiveKind::protectedOrLegacy);
    EXPECT_THROW(DocxArchive::inflateDeflate(""), DocxArchive::ArchiveError);

    EXPECT_STREQ(DocxArchive::ArchiveError(ArchiveKind::missingEntry).what(),
                 "This Word file is damaged or not a Word document. Open it in your word processor and save it "
                 "again as .docx, or export it as .txt.");
    for (const auto kind : {ArchiveKind::unreadable, ArchiveKind::missingEntry, ArchiveKind::unsupportedCompression,
                            ArchiveKind::entryTooLarge, ArchiveKind::protectedOrLegacy}) {
        const std::string text = DocxArchive::ArchiveError(kind).what();
        EXPECT_TRUE(text.starts_with("This Word file ")) << text;
        EXPECT_NE(text.find(".txt"), std::string::npos) << text;
        EXPECT_EQ(text.find("error"), std::string::npos) << text;
    }
}

// A document part of 200 KB behind a few hundred bytes of DEFLATE: all of it comes through.
TEST_F(TranscriptImportTest, ALongWordDocumentIsReadWhole) {
    const std::string body = "<w:p><w:r><w:t>Head</w:t></w:r></w:p><w:p><w:r><w:t>" + std::string(200'000, 'x') +
                             "</w:t></w:r></w:p>";
    const std::string xml = wordXML(body);
    ASSERT_LT(rawDeflate(xml).size() * 4, xml.size());
    const std::string text = importText("long.docx", zipOf({{"word/document.xml", xml}}));
    EXPECT_TRUE(text == "Head\n\n" + std::string(200'000, 'x')) << text.size();
    EXPECT_EQ(DocxArchive::inflateDeflate(rawDeflate(xml)).size(), xml.size());
}

// A small file that would unpack to more than any document holds is refused when it passes
// the bound, without unpacking the rest.
TEST_F(TranscriptImportTest, AZipBombIsRefusedWithoutUnpackingIt) {
    const std::string paragraph = "<w:p><w:r><w:t>" + std::string(1 << 20, 'a') + "</w:t></w:r></w:p>";
    const std::string bomb = zipOf({{"word/document.xml", "", 8, rawDeflateRepeated(paragraph, 100)}});
    ASSERT_LT(bomb.size(), 200'000u);
    EXPECT_EQ((failure<DocxArchive::ArchiveError, ArchiveKind>("bomb.docx", bomb)), ArchiveKind::entryTooLarge);
}

TEST_F(TranscriptImportTest, PDFPagesBecomeParagraphsAndAPDFWithoutTextIsRefused) {
    const std::string text = importText("two.pdf", pdfWithPages({"First page", "", "Third page"}));
    EXPECT_EQ(text, "First page\n\nThird page");
    EXPECT_EQ((failure<TeskTranscriptImport::ImportError, Kind>("scan.pdf", pdfWithPages({""}))), Kind::unreadable);
    EXPECT_EQ((failure<TeskTranscriptImport::ImportError, Kind>("broken.pdf", "%PDF-1.4 nothing")), Kind::unreadable);
}

} // namespace
} // namespace mibrel
