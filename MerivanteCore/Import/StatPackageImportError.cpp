#include "MerivanteCore/Import/StatPackageImportError.h"

#include <utility>

namespace merivante {

StatPackageImportError StatPackageImportError::mvkbHasNoData(std::string message) {
    return {Kind::mvkbHasNoData, std::move(message)};
}

StatPackageImportError StatPackageImportError::noDataRows(std::int64_t columnCount) {
    StatPackageImportError error(Kind::noDataRows,
                                 "The file has " + std::to_string(columnCount) + " variables but no data rows.");
    error.m_columnCount = columnCount;
    return error;
}

StatPackageImportError StatPackageImportError::unreadableSPSS() {
    return {Kind::unreadableSPSS,
            "This .sav file could not be read. Re-export it from SPSS as a standard system file, then import it again."};
}

StatPackageImportError StatPackageImportError::unreadableStata() {
    return {Kind::unreadableStata, "This .dta file could not be read. Merivante Zolvar reads Stata 13 and newer "
                                   "(releases 117 and 118). Re-save it from a recent Stata, then import it again."};
}

StatPackageImportError StatPackageImportError::unreadableMvkb() {
    return {Kind::unreadableMvkb, "This .mvkb file could not be read as a Merivante Kessil Bench survey package."};
}

StatPackageImportError StatPackageImportError::unreadableMvkbField() {
    return {Kind::unreadableMvkbField,
            "This .mvkbfield file could not be read as a Merivante Kessil Bench field-study package."};
}

} // namespace merivante
