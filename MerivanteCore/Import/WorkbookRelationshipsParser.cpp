#include "MerivanteCore/Import/WorkbookRelationshipsParser.h"

#include "MerivanteCore/Import/XLSXImportError.h"

namespace merivante {

std::map<std::string, std::string> WorkbookRelationshipsParser::parse(std::string_view document) {
    WorkbookRelationshipsParser parser;
    if (!platform::xml::parse(document, parser)) {
        throw XLSXImportError::xmlParseFailed("Workbook relationship XML parse failed.");
    }
    return std::move(parser.targets);
}

void WorkbookRelationshipsParser::startElement(std::string_view name, const platform::xml::XmlAttributes& attributes) {
    if (name != "Relationship") return;
    const auto id = attributes.value("Id");
    const auto target = attributes.value("Target");
    if (id && target) targets.insert_or_assign(std::string(*id), std::string(*target));
}

} // namespace merivante
