#include "common/text/decimal_text.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

namespace {

TEST(DecimalText, Number_Any_IsPlainDecimal) {
    EXPECT_EQ(DecimalText(0), L"0");
    EXPECT_EQ(DecimalText(std::uint8_t{65}), L"65");
    EXPECT_EQ(DecimalText(-1234567), L"-1234567");
    EXPECT_EQ(DecimalText(std::numeric_limits<std::int64_t>::min()), L"-9223372036854775808");
    EXPECT_EQ(DecimalText(std::numeric_limits<std::uint64_t>::max()), L"18446744073709551615");
}

}  // namespace
