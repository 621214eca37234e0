#pragma once

#include <map>
#include <string>
#include <string_view>

#include "Platform/Xml/XmlParser.h"

namespace merivante {

// Reads "xl/_rels/workbook.xml.rels" into a map from relationship Id to its Target.
class WorkbookRelationshipsParser : public platform::xml::XmlHandler {
public:
    // Throws XLSXImportError::xmlParseFailed when the part is not well-formed.
    static std::map<std::string, std::string> parse(std::string_view document);

    std::map<std::string, std::string> targets;

    void startElement(std::string_view name, const platform::xml::XmlAttributes& attributes) override;
};

} // namespace merivante
