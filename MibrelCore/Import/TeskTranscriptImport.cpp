#include "MibrelCore/Import/TeskTranscriptImport.h"

#include <memory>
#include <optional>
#include <vector>

#include <poppler-document.h>
#include <poppler-global.h>
#include <poppler-page.h>

#include "MibrelCore/Import/DocxArchive.h"
#include "MibrelCore/Import/DocxParagraphCollector.h"
#include "Platform/Files/FileSystem.h"
#include "Platform/Text/Text.h"
#include "Platform/Text/TextDecoding.h"

namespace mibrel::TeskTranscriptImport {
namespace {

std::string describe(ImportError::Kind kind) {
    switch (kind) {
    case ImportError::Kind::unreadable:
        return "Could not read text from this file. Try exporting it as .txt and import again.";
    case ImportError::Kind::unsupportedFormat: return "This file type is not supported for transcript import.";
    }
    return {};
}

// The non-blank pieces, trimmed, joined by blank lines; absent when none is left.
std::optional<std::string> joinedParagraphs(const std::vector<std::string>& pieces) {
    std::string joined;
    for (const auto& piece : pieces) {
        std::string trimmed = platform::text::trimmed(piece);
        if (trimmed.empty()) continue;
        if (!joined.empty()) joined += "\n\n";
        joined += trimmed;
    }
    if (joined.empty()) return std::nullopt;
    return joined;
}

std::string plainText(const std::filesystem::path& location) {
    auto text = platform::text::decodeDocumentText(platform::files::readFile(location));
    if (!text) throw ImportError(ImportError::Kind::unreadable);
    return *text;
}

// A broken tail of the XML does not lose the paragraphs finished before it. The document
// part is read as it unpacks, so the two overlap and the whole part is never held at once;
// a damaged or oversized part still throws, after its head was read.
std::string docxText(const std::filesystem::path& location) {
    DocxParagraphCollector collector;
    platform::xml::XmlPushParser parser(collector);
    bool parsed = true;
    DocxArchive::streamEntry("word/document.xml", location, [&](std::string_view piece) {
        if (parsed) parsed = parser.feed(piece);
    });
    parsed = parsed && parser.finish();
    if (!parsed && collector.paragraphs.empty()) throw ImportError(ImportError::Kind::unreadable);
    auto text = joinedParagraphs(collector.paragraphs);
    if (!text) throw ImportError(ImportError::Kind::unreadable);
    return *text;
}

// The reader's own complaints ("Incorrect password") would reach the terminal; the
// researcher gets ours instead.
void silencePDFDiagnostics() {
    static const bool silenced = [] {
        poppler::set_debug_error_function([](const std::string&, void*) {}, nullptr);
        return true;
    }();
    (void)silenced;
}

// Every page with text starts a new paragraph; a locked or scanned document has none.
std::string pdfText(const std::filesystem::path& location) {
    silencePDFDiagnostics();
    std::unique_ptr<poppler::document> document(poppler::document::load_from_file(location.string()));
    if (!document || document->is_locked()) throw ImportError(ImportError::Kind::unreadable);
    std::vector<std::string> pages;
    for (int index = 0; index < document->pages(); ++index) {
        std::unique_ptr<poppler::page> page(document->create_page(index));
        if (!page) continue;
        const poppler::byte_array utf8 = page->text().to_utf8();
        pages.emplace_back(utf8.begin(), utf8.end());
    }
    auto text = joinedParagraphs(pages);
    if (!text) throw ImportError(ImportError::Kind::unreadable);
    return *text;
}

} // namespace

ImportError::ImportError(Kind kind) : std::runtime_error(describe(kind)), m_kind(kind) {}

std::string text(const std::filesystem::path& location) {
    const std::string extension = platform::files::lowercasedExtension(location);
    std::string result;
    if (extension == "docx") {
        result = docxText(location);
    } else if (extension == "pdf") {
        result = pdfText(location);
    } else if (extension.empty() || extension == "txt" || extension == "text" || extension == "md" ||
               extension == "rtf") {
        result = plainText(location);
    } else {
        throw ImportError(ImportError::Kind::unsupportedFormat);
    }
    if (platform::text::isBlank(result)) throw ImportError(ImportError::Kind::unreadable);
    return result;
}

} // namespace mibrel::TeskTranscriptImport
