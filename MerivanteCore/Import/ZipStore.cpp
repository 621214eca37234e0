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
constexpr std::size_t kMinimumCapacity = 65536;
// DEFLATE cannot expand its input by much more than 1032 to 1, so a declared size beyond
// that is a lie, and believing it would allocate up to 4 GiB for a tiny entry.
constexpr std::size_t kLargestExpansion = 1032;
// The inflater counts in 32 bits, and one byte is kept beyond the capacity (see below).
constexpr std::size_t kLargestCapacity = 0xFFFFFFFEu;

std::size_t inflateCapacity(std::size_t compressedSize, std::size_t declaredSize) {
    const std::size_t possible = compressedSize * kLargestExpansion + kMinimumCapacity;
    return std::min(kLargestCapacity, std::max(kMinimumCapacity, std::min(declaredSize, possible)));
}

} // namespace

std::optional<std::string> ZipStore::extract(std::string_view data, std::string_view name) {
    const auto entry = platform::compression::findLocalEntry(data, name);
    if (!entry) return std::nullopt;
    if (entry->method == kStored) return std::string(entry->data);
    if (entry->method != kDeflated) return std::nullopt;
    const std::size_t capacity = inflateCapacity(entry->data.size(), entry->uncompressedSize);
    // The inflater cuts what does not fit; one byte of room more shows an entry that holds
    // more than its header admits, which is refused rather than returned cut.
    std::string inflated = platform::compression::inflateRaw(entry->data, capacity + 1);
    if (inflated.empty() || inflated.size() > capacity) return std::nullopt;
    return inflated;
}

} // namespace merivante
