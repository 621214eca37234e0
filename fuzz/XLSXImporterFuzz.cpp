#include "MerivanteCore/Import/WorksheetParser.h"
#include "MerivanteCore/Import/XLSXImportError.h"
#include "MerivanteCore/Import/XLSXImporter.h"
#include "fuzz/FuzzInput.h"

// An odd first byte sends the rest to the worksheet parser and the dataset builder directly,
// since damaged archives rarely get past their checksums; otherwise the bytes are a workbook.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const std::string_view rest = mibrel::fuzz::bytesOf(data + 1, size - 1);
    try {
        if (data[0] % 2 == 1) {
            auto rows = merivante::WorksheetParser::parse(rest, {"first", "second"});
            (void)merivante::XLSXImporter::dataset(std::move(rows), "fuzz.xlsx", "Sheet1");
        } else {
            (void)merivante::XLSXImporter().importXLSX("fuzz.xlsx", rest);
        }
    } catch (const merivante::XLSXImportError&) {
    }
    return 0;
}
