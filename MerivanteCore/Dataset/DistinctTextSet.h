#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string_view>
#include <vector>

namespace merivante {

// Counts distinct texts, for columns of a million answers: open addressing, texts of up to
// 16 bytes kept in the slot itself, longer ones copied once into blocks owned here.
class DistinctTextSet {
public:
    DistinctTextSet();

    // True when the text had not been seen.
    bool insert(std::string_view text) { return insert(text, hashOf(text)); }
    bool insert(std::string_view text, std::uint64_t hash);

    // A caller with other work to do can ask for a text's slot ahead of inserting it, so
    // that in a large table the memory access overlaps that work.
    static std::uint64_t hashOf(std::string_view text);
    void prefetch(std::uint64_t hash) const { __builtin_prefetch(&m_slots[(hash >> 1) & (m_capacity - 1)]); }

    std::size_t size() const { return m_count; }

private:
    static constexpr std::size_t kInline = 16;
    struct Slot {
        std::uint64_t hash; // 0 marks an empty slot
        std::size_t size;
        union {
            char bytes[kInline];
            const char* pointer;
        };
    };
    struct FreeSlots {
        void operator()(Slot* slots) const { std::free(slots); }
    };
    using Slots = std::unique_ptr<Slot[], FreeSlots>;

    static Slots emptySlots(std::size_t capacity);
    std::string_view textOf(const Slot& slot) const;
    const char* keep(std::string_view text);
    void grow();

    Slots m_slots;
    std::size_t m_capacity = 0; // a power of two
    std::size_t m_count = 0;
    std::vector<std::unique_ptr<char[]>> m_blocks; // the last one is being filled
    std::vector<std::unique_ptr<char[]>> m_largeTexts;
    std::size_t m_blockUsed = 0;
};

} // namespace merivante
