#include "MerivanteCore/Import/MvkbReader.h"

#include <algorithm>
#include <cstddef>
#include <initializer_list>

#include "MerivanteCore/Dataset/DatasetNumbers.h"
#include "Platform/Json/JsonError.h"
#include "Platform/Text/Text.h"

namespace merivante {
namespace {

using platform::json::DecodingError;
using platform::json::JsonNode;

struct Table {
    std::vector<std::string> headers;
    std::vector<std::vector<std::string>> rows;
};

// The node offers no type test but for null and object; the typed getters throw instead.
std::optional<std::size_t> arrayLength(const JsonNode& node) {
    try {
        return node.arraySize();
    } catch (const DecodingError&) {
        return std::nullopt;
    }
}

// The first of the keys holding a non-empty string.
std::optional<std::string_view> firstText(const JsonNode& object, std::initializer_list<std::string_view> keys) {
    for (const std::string_view key : keys) {
        const auto value = MvkbReader::text(object, key);
        if (value && !value->empty()) return value;
    }
    return std::nullopt;
}

bool isAccepted(const JsonNode& root) {
    const auto app = MvkbReader::text(root, "app");
    if (app && platform::text::localizedCaseInsensitiveContains(*app, "merivante")) return true;
    return root.member("project") && root.member("data");
}

// Entries name the variable under "variable", "name" or "column", and the role under "role".
// A later entry for the same variable replaces an earlier one.
std::map<std::string, std::string> readRoles(const JsonNode& content) {
    std::map<std::string, std::string> roles;
    const auto entries = MvkbReader::array(content, "roles");
    if (!entries) return roles;
    for (const JsonNode& entry : MvkbReader::objects(*entries)) {
        const auto variable = firstText(entry, {"variable", "name", "column"});
        const auto role = MvkbReader::text(entry, "role");
        if (variable && role) roles[std::string(*variable)] = std::string(*role);
    }
    return roles;
}

std::vector<std::string> stringifyAll(const JsonNode& array) {
    std::vector<std::string> texts;
    const std::size_t count = array.arraySize();
    texts.reserve(count);
    for (std::size_t i = 0; i < count; ++i) texts.push_back(MvkbReader::stringify(array.element(i)));
    return texts;
}

// Rows that are arrays, each cell through stringify; anything else is skipped.
std::vector<std::vector<std::string>> rowsArray(const JsonNode& rows) {
    std::vector<std::vector<std::string>> result;
    const std::size_t count = rows.arraySize();
    for (std::size_t i = 0; i < count; ++i) {
        const JsonNode row = rows.element(i);
        if (arrayLength(row)) result.push_back(stringifyAll(row));
    }
    return result;
}

std::vector<std::string> columnHeaders(const std::vector<JsonNode>& columns) {
    std::vector<std::string> headers;
    for (std::size_t n = 1; n <= columns.size(); ++n) {
        const auto header = firstText(columns[n - 1], {"name", "header", "label"});
        headers.push_back(header ? std::string(*header) : "Variable " + std::to_string(n));
    }
    return headers;
}

// Column-wise cells: row i takes the i-th cell of each column, "" where a column is shorter.
std::vector<std::vector<std::string>> rowsFromCells(const std::vector<std::optional<JsonNode>>& cells) {
    std::size_t rowCount = 0;
    for (const auto& column : cells) {
        if (column) rowCount = std::max(rowCount, column->arraySize());
    }
    std::vector<std::vector<std::string>> rows(rowCount, std::vector<std::string>(cells.size()));
    for (std::size_t j = 0; j < cells.size(); ++j) {
        const std::size_t count = cells[j] ? cells[j]->arraySize() : 0;
        for (std::size_t i = 0; i < count; ++i) rows[i][j] = MvkbReader::stringify(cells[j]->element(i));
    }
    return rows;
}

// `columns` with their cells in `values` (else `data`), or without cells beside `rows`.
std::optional<Table> columnTable(const JsonNode& content) {
    const auto columnArray = MvkbReader::array(content, "columns");
    if (!columnArray) return std::nullopt;
    const std::vector<JsonNode> columns = MvkbReader::objects(*columnArray);
    if (columns.empty()) return std::nullopt;
    std::vector<std::optional<JsonNode>> cells;
    for (const JsonNode& column : columns) {
        auto values = MvkbReader::array(column, "values");
        cells.push_back(values ? values : MvkbReader::array(column, "data"));
    }
    Table table{columnHeaders(columns), {}};
    if (std::any_of(cells.begin(), cells.end(), [](const auto& column) { return column.has_value(); })) {
        table.rows = rowsFromCells(cells);
    } else if (const auto rows = MvkbReader::array(content, "rows")) {
        table.rows = rowsArray(*rows);
    }
    return table;
}

Table extractRows(const JsonNode& content) {
    if (auto table = columnTable(content)) return *table;
    const auto headers = MvkbReader::array(content, "headers");
    const auto rows = MvkbReader::array(content, "rows");
    if (!headers || !rows) return {};
    return {stringifyAll(*headers), rowsArray(*rows)};
}

std::string numberText(double number) {
    if (auto whole = wholeNumberText(number)) return *whole;
    return shortestText(number);
}

} // namespace

std::optional<MvkbPackage> MvkbReader::read(const std::string& data) {
    const auto document = parseObject(data);
    if (!document) return std::nullopt;
    const JsonNode root = document->root();
    if (!isAccepted(root)) return std::nullopt;
    MvkbPackage package;
    if (const auto project = root.member("project")) package.title = text(*project, "title").value_or("");
    const auto content = root.member("data");
    if (!content || !content->isObject()) return package;
    package.roles = readRoles(*content);
    Table table = extractRows(*content);
    package.headers = std::move(table.headers);
    package.rows = std::move(table.rows);
    if (package.headers.empty() || package.rows.empty()) {
        const auto path = text(*content, "source_path");
        if (path && !path->empty()) {
            package.notes.push_back("This survey package references an external data file (" + std::string(*path) +
                                    "). Import that file to continue.");
        }
    }
    return package;
}

std::string MvkbReader::stringify(const JsonNode& value) {
    if (value.isNull() || value.isObject()) return {};
    // Numbers and strings fill most cells, so they are tried first.
    try {
        return numberText(value.asDouble());
    } catch (const DecodingError&) {
    }
    try {
        return std::string(value.asString());
    } catch (const DecodingError&) {
    }
    try {
        return value.asBool() ? "true" : "false";
    } catch (const DecodingError&) {
        return {};
    }
}

std::optional<platform::json::JsonDocument> MvkbReader::parseObject(const std::string& text) {
    try {
        auto document = platform::json::JsonDocument::parse(text);
        if (!document.root().isObject()) return std::nullopt;
        return document;
    } catch (const DecodingError&) {
        return std::nullopt;
    }
}

std::optional<std::string_view> MvkbReader::text(const JsonNode& object, std::string_view key) {
    if (!object.isObject()) return std::nullopt;
    const auto value = object.member(key);
    if (!value) return std::nullopt;
    try {
        return value->asString();
    } catch (const DecodingError&) {
        return std::nullopt;
    }
}

std::optional<JsonNode> MvkbReader::array(const JsonNode& object, std::string_view key) {
    if (!object.isObject()) return std::nullopt;
    auto value = object.member(key);
    if (!value || !arrayLength(*value)) return std::nullopt;
    return value;
}

std::vector<JsonNode> MvkbReader::objects(const JsonNode& array) {
    std::vector<JsonNode> result;
    const std::size_t count = arrayLength(array).value_or(0);
    for (std::size_t i = 0; i < count; ++i) {
        JsonNode element = array.element(i);
        if (element.isObject()) result.push_back(element);
    }
    return result;
}

} // namespace merivante
