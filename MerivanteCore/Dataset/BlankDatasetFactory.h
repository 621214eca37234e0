#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "MerivanteCore/Dataset/ImportedDataset.h"

namespace merivante::BlankDatasetFactory {

// An empty grid to type into: 1-200 columns and 1-10,000 rows whatever was asked. The given
// headers are used only when there is one per column; otherwise "Var1", "Var2", …
ImportedDataset make(std::string name, std::int64_t rows, std::int64_t columns,
                     const std::optional<std::vector<std::string>>& headers = std::nullopt);

} // namespace merivante::BlankDatasetFactory
