#include "MibrelCore/Import/DocxArchive.h"
#include "MibrelCore/Import/DocxParagraphCollector.h"
#include "Platform/Compression/RawInflate.h"
#include "Platform/Compression/ZipCentralDirectory.h"
#include "Platform/Compression/ZipLocalEntries.h"
#include "Platform/Xml/XmlParser.h"
#include "fuzz/FuzzInput.h"

// The Word walk as it reads a document, without the file: the local headers, the central
// directory for streamed entries, the whole inflate under its bound, and the paragraphs,
// read both from the whole part and piece by piece as a second thread unpacks it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes = mibrel::fuzz::bytesOf(data, size);
    if (const auto directory = platform::compression::ZipCentralDirectory::read(bytes)) {
        (void)directory->find("word/document.xml");
    }
    try {
        const std::string xml = mibrel::DocxArchive::entryDataFromBytes("word/document.xml", bytes);
        mibrel::DocxParagraphCollector collector;
        (void)platform::xml::parse(xml, collector);
    } catch (const mibrel::DocxArchive::ArchiveError&) {
    }
    const auto entry = platform::compression::findLocalEntry(bytes, "word/document.xml");
    if (entry && entry->method == 8) {
        mibrel::DocxParagraphCollector collector;
        platform::xml::XmlPushParser parser(collector);
        (void)platform::compression::inflateAlongside(entry->data, platform::compression::unpackLimit(size),
                                                      [&](std::string_view piece) { (void)parser.feed(piece); });
        (void)parser.finish();
    }
    return 0;
}
