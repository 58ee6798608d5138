#include "machine/description/text.h"

#include <gtest/gtest.h>

namespace machine {
namespace {

TEST(WideText, UnitsOfBytes_AreLittleEndian) {
    EXPECT_EQ(WideText({0x41, 0x00, 0xE9, 0x20}), L"A\x20E9");
}

TEST(WideText, NoBytes_AreNoText) {
    EXPECT_EQ(WideText({}), L"");
}

TEST(WideText, OddByteAtTheEnd_IsLeftOut) {
    EXPECT_EQ(WideText({0x41, 0x00, 0x42}), L"A");
    EXPECT_EQ(WideText({0x41}), L"");
}

}  // namespace
}  // namespace machine
