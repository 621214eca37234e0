#include "MerivanteCore/Import/MvkbFieldReader.h"

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "MerivanteCore/Import/MvkbReader.h"
#include "MerivanteCore/Import/ZipStore.h"
#include "Platform/Text/Text.h"

namespace merivante {
namespace {

using platform::json::JsonNode;

// A metadata key of this name holds each case's group, so it is marked as the grouping
// variable (the raw value of VariableKind::grouping).
constexpr std::string_view kGroupRoleKey = "groupRole";
constexpr std::string_view kGroupingRole = "grouping";

struct Item {
    std::string id;
    std::optional<std::string> text;
};

bool isFieldManifest(const JsonNode& root) {
    const auto format = MvkbReader::text(root, "format");
    if (format && platform::text::localizedCaseInsensitiveContains(*format, "mvkbfield")) return true;
    return root.member("cases").has_value();
}

// An id may be written as a string or a number; both read as their text.
std::string idOf(const JsonNode& object) {
    const auto id = object.member("id");
    return id ? MvkbReader::stringify(*id) : std::string();
}

// The quantitative items in order; an item without an id has no column.
std::vector<Item> readItems(const JsonNode& root) {
    std::vector<Item> items;
    const auto instrument = MvkbReader::array(root, "quantInstrument");
    if (!instrument) return items;
    for (const JsonNode& entry : MvkbReader::objects(*instrument)) {
        std::string id = idOf(entry);
        if (id.empty()) continue;
        const auto text = MvkbReader::text(entry, "itemText");
        items.push_back({std::move(id), text ? std::optional<std::string>(*text) : std::nullopt});
    }
    return items;
}

std::vector<std::string> metadataKeys(const std::vector<JsonNode>& cases) {
    std::set<std::string> keys;
    for (const JsonNode& aCase : cases) {
        const auto metadata = aCase.member("metadata");
        if (!metadata || !metadata->isObject()) continue;
        metadata->forEachMember([&](std::string_view key, const JsonNode&) { keys.emplace(key); });
    }
    return {keys.begin(), keys.end()};
}

// The first present, non-null value of the response, as text.
std::string responseValue(const JsonNode& response) {
    for (const std::string_view key : {"likertValue", "numericValue", "choiceValue"}) {
        const auto value = response.member(key);
        if (value && !value->isNull()) return MvkbReader::stringify(*value);
    }
    return {};
}

// Each item's answer in this case; the first response for an id counts.
std::map<std::string, std::string> answers(const JsonNode& aCase) {
    std::map<std::string, std::string> byId;
    const auto responses = MvkbReader::array(aCase, "quantResponses");
    if (!responses) return byId;
    for (const JsonNode& response : MvkbReader::objects(*responses)) {
        std::string id = idOf(response);
        if (!byId.contains(id)) byId.emplace(std::move(id), responseValue(response));
    }
    return byId;
}

std::vector<std::string> caseRow(const JsonNode& aCase, const std::vector<std::string>& keys,
                                 const std::vector<Item>& items) {
    std::vector<std::string> row;
    row.reserve(keys.size() + items.size());
    const auto metadata = aCase.member("metadata");
    for (const std::string& key : keys) {
        const auto value = metadata && metadata->isObject() ? metadata->member(key) : std::nullopt;
        row.push_back(value ? MvkbReader::stringify(*value) : std::string());
    }
    const auto byId = answers(aCase);
    for (const Item& item : items) {
        const auto answer = byId.find(item.id);
        row.push_back(answer == byId.end() ? std::string() : answer->second);
    }
    return row;
}

} // namespace

std::optional<MvkbFieldPackage> MvkbFieldReader::read(std::string_view data) {
    const auto manifest = ZipStore::extract(data, "manifest.json");
    if (!manifest) return std::nullopt;
    const auto document = MvkbReader::parseObject(*manifest);
    if (!document) return std::nullopt;
    const JsonNode root = document->root();
    if (!isFieldManifest(root)) return std::nullopt;

    MvkbFieldPackage package;
    if (const auto study = root.member("study")) package.title = MvkbReader::text(*study, "title").value_or("");
    const std::vector<Item> items = readItems(root);
    const auto caseArray = MvkbReader::array(root, "cases");
    const std::vector<JsonNode> cases = caseArray ? MvkbReader::objects(*caseArray) : std::vector<JsonNode>();
    if (cases.empty()) package.notes.push_back("This field package has no cases to import.");

    const std::vector<std::string> keys = metadataKeys(cases);
    if (std::find(keys.begin(), keys.end(), kGroupRoleKey) != keys.end()) {
        package.roles.emplace(kGroupRoleKey, kGroupingRole);
    }
    package.headers = keys;
    for (const Item& item : items) {
        package.headers.push_back(item.id);
        if (item.text) package.labels[item.id] = *item.text;
    }
    for (const JsonNode& aCase : cases) package.rows.push_back(caseRow(aCase, keys, items));
    return package;
}

} // namespace merivante
