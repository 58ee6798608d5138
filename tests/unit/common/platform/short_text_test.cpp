#include "common/platform/short_text.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

namespace {

TEST(ShortText, Number_Any_IsPlainDecimal) {
    EXPECT_EQ(ShortText(0), L"0");
    EXPECT_EQ(ShortText(std::uint8_t{65}), L"65");
    EXPECT_EQ(ShortText(-1234567), L"-1234567");
    EXPECT_EQ(ShortText(std::numeric_limits<std::int64_t>::min()), L"-9223372036854775808");
    EXPECT_EQ(ShortText(std::numeric_limits<std::uint64_t>::max()), L"18446744073709551615");
}

TEST(ShortText, Guid_Any_IsInUpperCaseAndBraces) {
    EXPECT_EQ(ShortText(GUID{}), L"{00000000-0000-0000-0000-000000000000}");
    EXPECT_EQ(ShortText(GUID{0xebd0a0a2, 0xb9e5, 0x4433, {0x87, 0xc0, 0x68, 0xb6, 0xb7, 0x26, 0x99, 0xc7}}),
              L"{EBD0A0A2-B9E5-4433-87C0-68B6B72699C7}");
    EXPECT_EQ(ShortText(GUID{1, 2, 3, {4, 5, 6, 7, 8, 9, 10, 11}}),
              L"{00000001-0002-0003-0405-060708090A0B}");
}

}  // namespace
