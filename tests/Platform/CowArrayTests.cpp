#include "Platform/Foundation/CowArray.h"

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

using platform::CowArray;
using Strings = std::vector<std::string>;

TEST(CowArray, CopiesShareStorageUntilOneChanges) {
    CowArray<std::string> original{"a", "b", "c"};
    CowArray<std::string> copy = original;
    EXPECT_TRUE(copy.sharesStorageWith(original));
    copy.append("d");
    EXPECT_FALSE(copy.sharesStorageWith(original));
    EXPECT_EQ(original.toVector(), (Strings{"a", "b", "c"}));
    EXPECT_EQ(copy.toVector(), (Strings{"a", "b", "c", "d"}));

    // The original changing must not reach the copy either.
    const CowArray<std::string> snapshot = original;
    original.replace(0, "z");
    EXPECT_EQ(original.toVector(), (Strings{"z", "b", "c"}));
    EXPECT_EQ(snapshot.toVector(), (Strings{"a", "b", "c"}));
}

TEST(CowArray, RemoveAllKeepsOrderAndDoesNotDetachWithoutMatches) {
    CowArray<int> numbers{5, 1, 4, 2, 3, 6};
    const CowArray<int> copy = numbers;
    EXPECT_EQ(numbers.removeAll([](int n) { return n > 10; }), 0u);
    EXPECT_TRUE(numbers.sharesStorageWith(copy));
    EXPECT_EQ(numbers.removeAll([](int n) { return n % 2 == 0; }), 3u);
    EXPECT_EQ(numbers.toVector(), (std::vector<int>{5, 1, 3}));
    EXPECT_EQ(copy.toVector(), (std::vector<int>{5, 1, 4, 2, 3, 6}));
}

// A default array has no storage at all until something is added.
TEST(CowArray, DefaultArrayIsEmptyAndUsable) {
    CowArray<int> empty;
    EXPECT_TRUE(empty == CowArray<int>(std::vector<int>{}));
    EXPECT_EQ(empty.removeAll([](int) { return true; }), 0u);
    empty.append(7);
    EXPECT_EQ(empty.toVector(), std::vector<int>{7});
}

// What keeps undo snapshots of a large workspace cheap: a change copies only its chunks.
TEST(CowArray, ChangesCopyOnlyTheChunksTheyTouchAcrossChunkBoundaries) {
    constexpr std::size_t chunk = CowArray<int>::kChunkSize;
    std::vector<int> values(chunk * 3 + 10);
    for (std::size_t i = 0; i < values.size(); ++i) values[i] = static_cast<int>(i);
    CowArray<int> large(values);
    const CowArray<int> snapshot = large;

    large.append(-1);
    EXPECT_EQ(large.sharedChunkCount(snapshot), 3u); // only the last chunk was copied
    large.replace(1, -2);
    EXPECT_EQ(large.sharedChunkCount(snapshot), 2u);
    EXPECT_EQ(large.updateEach([](int n) { return n == static_cast<int>(chunk) * 2 ? std::optional(-3) : std::nullopt; }), 1u);
    EXPECT_EQ(large.sharedChunkCount(snapshot), 1u);
    EXPECT_EQ(snapshot.toVector(), values);

    // Inserting and removing across chunk boundaries keeps every item in order.
    large.insert(chunk - 1, 100);
    large.remove(0);
    large.move(0, large.size() - 1);
    std::vector<int> expected = values;
    expected.push_back(-1);
    expected[1] = -2;
    expected[chunk * 2] = -3;
    expected.insert(expected.begin() + static_cast<std::ptrdiff_t>(chunk - 1), 100);
    expected.erase(expected.begin());
    std::rotate(expected.begin(), expected.begin() + 1, expected.end());
    EXPECT_EQ(large.toVector(), expected);
    EXPECT_EQ(large.size(), expected.size());
    EXPECT_EQ(large[chunk], expected[chunk]);
}
