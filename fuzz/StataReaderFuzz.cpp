#include "MerivanteCore/Import/StataReader.h"
#include "fuzz/FuzzInput.h"

// Any bytes must give a result or absent, never a crash, a hang or a huge allocation.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (auto result = merivante::StataReader::read(mibrel::fuzz::bytesOf(data, size))) {
        mibrel::fuzz::buildDataset(*result, "fuzz.dta");
    }
    return 0;
}
