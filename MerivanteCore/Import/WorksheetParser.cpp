#include "MerivanteCore/Import/WorksheetParser.h"

#include <algorithm>
#include <charconv>

#include "MerivanteCore/Dataset/MissingValue.h"
#include "MerivanteCore/Import/XLSXImportError.h"
#include "Platform/Text/Text.h"

namespace merivante {
namespace {

std::optional<std::int64_t> wholeNumber(std::string_view text) {
    std::int64_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size() || text.empty()) return std::nullopt;
    return value;
}

} // namespace

std::vector<ImportSourceRow> WorksheetParser::parse(std::string_view document,
                                                    const std::vector<std::string>& sharedStrings) {
    WorksheetParser parser(sharedStrings);
    if (!platform::xml::parse(document, parser)) throw XLSXImportError::xmlParseFailed("Worksheet XML parse failed.");
    return std::move(parser.rows);
}

std::optional<std::int64_t> WorksheetParser::columnIndex(std::string_view reference) {
    std::int64_t number = 0;
    std::size_t letters = 0;
    for (char c : reference) {
        if (c < 'A' || c > 'Z') break;
        number = number * 26 + (c - 'A' + 1);
        // Checked at each letter, so a long run of letters cannot overflow.
        if (number - 1 > maximumColumnIndex) return std::nullopt;
        ++letters;
    }
    if (letters == 0) return std::nullopt;
    return number - 1;
}

void WorksheetParser::startElement(std::string_view name, const platform::xml::XmlAttributes& attributes) {
    if (name == "row") {
        m_currentRow.emplace();
        m_currentRowNumber = wholeNumber(attributes.value("r").value_or(""));
    } else if (name == "c") {
        startCell(attributes);
    } else if (name == "v") {
        m_isInsideValue = true;
    } else if (name == "rPh") {
        // A phonetic reading (furigana) annotates the text; it is not part of the cell.
        ++m_phoneticDepth;
    } else if (name == "t" && m_currentCellType == "inlineStr" && m_phoneticDepth == 0) {
        m_isInsideInlineText = true;
    }
}

void WorksheetParser::endElement(std::string_view name) {
    if (name == "v") {
        m_isInsideValue = false;
    } else if (name == "t") {
        m_isInsideInlineText = false;
    } else if (name == "rPh") {
        if (m_phoneticDepth > 0) --m_phoneticDepth;
    } else if (name == "c") {
        endCell();
    } else if (name == "row") {
        appendCurrentRow();
    }
}

void WorksheetParser::characters(std::string_view text) {
    if (m_isInsideValue) m_currentCellValue += text;
    if (m_isInsideInlineText) m_currentInlineText += text;
}

void WorksheetParser::startCell(const platform::xml::XmlAttributes& attributes) {
    m_currentCellColumnIndex = columnIndex(attributes.value("r").value_or(""));
    const auto type = attributes.value("t");
    m_currentCellType = type ? std::optional<std::string>(*type) : std::nullopt;
    m_currentCellValue.clear();
    m_currentInlineText.clear();
}

void WorksheetParser::endCell() {
    if (m_currentCellColumnIndex && m_currentRow) {
        m_currentRow->insert_or_assign(*m_currentCellColumnIndex, resolvedCellValue());
    }
    m_currentCellColumnIndex.reset();
    m_currentCellType.reset();
}

std::string WorksheetParser::resolvedCellValue() const {
    const std::string_view value = platform::text::trimmedView(m_currentCellValue);
    if (m_currentCellType == "s") {
        const auto index = wholeNumber(value);
        if (!index || *index < 0 || static_cast<std::uint64_t>(*index) >= sharedStrings.size()) return {};
        return sharedStrings[static_cast<std::size_t>(*index)];
    }
    if (m_currentCellType == "b") return value == "1" ? "TRUE" : "FALSE";
    if (m_currentCellType == "inlineStr") return m_currentInlineText;
    return std::string(value);
}

void WorksheetParser::appendCurrentRow() {
    auto cells = std::move(m_currentRow);
    const auto rowNumber = m_currentRowNumber;
    m_currentRow.reset();
    m_currentRowNumber.reset();
    if (!cells || cells->empty() || !rowNumber) return;

    std::vector<std::string> values(static_cast<std::size_t>(cells->rbegin()->first) + 1);
    for (auto& [column, text] : *cells) values[static_cast<std::size_t>(column)] = std::move(text);
    if (std::all_of(values.begin(), values.end(), MissingValue::isMissing)) return;
    rows.push_back({*rowNumber, std::move(values)});
}

} // namespace merivante
