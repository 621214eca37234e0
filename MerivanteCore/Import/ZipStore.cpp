#include "MerivanteCore/Import/ZipStore.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "Platform/Compression/RawInflate.h"
#include "Platform/Compression/ZipLocalEntries.h"

namespace merivante {
namespace {

constexpr std::uint16_t kStored = 0;
constexpr std::uint16_t kDeflated = 8;
constexpr std::uint64_t kMinimumCapacity = 65536;

} // namespace

std::optional<std::string> ZipStore::extract(std::string_view data, std::string_view name) {
    const auto entry = platform::compression::findLocalEntry(data, name);
    if (!entry) return std::nullopt;
    if (entry->method == kStored) return std::string(entry->data);
    if (entry->method != kDeflated) return std::nullopt;
    // The buffer is the declared size (at least 64 KiB), within the bound every archive
    // reader keeps; an entry holding more than that is refused rather than returned cut.
    const std::size_t capacity = static_cast<std::size_t>(std::min<std::uint64_t>(
        platform::compression::unpackLimit(data.size()), std::max(kMinimumCapacity, entry->uncompressedSize)));
    auto unpacked = platform::compression::inflateWhole(entry->data, capacity, entry->uncompressedSize);
    if (!unpacked.isComplete()) return std::nullopt;
    return std::move(unpacked.bytes);
}

} // namespace merivante
