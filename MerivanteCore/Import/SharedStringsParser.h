#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "Platform/Xml/XmlParser.h"

namespace merivante {

// Reads "xl/sharedStrings.xml": each si is one string, the text of its t runs joined.
class SharedStringsParser : public platform::xml::XmlHandler {
public:
    // Throws XLSXImportError::xmlParseFailed when the part is not well-formed.
    static std::vector<std::string> parse(std::string_view document);

    std::vector<std::string> strings;

    void startElement(std::string_view name, const platform::xml::XmlAttributes& attributes) override;
    void endElement(std::string_view name) override;
    void characters(std::string_view text) override;

private:
    std::string m_current;
    bool m_isInsideString = false;
    bool m_isInsideText = false;
    int m_phoneticDepth = 0;
};

} // namespace merivante
