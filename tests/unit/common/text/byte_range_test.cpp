#include "common/text/byte_range.h"

#include "common/text/scope_exit.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace {

constexpr std::int64_t kLargest = INT64_MAX;
constexpr std::int64_t kSmallest = INT64_MIN;

TEST(ByteRange, EndAndLength_AreExclusive) {
    EXPECT_EQ(EndOf(100, 50), 150);
    EXPECT_EQ(LengthBetween(100, 150), 50);
    EXPECT_EQ(LastBefore(150), 149);
    EXPECT_EQ(EndOf(100, 0), 100);
    EXPECT_EQ(LengthBetween(150, 100), -50);
}

TEST(ByteRange, NumbersThatLie_Wrap) {
    EXPECT_EQ(EndOf(kLargest, 1), kSmallest);
    EXPECT_EQ(LengthBetween(kSmallest, kLargest), -1);
    EXPECT_EQ(LastBefore(kSmallest), kLargest);
}

TEST(ByteRange, UsedSpace_IsNeverNegative) {
    EXPECT_EQ(UsedOf(100, 40), 60U);
    EXPECT_EQ(UsedOf(100, 100), 0U);
    EXPECT_EQ(UsedOf(100, 101), 0U);
    EXPECT_EQ(UsedOf(0, UINT64_MAX), 0U);
}

TEST(ScopeExit, Scope_IsLeftByItsEnd_ActsOnceAtTheEnd) {
    int actions = 0;
    {
        const ScopeExit exit([&] { ++actions; });
        EXPECT_EQ(actions, 0);
    }
    EXPECT_EQ(actions, 1);
}

TEST(ScopeExit, Scope_IsLeftByAnException_ActsToo) {
    int actions = 0;
    try {
        const ScopeExit exit([&] { ++actions; });
        throw 1;
    } catch (int) {
        EXPECT_EQ(actions, 1);
    }
    EXPECT_EQ(actions, 1);
}

}  // namespace
