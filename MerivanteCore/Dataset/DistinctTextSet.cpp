#include "MerivanteCore/Dataset/DistinctTextSet.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

#include <sys/mman.h>

namespace merivante {
namespace {

constexpr std::size_t kFirstCapacity = 16;
constexpr std::size_t kBlockSize = 1 << 16;
constexpr std::size_t kHugePage = 2 << 20;

std::uint64_t load(const char* bytes, std::size_t size) {
    std::uint64_t word = 0;
    std::memcpy(&word, bytes, std::min<std::size_t>(size, 8));
    return word;
}

std::uint64_t mix(std::uint64_t a, std::uint64_t b) {
    __extension__ using Wide = unsigned __int128;
    const Wide product = static_cast<Wide>(a ^ 0x9E3779B97F4A7C15ULL) * (b ^ 0xD6E8FEB86659FD93ULL);
    return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
}

} // namespace

// Never 0, which marks an empty slot.
std::uint64_t DistinctTextSet::hashOf(std::string_view text) {
    std::uint64_t hash = text.size();
    std::size_t at = 0;
    for (; at + 16 <= text.size(); at += 16) hash = mix(hash ^ load(text.data() + at, 8), load(text.data() + at + 8, 8));
    const std::size_t rest = text.size() - at;
    hash = mix(hash ^ load(text.data() + at, rest), rest > 8 ? load(text.data() + at + 8, rest - 8) : 0);
    return hash | 1;
}

DistinctTextSet::DistinctTextSet() : m_slots(emptySlots(kFirstCapacity)), m_capacity(kFirstCapacity) {}

// A table of a million answers is probed at random; on huge pages those probes do not each
// pay for a page-table walk as well. The advice must come before the first write.
DistinctTextSet::Slots DistinctTextSet::emptySlots(std::size_t capacity) {
    const std::size_t bytes = capacity * sizeof(Slot);
    const bool huge = bytes >= 2 * kHugePage;
    void* memory = huge ? std::aligned_alloc(kHugePage, (bytes + kHugePage - 1) & ~(kHugePage - 1)) : std::malloc(bytes);
    if (memory == nullptr) throw std::bad_alloc();
    if (huge) madvise(memory, bytes, MADV_HUGEPAGE);
    std::memset(memory, 0, bytes);
    return Slots(static_cast<Slot*>(memory));
}

std::string_view DistinctTextSet::textOf(const Slot& slot) const {
    return {slot.size <= kInline ? slot.bytes : slot.pointer, slot.size};
}

bool DistinctTextSet::insert(std::string_view text, std::uint64_t hash) {
    const std::size_t mask = m_capacity - 1;
    for (std::size_t at = (hash >> 1) & mask;; at = (at + 1) & mask) {
        Slot& slot = m_slots[at];
        if (slot.hash == 0) {
            slot.hash = hash;
            slot.size = text.size();
            if (text.size() <= kInline) std::memcpy(slot.bytes, text.data(), text.size());
            else slot.pointer = keep(text);
            if (++m_count * 2 > m_capacity) grow();
            return true;
        }
        if (slot.hash == hash && textOf(slot) == text) return false;
    }
}

const char* DistinctTextSet::keep(std::string_view text) {
    if (text.size() > kBlockSize / 4) { // a long text gets a block of its own
        m_largeTexts.push_back(std::make_unique<char[]>(text.size()));
        std::memcpy(m_largeTexts.back().get(), text.data(), text.size());
        return m_largeTexts.back().get();
    }
    if (m_blocks.empty() || m_blockUsed + text.size() > kBlockSize) {
        m_blocks.push_back(std::make_unique<char[]>(kBlockSize));
        m_blockUsed = 0;
    }
    char* kept = m_blocks.back().get() + m_blockUsed;
    std::memcpy(kept, text.data(), text.size());
    m_blockUsed += text.size();
    return kept;
}

void DistinctTextSet::grow() {
    const std::size_t oldCapacity = m_capacity;
    Slots old = std::exchange(m_slots, emptySlots(oldCapacity * 2));
    m_capacity = oldCapacity * 2;
    const std::size_t mask = m_capacity - 1;
    for (std::size_t i = 0; i < oldCapacity; ++i) {
        if (old[i].hash == 0) continue;
        std::size_t at = (old[i].hash >> 1) & mask;
        while (m_slots[at].hash != 0) at = (at + 1) & mask;
        m_slots[at] = old[i];
    }
}

} // namespace merivante
