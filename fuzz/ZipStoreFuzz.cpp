#include "MerivanteCore/Import/ZipStore.h"
#include "fuzz/FuzzInput.h"

// Lying sizes and names must give bytes or absent, within the memory limit.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes = mibrel::fuzz::bytesOf(data, size);
    (void)merivante::ZipStore::extract(bytes, "manifest.json");
    (void)merivante::ZipStore::extract(bytes, "[Content_Types].xml");
    return 0;
}
