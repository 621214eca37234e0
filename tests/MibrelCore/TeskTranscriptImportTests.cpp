#include "MibrelCore/Import/TeskTranscriptImport.h"

#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <zlib.h>

#include "MibrelCore/Import/DocxArchive.h"
#include "tests/support/TestSupport.h"

namespace mibrel {
namespace {

namespace fs = std::filesystem;
using testing::TemporaryDirectory;
using testing::writeText;
using Kind = TeskTranscriptImport::ImportError::Kind;
using ArchiveKind = DocxArchive::ArchiveError::Kind;

struct ZipEntry {
    std::string name;
    std::string data;
    std::uint16_t method = 8;
};

std::string rawDeflate(const std::string& data) {
    z_stream stream{};
    deflateInit2(&stream, Z_BEST_COMPRESSION, Z_DEFLATED, -MAX_WBITS, 8, Z_DEFAULT_STRATEGY);
    std::string out(deflateBound(&stream, data.size()), '\0');
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(data.data()));
    stream.avail_in = static_cast<uInt>(data.size());
    stream.next_out = reinterpret_cast<Bytef*>(out.data());
    stream.avail_out = static_cast<uInt>(out.size());
    deflate(&stream, Z_FINISH);
    out.resize(stream.total_out);
    deflateEnd(&stream);
    return out;
}

void putLittleEndian(std::string& out, std::uint32_t value, int width) {
    for (int i = 0; i < width; ++i) out += static_cast<char>((value >> (8 * i)) & 0xFF);
}

// Local headers and data only: that is all the reader walks.
std::string zipOf(const std::vector<ZipEntry>& entries) {
    std::string zip;
    for (const auto& entry : entries) {
        const std::string data = entry.method == 8 ? rawDeflate(entry.data) : entry.data;
        zip += std::string("PK\x03\x04", 4);
        putLittleEndian(zip, 20, 2);
        putLittleEndian(zip, 0, 2);
        putLittleEndian(zip, entry.method, 2);
        putLittleEndian(zip, 0, 8); // time, date, crc
        putLittleEndian(zip, static_cast<std::uint32_t>(data.size()), 4);
        putLittleEndian(zip, static_cast<std::uint32_t>(entry.data.size()), 4);
        putLittleEndian(zip, static_cast<std::uint32_t>(entry.name.size()), 2);
        putLittleEndian(zip, 0, 2);
        zip += entry.name + data;
    }
    return zip + std::string("PK\x01\x02", 4) + std::string(42, '\0'); // where a central directory starts
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

TEST_F(TranscriptImportTest, TheArchiveWalkFailsAsDesignedOnWhatItCannotRead) {
    EXPECT_EQ((failure<DocxArchive::ArchiveError, ArchiveKind>("plain.docx", "not a zip at all, just text")),
              ArchiveKind::missingEntry);
    EXPECT_EQ((failure<DocxArchive::ArchiveError, ArchiveKind>("other.docx", zipOf({{"word/other.xml", "<x/>"}}))),
              ArchiveKind::missingEntry);
    EXPECT_EQ((failure<DocxArchive::ArchiveError, ArchiveKind>(
                  "method.docx", zipOf({{"word/document.xml", wordXML("<w:p><w:t>x</w:t></w:p>"), 12}}))),
              ArchiveKind::unsupportedCompression);
    EXPECT_THROW(DocxArchive::inflateDeflate(""), DocxArchive::ArchiveError);
}

// An entry that inflates beyond four times its compressed size is cut there; the XML then
// breaks, and the paragraphs finished before the cut are what the import gives.
TEST_F(TranscriptImportTest, AWordDocumentCutByTheFirstBufferKeepsItsFinishedParagraphs) {
    const std::string body = "<w:p><w:r><w:t>Head</w:t></w:r></w:p><w:p><w:r><w:t>" + std::string(200'000, 'x') +
                             "</w:t></w:r></w:p>";
    const std::string xml = wordXML(body);
    EXPECT_LT(rawDeflate(xml).size() * 4, xml.size());
    EXPECT_EQ(importText("long.docx", zipOf({{"word/document.xml", xml}})), "Head");
    EXPECT_EQ(DocxArchive::inflateDeflate(rawDeflate(xml)).size(), 4096u);
}

TEST_F(TranscriptImportTest, PDFPagesBecomeParagraphsAndAPDFWithoutTextIsRefused) {
    const std::string text = importText("two.pdf", pdfWithPages({"First page", "", "Third page"}));
    EXPECT_EQ(text, "First page\n\nThird page");
    EXPECT_EQ((failure<TeskTranscriptImport::ImportError, Kind>("scan.pdf", pdfWithPages({""}))), Kind::unreadable);
    EXPECT_EQ((failure<TeskTranscriptImport::ImportError, Kind>("broken.pdf", "%PDF-1.4 nothing")), Kind::unreadable);
}

} // namespace
} // namespace mibrel
