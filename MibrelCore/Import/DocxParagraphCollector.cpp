#include "MibrelCore/Import/DocxParagraphCollector.h"

#include <algorithm>

namespace mibrel {

void DocxParagraphCollector::startElement(std::string_view name, const platform::xml::XmlAttributes&) {
    if (name == "w:t") {
        ++textDepth;
    } else if (name == "w:tab") {
        // Tab stops in paragraph properties share the name; theirs land at the head and are trimmed away.
        current += '\t';
    } else if (name == "w:br" || name == "w:cr") {
        current += '\n';
    }
}

void DocxParagraphCollector::endElement(std::string_view name) {
    if (name == "w:t") {
        textDepth = std::max<std::int64_t>(textDepth - 1, 0);
    } else if (name == "w:p") {
        paragraphs.push_back(std::move(current));
        current.clear();
    }
}

void DocxParagraphCollector::characters(std::string_view text) {
    if (textDepth >= 1) current += text;
}

} // namespace mibrel
