#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "MerivanteCore/Dataset/ImportReadiness.h"
#include "Platform/Xml/XmlParser.h"

namespace merivante {

// Reads a worksheet part into its rows of cell text, each cell at the column its reference
// names and each row under the number the spreadsheet program shows.
class WorksheetParser : public platform::xml::XmlHandler {
public:
    // The highest column a workbook can have (XFD); a reference beyond it is not a cell.
    static constexpr std::int64_t maximumColumnIndex = 16383;

    // Throws XLSXImportError::xmlParseFailed when the part is not well-formed.
    static std::vector<ImportSourceRow> parse(std::string_view document, const std::vector<std::string>& sharedStrings);

    // 0-based, from the leading capital letters of a reference ("AA7" gives 26); absent
    // without letters or beyond the last column.
    static std::optional<std::int64_t> columnIndex(std::string_view reference);

    explicit WorksheetParser(const std::vector<std::string>& sharedStrings) : sharedStrings(sharedStrings) {}

    const std::vector<std::string>& sharedStrings;
    std::vector<ImportSourceRow> rows;

    void startElement(std::string_view name, const platform::xml::XmlAttributes& attributes) override;
    void endElement(std::string_view name) override;
    void characters(std::string_view text) override;

private:
    void startCell(const platform::xml::XmlAttributes& attributes);
    void endCell();
    std::string resolvedCellValue() const;
    void appendCurrentRow();

    std::optional<std::map<std::int64_t, std::string>> m_currentRow;
    std::optional<std::int64_t> m_currentRowNumber;
    std::optional<std::int64_t> m_currentCellColumnIndex;
    std::optional<std::string> m_currentCellType;
    std::string m_currentCellValue;
    std::string m_currentInlineText;
    bool m_isInsideValue = false;
    bool m_isInsideInlineText = false;
    int m_phoneticDepth = 0;
};

} // namespace merivante
