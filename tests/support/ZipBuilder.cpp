#include "tests/support/ZipBuilder.h"

#include <zlib.h>

namespace mibrel::testing {
namespace {

constexpr std::uint32_t kOverflow = 0xFFFFFFFFu;
constexpr std::uint16_t kSizesInDescriptor = 1u << 3;

void put(std::string& out, std::uint64_t value, int width) {
    for (int i = 0; i < width; ++i) out += static_cast<char>((value >> (8 * i)) & 0xFF);
}

bool isStreamed(ZipLayout layout) {
    return layout == ZipLayout::dataDescriptors || layout == ZipLayout::unsignedDataDescriptors ||
           layout == ZipLayout::zip64DataDescriptors;
}

bool isZip64(ZipLayout layout) {
    return layout == ZipLayout::zip64 || layout == ZipLayout::zip64DataDescriptors;
}

// Deflates with the given flush at the end; a full flush leaves a stream that can be repeated.
std::string deflateRaw(std::string_view data, int flush) {
    z_stream stream{};
    deflateInit2(&stream, Z_BEST_COMPRESSION, Z_DEFLATED, -MAX_WBITS, 8, Z_DEFAULT_STRATEGY);
    std::string out(deflateBound(&stream, data.size()) + 64, '\0');
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(data.data()));
    stream.avail_in = static_cast<uInt>(data.size());
    stream.next_out = reinterpret_cast<Bytef*>(out.data());
    stream.avail_out = static_cast<uInt>(out.size());
    deflate(&stream, flush);
    out.resize(stream.total_out);
    deflateEnd(&stream);
    return out;
}

struct Written {
    const ZipBuilderEntry* entry;
    std::uint64_t offset;
    std::uint64_t packedSize;
    std::uint32_t crc;
    std::uint64_t size; // unpacked, as declared
};

std::string packed(const ZipBuilderEntry& entry) {
    if (!entry.packed.empty()) return entry.packed;
    return entry.method == 8 ? rawDeflate(entry.data) : entry.data;
}

void localHeader(std::string& zip, const Written& w, ZipLayout layout) {
    const bool streamed = isStreamed(layout);
    const bool wide = isZip64(layout);
    zip += std::string("PK\x03\x04", 4);
    put(zip, wide ? 45 : 20, 2);
    put(zip, streamed ? kSizesInDescriptor : 0, 2);
    put(zip, w.entry->method, 2);
    put(zip, 0, 4); // time, date
    put(zip, streamed ? 0 : w.crc, 4);
    if (wide) {
        put(zip, kOverflow, 4);
        put(zip, kOverflow, 4);
    } else {
        put(zip, streamed ? 0 : w.packedSize, 4);
        put(zip, streamed ? 0 : w.size, 4);
    }
    put(zip, w.entry->name.size(), 2);
    put(zip, wide ? 20 : 0, 2);
    zip += w.entry->name;
    if (wide) {
        put(zip, 0x0001, 2);
        put(zip, 16, 2);
        put(zip, streamed ? 0 : w.size, 8);
        put(zip, streamed ? 0 : w.packedSize, 8);
    }
}

void descriptor(std::string& zip, const Written& w, ZipLayout layout) {
    if (layout != ZipLayout::unsignedDataDescriptors) zip += std::string("PK\x07\x08", 4);
    put(zip, w.crc, 4);
    const int width = layout == ZipLayout::zip64DataDescriptors ? 8 : 4;
    put(zip, w.packedSize, width);
    put(zip, w.size, width);
}

void centralEntry(std::string& zip, const Written& w, ZipLayout layout) {
    const bool wide = isZip64(layout);
    zip += std::string("PK\x01\x02", 4);
    put(zip, wide ? 45 : 20, 2);
    put(zip, wide ? 45 : 20, 2);
    put(zip, isStreamed(layout) ? kSizesInDescriptor : 0, 2);
    put(zip, w.entry->method, 2);
    put(zip, 0, 4);
    put(zip, w.crc, 4);
    put(zip, wide ? kOverflow : w.packedSize, 4);
    put(zip, wide ? kOverflow : w.size, 4);
    put(zip, w.entry->name.size(), 2);
    put(zip, wide ? 28 : 0, 2);
    put(zip, 0, 2); // comment
    put(zip, 0, 2); // disk
    put(zip, 0, 2); // internal attributes
    put(zip, 0, 4); // external attributes
    put(zip, wide ? kOverflow : w.offset, 4);
    zip += w.entry->name;
    if (wide) {
        put(zip, 0x0001, 2);
        put(zip, 24, 2);
        put(zip, w.size, 8);
        put(zip, w.packedSize, 8);
        put(zip, w.offset, 8);
    }
}

void endRecords(std::string& zip, std::size_t count, std::uint64_t start, ZipLayout layout) {
    const std::uint64_t size = zip.size() - start;
    const bool wide = isZip64(layout);
    if (wide) {
        const std::uint64_t record = zip.size();
        zip += std::string("PK\x06\x06", 4);
        put(zip, 44, 8);
        put(zip, 45, 2);
        put(zip, 45, 2);
        put(zip, 0, 4);
        put(zip, 0, 4);
        put(zip, count, 8);
        put(zip, count, 8);
        put(zip, size, 8);
        put(zip, start, 8);
        zip += std::string("PK\x06\x07", 4);
        put(zip, 0, 4);
        put(zip, record, 8);
        put(zip, 1, 4);
    }
    zip += std::string("PK\x05\x06", 4);
    put(zip, 0, 4);
    put(zip, wide ? 0xFFFF : count, 2);
    put(zip, wide ? 0xFFFF : count, 2);
    put(zip, wide ? kOverflow : size, 4);
    put(zip, wide ? kOverflow : start, 4);
    put(zip, 0, 2);
}

} // namespace

std::string zipArchive(const std::vector<ZipBuilderEntry>& entries, ZipLayout layout, bool withCentralDirectory) {
    std::string zip;
    std::vector<Written> written;
    for (const auto& entry : entries) {
        const std::string data = packed(entry);
        const auto crc = static_cast<std::uint32_t>(
            crc32(0, reinterpret_cast<const Bytef*>(entry.data.data()), static_cast<uInt>(entry.data.size())));
        const std::uint64_t size = entry.packed.empty() ? entry.data.size() : entry.declaredSize;
        const Written w{&entry, zip.size(), data.size(), crc, size};
        localHeader(zip, w, layout);
        zip += data;
        if (isStreamed(layout)) descriptor(zip, w, layout);
        written.push_back(w);
    }
    if (!withCentralDirectory) return zip;
    const std::uint64_t start = zip.size();
    for (const auto& w : written) centralEntry(zip, w, layout);
    endRecords(zip, written.size(), start, layout);
    return zip;
}

std::string rawDeflate(std::string_view data) {
    return deflateRaw(data, Z_FINISH);
}

std::string rawDeflateRepeated(std::string_view chunk, std::size_t times) {
    const std::string block = deflateRaw(chunk, Z_FULL_FLUSH);
    std::string stream;
    stream.reserve(block.size() * times + 2);
    for (std::size_t i = 0; i < times; ++i) stream += block;
    return stream + std::string("\x03\x00", 2); // an empty final block
}

} // namespace mibrel::testing
