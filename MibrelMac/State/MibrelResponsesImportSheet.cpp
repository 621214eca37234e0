#include "MibrelMac/State/MibrelResponsesImportSheet.h"

#include <algorithm>

#include "Platform/Text/Text.h"

namespace mibrel {
namespace {

const std::string* cell(const std::vector<std::string>& row, std::int64_t column) {
    if (column < 0 || static_cast<std::size_t>(column) >= row.size()) return nullptr;
    return &row[static_cast<std::size_t>(column)];
}

} // namespace

MibrelResponsesImportSheet MibrelResponsesImportSheet::make(const MibrelSourcesState::PendingResponsesImport& pending) {
    return {pending.fileName, pending.table, pending.table.suggestedTextColumn().value_or(0), kRowNumbers};
}

std::string MibrelResponsesImportSheet::summary() const {
    return fileName + ": " + std::to_string(table.rows.size()) + " rows. Each row becomes one source.";
}

std::vector<std::string> MibrelResponsesImportSheet::columnNames() const {
    std::vector<std::string> names;
    for (std::size_t index = 0; index < table.headers.size(); ++index) {
        const std::string& header = table.headers[index];
        names.push_back(header.empty() ? "Column " + std::to_string(index + 1) : header);
    }
    return names;
}

std::optional<std::string> MibrelResponsesImportSheet::preview() const {
    if (table.rows.empty()) return std::nullopt;
    const std::string* text = cell(table.rows.front(), textColumn);
    return text ? std::optional(*text) : std::nullopt;
}

std::int64_t MibrelResponsesImportSheet::importableRowCount() const {
    return std::count_if(table.rows.begin(), table.rows.end(), [this](const std::vector<std::string>& row) {
        const std::string* text = cell(row, textColumn);
        return text && !platform::text::isBlank(*text);
    });
}

std::string MibrelResponsesImportSheet::importableRowsText() const {
    return std::to_string(importableRowCount()) + " rows have response text";
}

std::string MibrelResponsesImportSheet::importButtonTitle() const {
    return "Import " + std::to_string(importableRowCount()) + " Sources";
}

void MibrelResponsesImportSheet::importInto(MibrelSourcesState& sources) const {
    const auto label = labelColumn < 0 ? std::nullopt : std::optional(labelColumn);
    sources.importResponses(table, textColumn, label);
    sources.cancelResponsesImport();
}

} // namespace mibrel
