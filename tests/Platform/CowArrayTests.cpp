#include "Platform/Foundation/CowArray.h"

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
    EXPECT_EQ(original.items(), (Strings{"a", "b", "c"}));
    EXPECT_EQ(copy.items(), (Strings{"a", "b", "c", "d"}));

    // The original changing must not reach the copy either.
    const CowArray<std::string> snapshot = original;
    original.replace(0, "z");
    EXPECT_EQ(original.items(), (Strings{"z", "b", "c"}));
    EXPECT_EQ(snapshot.items(), (Strings{"a", "b", "c"}));
}

TEST(CowArray, RemoveAllKeepsOrderAndDoesNotDetachWithoutMatches) {
    CowArray<int> numbers{5, 1, 4, 2, 3, 6};
    const CowArray<int> copy = numbers;
    EXPECT_EQ(numbers.removeAll([](int n) { return n > 10; }), 0u);
    EXPECT_TRUE(numbers.sharesStorageWith(copy));
    EXPECT_EQ(numbers.removeAll([](int n) { return n % 2 == 0; }), 3u);
    EXPECT_EQ(numbers.items(), (std::vector<int>{5, 1, 3}));
    EXPECT_EQ(copy.items(), (std::vector<int>{5, 1, 4, 2, 3, 6}));
}

// A default array has no storage at all until something is added.
TEST(CowArray, DefaultArrayIsEmptyAndUsable) {
    CowArray<int> empty;
    EXPECT_TRUE(empty == CowArray<int>(std::vector<int>{}));
    EXPECT_EQ(empty.removeAll([](int) { return true; }), 0u);
    empty.append(7);
    EXPECT_EQ(empty.items(), std::vector<int>{7});
}
