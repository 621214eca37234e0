#include "MerivanteCore/Import/XLSXImportError.h"

#include <utility>

namespace merivante {

XLSXImportError XLSXImportError::unzipFailed(std::string detail) {
    XLSXImportError error(Kind::unzipFailed, "The Excel workbook could not be opened as an .xlsx file. " + detail);
    error.m_detail = std::move(detail);
    return error;
}

XLSXImportError XLSXImportError::noDataRows(std::int64_t columnCount) {
    XLSXImportError error(Kind::noDataRows, "The Excel worksheet has " + std::to_string(columnCount) +
                                                " column headers but no data rows.");
    error.m_columnCount = columnCount;
    return error;
}

XLSXImportError XLSXImportError::xmlParseFailed(std::string detail) {
    XLSXImportError error(Kind::xmlParseFailed, "The Excel workbook could not be parsed. " + detail);
    error.m_detail = std::move(detail);
    return error;
}

XLSXImportError XLSXImportError::missingWorkbook() {
    return {Kind::missingWorkbook, "The Excel workbook is missing its workbook definition."};
}

XLSXImportError XLSXImportError::missingWorksheet() {
    return {Kind::missingWorksheet, "The Excel workbook does not contain a readable worksheet."};
}

XLSXImportError XLSXImportError::noReadableWorksheet() {
    return {Kind::noReadableWorksheet, "The Excel workbook does not contain a worksheet with a header row and data rows."};
}

XLSXImportError XLSXImportError::noHeaderRow() {
    return {Kind::noHeaderRow, "The Excel worksheet needs one header row before the respondent rows."};
}

} // namespace merivante
