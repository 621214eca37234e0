#include "MibrelCore/Import/DocxArchive.h"
#include "Platform/Compression/ZipLocalEntries.h"
#include "fuzz/FuzzInput.h"

// The Word walk as it reads a document, without the file: find the body, inflate it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto entry = platform::compression::findLocalEntry(mibrel::fuzz::bytesOf(data, size), "word/document.xml");
    if (!entry || entry->method != 8) return 0;
    try {
        (void)mibrel::DocxArchive::inflateDeflate(std::string(entry->data));
    } catch (const mibrel::DocxArchive::ArchiveError&) {
    }
    return 0;
}
