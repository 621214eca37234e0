#pragma once

#include <algorithm>
#include <cstddef>
#include <initializer_list>
#include <iterator>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace platform {

// An array with value semantics whose copies share storage, chunk by chunk. A copy costs
// one pointer per chunk; a change copies only the chunks it touches. So a snapshot of a
// large workspace (each undo step holds one) costs little more than what the edit changed:
// appending to 100,000 items copies the last chunk, not the array.
//
// Every chunk but the last is full, which keeps indexing constant-time.
template <class T>
class CowArray {
public:
    static constexpr std::size_t kChunkSize = 256;

    class const_iterator {
    public:
        using iterator_category = std::random_access_iterator_tag;
        using value_type = T;
        using difference_type = std::ptrdiff_t;
        using pointer = const T*;
        using reference = const T&;

        const_iterator() = default;
        const_iterator(const CowArray* array, std::size_t index) : m_array(array), m_index(index) {}

        reference operator*() const { return (*m_array)[m_index]; }
        pointer operator->() const { return &(*m_array)[m_index]; }
        reference operator[](difference_type offset) const { return (*m_array)[m_index + offset]; }
        const_iterator& operator++() { ++m_index; return *this; }
        const_iterator operator++(int) { auto old = *this; ++m_index; return old; }
        const_iterator& operator--() { --m_index; return *this; }
        const_iterator operator--(int) { auto old = *this; --m_index; return old; }
        const_iterator& operator+=(difference_type n) { m_index += n; return *this; }
        const_iterator& operator-=(difference_type n) { m_index -= n; return *this; }
        friend const_iterator operator+(const_iterator it, difference_type n) { return it += n; }
        friend const_iterator operator+(difference_type n, const_iterator it) { return it += n; }
        friend const_iterator operator-(const_iterator it, difference_type n) { return it -= n; }
        friend difference_type operator-(const const_iterator& a, const const_iterator& b) {
            return static_cast<difference_type>(a.m_index) - static_cast<difference_type>(b.m_index);
        }
        friend bool operator==(const const_iterator& a, const const_iterator& b) { return a.m_index == b.m_index; }
        friend auto operator<=>(const const_iterator& a, const const_iterator& b) { return a.m_index <=> b.m_index; }

    private:
        const CowArray* m_array = nullptr;
        std::size_t m_index = 0;
    };
    using value_type = T;

    CowArray() = default;
    CowArray(std::vector<T> items) { appendAll(std::move(items)); }
    CowArray(std::initializer_list<T> items) : CowArray(std::vector<T>(items)) {}

    std::size_t size() const { return m_size; }
    bool isEmpty() const { return m_size == 0; }
    const T& operator[](std::size_t index) const { return (*m_chunks[index / kChunkSize])[index % kChunkSize]; }
    const_iterator begin() const { return const_iterator(this, 0); }
    const_iterator end() const { return const_iterator(this, m_size); }
    std::vector<T> toVector() const { return std::vector<T>(begin(), end()); }

    void append(T item) {
        if (m_chunks.empty() || m_chunks.back()->size() == kChunkSize) {
            m_chunks.push_back(std::make_shared<Chunk>());
            m_chunks.back()->reserve(kChunkSize);
        }
        writableChunk(m_chunks.size() - 1).push_back(std::move(item));
        ++m_size;
    }

    void replace(std::size_t index, T item) { writableChunk(index / kChunkSize)[index % kChunkSize] = std::move(item); }

    void insert(std::size_t index, T item) {
        auto tail = takeFrom(index);
        tail.insert(tail.begin(), std::move(item));
        appendAll(std::move(tail));
    }

    void remove(std::size_t index) {
        auto tail = takeFrom(index);
        tail.erase(tail.begin());
        appendAll(std::move(tail));
    }

    // Moves one item to another position; the others keep their order.
    void move(std::size_t from, std::size_t to) {
        if (from == to) return;
        T item = (*this)[from];
        remove(from);
        insert(to, std::move(item));
    }

    // Removes the matching items, keeping the order of the rest; returns how many went.
    // Chunks before the first match stay shared.
    template <class Predicate>
    std::size_t removeAll(Predicate predicate) {
        const auto first = std::find_if(begin(), end(), predicate);
        if (first == end()) return 0;
        auto tail = takeFrom(static_cast<std::size_t>(first - begin()));
        const std::size_t removed = std::erase_if(tail, predicate);
        appendAll(std::move(tail));
        return removed;
    }

    // Replaces each item for which `change` returns a new value; returns how many changed.
    // Only the chunks holding changed items are copied.
    template <class Change>
    std::size_t updateEach(Change change) {
        std::size_t changed = 0;
        for (std::size_t index = 0; index < m_size; ++index) {
            std::optional<T> replacement = change((*this)[index]);
            if (!replacement) continue;
            replace(index, std::move(*replacement));
            ++changed;
        }
        return changed;
    }

    // True when both hold the very same storage: a copy nothing has changed since.
    bool sharesStorageWith(const CowArray& other) const { return m_chunks == other.m_chunks; }
    // How many chunks the two hold in common; what a snapshot costs is the rest.
    std::size_t sharedChunkCount(const CowArray& other) const {
        std::size_t shared = 0;
        for (std::size_t i = 0; i < std::min(m_chunks.size(), other.m_chunks.size()); ++i) {
            if (m_chunks[i] == other.m_chunks[i]) ++shared;
        }
        return shared;
    }

    friend bool operator==(const CowArray& lhs, const CowArray& rhs) {
        return lhs.m_size == rhs.m_size &&
               (lhs.m_chunks == rhs.m_chunks || std::equal(lhs.begin(), lhs.end(), rhs.begin()));
    }

private:
    using Chunk = std::vector<T>;

    std::vector<std::shared_ptr<Chunk>> m_chunks;
    std::size_t m_size = 0;

    Chunk& writableChunk(std::size_t chunkIndex) {
        auto& chunk = m_chunks[chunkIndex];
        if (chunk.use_count() > 1) chunk = std::make_shared<Chunk>(*chunk);
        return *chunk;
    }

    void appendAll(std::vector<T> items) {
        for (auto& item : items) append(std::move(item));
    }

    // Removes and returns the items from `index` on; the chunks before it stay shared.
    std::vector<T> takeFrom(std::size_t index) {
        const std::size_t firstChunk = index / kChunkSize;
        std::vector<T> tail;
        tail.reserve(m_size - firstChunk * kChunkSize);
        for (std::size_t i = firstChunk * kChunkSize; i < m_size; ++i) tail.push_back((*this)[i]);
        m_chunks.resize(firstChunk);
        m_size = firstChunk * kChunkSize;
        // The part of the first chunk before `index` comes back in front of the tail.
        std::vector<T> kept(tail.begin(), tail.begin() + static_cast<std::ptrdiff_t>(index % kChunkSize));
        appendAll(std::move(kept));
        tail.erase(tail.begin(), tail.begin() + static_cast<std::ptrdiff_t>(index % kChunkSize));
        return tail;
    }
};

} // namespace platform
