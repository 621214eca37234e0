#pragma once

#include <algorithm>
#include <cstddef>
#include <initializer_list>
#include <memory>
#include <utility>
#include <vector>

namespace platform {

// A vector with value semantics whose copies share storage until one of them changes.
// Snapshots of a large workspace (for undo, for background analysis) cost a pointer
// copy per array instead of a deep copy.
template <class T>
class CowArray {
public:
    using value_type = T;
    using const_iterator = typename std::vector<T>::const_iterator;

    CowArray() = default;
    CowArray(std::vector<T> items) : m_items(std::make_shared<std::vector<T>>(std::move(items))) {}
    CowArray(std::initializer_list<T> items) : CowArray(std::vector<T>(items)) {}

    const std::vector<T>& items() const { return m_items ? *m_items : empty(); }
    std::size_t size() const { return items().size(); }
    bool isEmpty() const { return items().empty(); }
    const_iterator begin() const { return items().begin(); }
    const_iterator end() const { return items().end(); }
    const T& operator[](std::size_t index) const { return items()[index]; }

    // The storage, made unique first, for changing in place.
    std::vector<T>& mutate() {
        if (!m_items) {
            m_items = std::make_shared<std::vector<T>>();
        } else if (m_items.use_count() > 1) {
            m_items = std::make_shared<std::vector<T>>(*m_items);
        }
        return *m_items;
    }

    void append(T item) { mutate().push_back(std::move(item)); }
    void insert(std::size_t index, T item) { auto& v = mutate(); v.insert(v.begin() + index, std::move(item)); }
    void replace(std::size_t index, T item) { mutate()[index] = std::move(item); }
    void remove(std::size_t index) { auto& v = mutate(); v.erase(v.begin() + index); }

    // Removes the matching items, keeping the order of the rest; returns how many went.
    template <class Predicate>
    std::size_t removeAll(Predicate predicate) {
        if (std::none_of(begin(), end(), predicate)) return 0;
        return std::erase_if(mutate(), predicate);
    }

    // True when both share one storage: a copy that nothing has changed since.
    bool sharesStorageWith(const CowArray& other) const { return m_items && m_items == other.m_items; }

    friend bool operator==(const CowArray& lhs, const CowArray& rhs) {
        return lhs.m_items == rhs.m_items || lhs.items() == rhs.items();
    }

private:
    static const std::vector<T>& empty() {
        static const std::vector<T> none;
        return none;
    }

    std::shared_ptr<std::vector<T>> m_items;
};

} // namespace platform
