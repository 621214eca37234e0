#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Platform/Xml/XmlParser.h"

namespace merivante {

// A sheet as the workbook lists it; its part is found through the relationship.
struct WorkbookSheet {
    std::string name;
    std::string relationshipID;

    bool operator==(const WorkbookSheet&) const = default;
};

// Reads "xl/workbook.xml" into its sheets, in workbook order.
class WorkbookSheetParser : public platform::xml::XmlHandler {
public:
    // Throws XLSXImportError::xmlParseFailed when the part is not well-formed.
    static std::vector<WorkbookSheet> parse(std::string_view document);

    std::vector<WorkbookSheet> sheets;

    void startElement(std::string_view name, const platform::xml::XmlAttributes& attributes) override;

private:
    explicit WorkbookSheetParser(std::vector<std::string> idAttributeNames)
        : m_idAttributeNames(std::move(idAttributeNames)) {}

    // "r:id" first, then "{prefix}:id" for every other prefix the document declares, then "id".
    std::vector<std::string> m_idAttributeNames;
};

} // namespace merivante
