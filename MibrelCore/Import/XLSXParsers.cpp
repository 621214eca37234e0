#include "MibrelCore/Import/XLSXParsers.h"

#include <charconv>

#include "MibrelCore/Import/TeskResponsesImport.h"
#include "Platform/Text/Text.h"

namespace mibrel {

void XLSXSharedStringsParser::startElement(std::string_view name, const platform::xml::XmlAttributes&) {
    if (name == "si") {
        inString = true;
        current.clear();
    } else if (name == "t" && inString) {
        capture = true;
    }
}

void XLSXSharedStringsParser::endElement(std::string_view name) {
    if (name == "t") {
        capture = false;
    } else if (name == "si") {
        strings.push_back(current);
        inString = false;
    }
}

void XLSXSharedStringsParser::characters(std::string_view text) {
    if (capture) current += text;
}

void XLSXSheetParser::startElement(std::string_view name, const platform::xml::XmlAttributes& attributes) {
    if (name == "row") {
        currentRow.clear();
    } else if (name == "c") {
        currentCol = TeskResponsesImport::columnIndex(attributes.value("r").value_or(""));
        cellType = std::string(attributes.value("t").value_or(""));
        cellValue.clear();
    } else if (name == "v" || name == "t") {
        captureValue = true;
    }
}

void XLSXSheetParser::endElement(std::string_view name) {
    if (name == "v" || name == "t") {
        captureValue = false;
    } else if (name == "c") {
        const auto column = static_cast<std::size_t>(currentCol);
        if (currentRow.size() <= column) currentRow.resize(column + 1);
        currentRow[column] = resolvedValue();
    } else if (name == "row") {
        rows.push_back(currentRow);
    }
}

void XLSXSheetParser::characters(std::string_view text) {
    if (captureValue) cellValue += text;
}

// A shared-string index that is out of range stays as the number it is; so do numbers,
// booleans and formula results.
std::string XLSXSheetParser::resolvedValue() const {
    if (cellType != "s") return cellValue;
    const std::string index = platform::text::trimmed(cellValue);
    std::int64_t position = -1;
    const auto [end, error] = std::from_chars(index.data(), index.data() + index.size(), position);
    const bool whole = error == std::errc() && end == index.data() + index.size() && !index.empty();
    if (!whole || position < 0 || static_cast<std::size_t>(position) >= sharedStrings.size()) return cellValue;
    return sharedStrings[static_cast<std::size_t>(position)];
}

} // namespace mibrel
