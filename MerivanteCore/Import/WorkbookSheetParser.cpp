#include "MerivanteCore/Import/WorkbookSheetParser.h"

#include <algorithm>

#include "MerivanteCore/Import/XLSXImportError.h"

namespace merivante {
namespace {

bool isNameCharacter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' || c == '-' ||
           c == '.' || static_cast<unsigned char>(c) >= 0x80;
}

// The event parser names attributes but cannot list them, so "an attribute ending in :id"
// is looked up under every prefix the document declares; a prefixed attribute whose
// prefix is never declared is not namespace-valid, and "xml" is declared implicitly.
std::vector<std::string> declaredPrefixes(std::string_view document) {
    std::vector<std::string> prefixes{"xml"};
    constexpr std::string_view marker = "xmlns:";
    for (auto at = document.find(marker); at != std::string_view::npos; at = document.find(marker, at)) {
        at += marker.size();
        auto end = at;
        while (end < document.size() && isNameCharacter(document[end])) ++end;
        std::string prefix(document.substr(at, end - at));
        if (!prefix.empty() && std::find(prefixes.begin(), prefixes.end(), prefix) == prefixes.end()) {
            prefixes.push_back(std::move(prefix));
        }
    }
    return prefixes;
}

std::vector<std::string> idAttributeNames(std::string_view document) {
    std::vector<std::string> names{"r:id"};
    for (const auto& prefix : declaredPrefixes(document)) {
        if (prefix != "r") names.push_back(prefix + ":id");
    }
    names.emplace_back("id");
    return names;
}

} // namespace

std::vector<WorkbookSheet> WorkbookSheetParser::parse(std::string_view document) {
    WorkbookSheetParser parser(idAttributeNames(document));
    if (!platform::xml::parse(document, parser)) throw XLSXImportError::xmlParseFailed("Workbook XML parse failed.");
    return std::move(parser.sheets);
}

void WorkbookSheetParser::startElement(std::string_view name, const platform::xml::XmlAttributes& attributes) {
    if (name != "sheet") return;
    WorkbookSheet sheet;
    sheet.name = std::string(attributes.value("name").value_or(""));
    for (const auto& idName : m_idAttributeNames) {
        if (auto id = attributes.value(idName)) {
            sheet.relationshipID = std::string(*id);
            break;
        }
    }
    sheets.push_back(std::move(sheet));
}

} // namespace merivante
