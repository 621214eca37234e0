#include "Platform/Xml/XmlParser.h"

#include <algorithm>
#include <limits>
#include <memory>

#include <expat.h>

namespace platform::xml {
namespace {

struct ParserFree {
    void operator()(XML_Parser parser) const { XML_ParserFree(parser); }
};

void XMLCALL onStart(void* data, const XML_Char* name, const XML_Char** attributes) {
    static_cast<XmlHandler*>(data)->startElement(name, XmlAttributes(attributes));
}

void XMLCALL onEnd(void* data, const XML_Char* name) { static_cast<XmlHandler*>(data)->endElement(name); }

void XMLCALL onCharacters(void* data, const XML_Char* text, int length) {
    static_cast<XmlHandler*>(data)->characters(std::string_view(text, static_cast<std::size_t>(length)));
}

} // namespace

std::optional<std::string_view> XmlAttributes::value(std::string_view name) const {
    for (const char** pair = m_pairs; pair && *pair; pair += 2) {
        if (name == pair[0]) return std::string_view(pair[1]);
    }
    return std::nullopt;
}

bool parse(std::string_view document, XmlHandler& handler) {
    std::unique_ptr<XML_ParserStruct, ParserFree> parser(XML_ParserCreate("UTF-8"));
    if (!parser) return false;
    XML_SetUserData(parser.get(), &handler);
    XML_SetElementHandler(parser.get(), onStart, onEnd);
    XML_SetCharacterDataHandler(parser.get(), onCharacters);
    // Fed in pieces that fit expat's int lengths; the last piece says the document ends.
    constexpr std::size_t kPiece = static_cast<std::size_t>(std::numeric_limits<int>::max() / 2);
    do {
        const std::size_t length = std::min(kPiece, document.size());
        const bool isFinal = length == document.size();
        if (XML_Parse(parser.get(), document.data(), static_cast<int>(length), isFinal) != XML_STATUS_OK) return false;
        document.remove_prefix(length);
    } while (!document.empty());
    return true;
}

} // namespace platform::xml
