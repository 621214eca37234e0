#include "MerivanteCore/Import/SpreadsheetImportError.h"

#include <utility>

namespace merivante {

SpreadsheetImportError SpreadsheetImportError::unsupportedFileType(std::string extension) {
    std::string description = extension == "xls"
                                  ? "Merivante Studio imports .xlsx and .csv files. Save this older Excel .xls file "
                                    "as .xlsx, then import it again."
                                  : "Merivante Studio imports .xlsx and .csv files, not ." + extension + " files.";
    return {std::move(extension), std::move(description)};
}

} // namespace merivante
