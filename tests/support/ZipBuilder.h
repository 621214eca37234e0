#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// Hand-made ZIP archives in the layouts real writers use, for the readers' edge cases.
namespace mibrel::testing {

struct ZipBuilderEntry {
    std::string name;
    std::string data;          // what the entry holds, before compression
    std::uint16_t method = 8;  // 8 deflates `data`; any other method stores it as it is
    std::string packed = {};   // when not empty, the bytes written instead of packing `data`
    std::uint64_t declaredSize = 0; // with `packed`, the unpacked size the archive claims
};

enum class ZipLayout {
    sizesInHeaders,            // as Word, python's zipfile and libzip write
    dataDescriptors,           // streamed: sizes 0 in the local header, a signed descriptor behind the data
    unsignedDataDescriptors,   // the same, the descriptor without its optional signature
    zip64,                     // sizes and offsets in ZIP64 extra fields and end records
    zip64DataDescriptors,      // streamed with 8-byte sizes in the descriptors
};

// Local headers and data, then (unless left out) the central directory and its end record.
std::string zipArchive(const std::vector<ZipBuilderEntry>& entries, ZipLayout layout = ZipLayout::sizesInHeaders,
                       bool withCentralDirectory = true);

// A raw DEFLATE stream (no wrapper) of the data.
std::string rawDeflate(std::string_view data);

// A raw DEFLATE stream of `chunk` repeated `times` times, made by deflating the chunk once:
// a small file that unpacks to a great deal.
std::string rawDeflateRepeated(std::string_view chunk, std::size_t times);

} // namespace mibrel::testing
