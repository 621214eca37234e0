#include "MerivanteCore/Import/SharedStringsParser.h"

#include "MerivanteCore/Import/XLSXImportError.h"

namespace merivante {

std::vector<std::string> SharedStringsParser::parse(std::string_view document) {
    SharedStringsParser parser;
    if (!platform::xml::parse(document, parser)) throw XLSXImportError::xmlParseFailed("Shared strings XML parse failed.");
    return std::move(parser.strings);
}

void SharedStringsParser::startElement(std::string_view name, const platform::xml::XmlAttributes&) {
    if (name == "si") {
        m_isInsideString = true;
        m_current.clear();
    } else if (name == "rPh") {
        // A phonetic reading (furigana) annotates the text; it is not part of the cell.
        ++m_phoneticDepth;
    } else if (name == "t" && m_isInsideString && m_phoneticDepth == 0) {
        m_isInsideText = true;
    }
}

void SharedStringsParser::endElement(std::string_view name) {
    if (name == "t") {
        m_isInsideText = false;
    } else if (name == "rPh") {
        if (m_phoneticDepth > 0) --m_phoneticDepth;
    } else if (name == "si" && m_isInsideString) {
        strings.push_back(std::move(m_current));
        m_current.clear();
        m_isInsideString = false;
    }
}

void SharedStringsParser::characters(std::string_view text) {
    if (m_isInsideText) m_current += text;
}

} // namespace merivante
