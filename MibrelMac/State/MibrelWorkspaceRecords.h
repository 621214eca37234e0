#pragma once

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "MibrelCore/Model/TeskWorkspace.h"

// Small operations on the workspace's arrays that the editing operations share.
namespace mibrel::MibrelWorkspaceRecords {

template <class Record>
std::optional<std::size_t> indexOfID(const CowArray<Record>& records, const Uuid& id) {
    const auto found = std::find_if(records.begin(), records.end(), [&](const Record& r) { return r.id == id; });
    if (found == records.end()) return std::nullopt;
    return static_cast<std::size_t>(found - records.begin());
}

template <class Record>
const Record* firstWithID(const CowArray<Record>& records, const Uuid& id) {
    const auto index = indexOfID(records, id);
    return index ? &records[*index] : nullptr;
}

// Replaces the record with the same id; false when there is none.
template <class Record>
bool replaceByID(CowArray<Record>& records, const Record& record) {
    const auto index = indexOfID(records, record.id);
    if (index) records.replace(*index, record);
    return index.has_value();
}

// Removes `id` from one id list of every record that holds it; the records stay.
template <class Record>
void unlinkID(CowArray<Record>& records, std::vector<Uuid> Record::*ids, const Uuid& id) {
    records.updateEach([&](const Record& record) -> std::optional<Record> {
        const auto& list = record.*ids;
        if (std::find(list.begin(), list.end(), id) == list.end()) return std::nullopt;
        Record changed = record;
        std::erase(changed.*ids, id);
        return changed;
    });
}

// The record's name, or "" when there is none.
template <class Record>
std::string nameOf(const Record* record) {
    return record ? record->name : std::string();
}

// The set of the ids, sorted by their text (the canonical string orders as the bytes do).
inline std::vector<Uuid> uniqueIDs(std::vector<Uuid> ids) {
    std::sort(ids.begin(), ids.end());
    ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
    return ids;
}

inline std::vector<Uuid> mergedIDs(std::vector<Uuid> a, const std::vector<Uuid>& b) {
    a.insert(a.end(), b.begin(), b.end());
    return uniqueIDs(std::move(a));
}

} // namespace mibrel::MibrelWorkspaceRecords
