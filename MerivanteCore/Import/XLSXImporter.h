#pragma once

#include <filesystem>
#include <string_view>
#include <vector>

#include "MerivanteCore/Dataset/ImportReadiness.h"
#include "MerivanteCore/Dataset/ImportedDataset.h"

namespace merivante {

// An Excel workbook as researchers keep it: the first worksheet with a header row and data
// rows becomes the dataset, codebook sheets only when nothing else does, and title rows
// above the headers are passed over.
struct XLSXImporter {
    // Throws XLSXImportError, or the file error of reading.
    ImportedDataset importXLSX(const std::filesystem::path& url) const;
    // The workbook's bytes under the name the dataset gets. Throws XLSXImportError.
    ImportedDataset importXLSX(std::string_view name, std::string_view bytes) const;

    // One worksheet's rows as a dataset. Throws XLSXImportError::noHeaderRow or ::noDataRows.
    static ImportedDataset dataset(std::vector<ImportSourceRow> rows, std::string_view sourceName,
                                   std::string_view sheetName);
};

} // namespace merivante
