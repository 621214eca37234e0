#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "MerivanteCore/Import/StatPackageImporter.h"

namespace mibrel::fuzz {

inline std::string_view bytesOf(const std::uint8_t* data, std::size_t size) {
    return {reinterpret_cast<const char*>(data), size};
}

// A reader's result must build a dataset or say why; nothing else may escape.
template <typename Result>
void buildDataset(Result& result, const std::string& name) {
    try {
        merivante::StatPackageImporter().build(name, result.variableNames, result.variableLabels,
                                               std::move(result.rows));
    } catch (const merivante::StatPackageImportError&) {
    }
}

} // namespace mibrel::fuzz
