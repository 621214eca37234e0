#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "Platform/Xml/XmlParser.h"

namespace mibrel {

// Picks the paragraphs out of a Word document's XML. Only text inside w:t counts, so
// deleted text (w:delText) and field instructions (w:instrText) never reach the result.
class DocxParagraphCollector : public platform::xml::XmlHandler {
public:
    std::vector<std::string> paragraphs; // finished paragraphs, in document order
    std::string current;                 // the paragraph being read
    std::int64_t textDepth = 0;          // how many w:t elements are open

    void startElement(std::string_view name, const platform::xml::XmlAttributes& attributes) override;
    void endElement(std::string_view name) override;
    void characters(std::string_view text) override;
};

} // namespace mibrel
