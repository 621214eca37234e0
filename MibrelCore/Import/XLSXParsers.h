#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "Platform/Xml/XmlParser.h"

namespace mibrel {

// Reads "xl/sharedStrings.xml": each si becomes one string, its t runs joined.
class XLSXSharedStringsParser : public platform::xml::XmlHandler {
public:
    std::vector<std::string> strings;
    std::string current;
    bool inString = false;
    bool capture = false;

    void startElement(std::string_view name, const platform::xml::XmlAttributes& attributes) override;
    void endElement(std::string_view name) override;
    void characters(std::string_view text) override;
};

// Reads a worksheet into rows of text, placing each cell at the column its reference names.
class XLSXSheetParser : public platform::xml::XmlHandler {
public:
    explicit XLSXSheetParser(std::vector<std::string> sharedStrings) : sharedStrings(std::move(sharedStrings)) {}

    std::vector<std::string> sharedStrings;
    std::vector<std::vector<std::string>> rows;
    std::vector<std::string> currentRow;
    std::int64_t currentCol = 0;
    std::string cellType;
    std::string cellValue;
    bool captureValue = false;

    void startElement(std::string_view name, const platform::xml::XmlAttributes& attributes) override;
    void endElement(std::string_view name) override;
    void characters(std::string_view text) override;

private:
    std::string resolvedValue() const;
};

} // namespace mibrel
