#include "MerivanteCore/Import/SpreadsheetImporter.h"

#include "Platform/Files/FileSystem.h"

namespace merivante {

ImportedDataset SpreadsheetImporter::importData(const std::filesystem::path& url) const {
    const std::string extension = platform::files::lowercasedExtension(url);
    // "tsv" is left out although the delimited-text importer would take it.
    if (extension == "csv" || extension == "txt") return csvImporter.importCSV(url);
    if (extension == "xlsx") return xlsxImporter.importXLSX(url);
    if (extension == "sav") return statImporter.importSPSS(url);
    if (extension == "dta") return statImporter.importStata(url);
    if (extension == "mvkb") return statImporter.importMvkb(url);
    if (extension == "mvkbfield") return statImporter.importMvkbField(url);
    throw SpreadsheetImportError::unsupportedFileType(extension);
}

} // namespace merivante
