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

struct XmlPushParser::Parser {
    std::unique_ptr<XML_ParserStruct, ParserFree> expat{XML_ParserCreate("UTF-8")};
};

XmlPushParser::XmlPushParser(XmlHandler& handler) : m_parser(std::make_unique<Parser>()) {
    XML_Parser parser = m_parser->expat.get();
    m_failed = parser == nullptr;
    if (m_failed) return;
    XML_SetUserData(parser, &handler);
    XML_SetElementHandler(parser, onStart, onEnd);
    XML_SetCharacterDataHandler(parser, onCharacters);
}

XmlPushParser::~XmlPushParser() = default;

bool XmlPushParser::feed(std::string_view piece) {
    // Fed in slices that fit expat's int lengths.
    constexpr std::size_t kSlice = static_cast<std::size_t>(std::numeric_limits<int>::max() / 2);
    while (!piece.empty() && !m_failed) {
        const std::size_t length = std::min(kSlice, piece.size());
        m_failed = !parsePiece(piece.substr(0, length), false);
        piece.remove_prefix(length);
    }
    return !m_failed;
}

bool XmlPushParser::finish() {
    if (!m_failed) m_failed = !parsePiece({}, true);
    return !m_failed;
}

bool XmlPushParser::parsePiece(std::string_view piece, bool isFinal) {
    return XML_Parse(m_parser->expat.get(), piece.data(), static_cast<int>(piece.size()), isFinal) == XML_STATUS_OK;
}

bool parse(std::string_view document, XmlHandler& handler) {
    XmlPushParser parser(handler);
    return parser.feed(document) && parser.finish();
}

} // namespace platform::xml
