#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "MerivanteCore/Dataset/ImportReadiness.h"

namespace merivante {

enum class CSVParserError { emptyFile, unterminatedQuote };

struct CSVParseResult {
    std::vector<std::string> headers;
    std::vector<std::vector<std::string>> rows; // each as long as the header row
    std::vector<ImportRowNormalizationReport> rowReports;
};

// The dialect of delimited text as survey tools export it: the delimiter is found, not
// configured; quotes open only an empty field; blank lines are skipped and do not count.
struct CSVParser {
    // Throws CSVParserError.
    CSVParseResult parse(std::string_view content) const;

    // Comma, tab or semicolon, whichever occurs most outside quotes in the first eight lines.
    static char detectDelimiter(std::string_view content);
};

} // namespace merivante
