#pragma once

#include <filesystem>

#include "MerivanteCore/Dataset/ImportedDataset.h"
#include "MerivanteCore/Import/CSVImporter.h"
#include "MerivanteCore/Import/SpreadsheetImportError.h"
#include "MerivanteCore/Import/StatPackageImporter.h"
#include "MerivanteCore/Import/XLSXImporter.h"

namespace merivante {

// The one door for any data file: the extension, in any case, chooses the importer.
struct SpreadsheetImporter {
    CSVImporter csvImporter;
    XLSXImporter xlsxImporter;
    StatPackageImporter statImporter;

    // Throws SpreadsheetImportError for an extension no importer takes, or whatever the
    // chosen importer throws.
    ImportedDataset importData(const std::filesystem::path& url) const;
};

} // namespace merivante
