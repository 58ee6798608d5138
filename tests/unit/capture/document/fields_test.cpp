#include "capture/document/fields.h"

#include <gtest/gtest.h>

#include <limits>
#include <locale>

namespace {

TEST(ValueText, Numbers_ArePlainDecimal) {
    EXPECT_EQ(ValueText(std::int32_t{0}), L"0");
    EXPECT_EQ(ValueText(std::numeric_limits<std::int32_t>::min()), L"-2147483648");
    EXPECT_EQ(ValueText(std::numeric_limits<std::int32_t>::max()), L"2147483647");
    EXPECT_EQ(ValueText(std::numeric_limits<std::uint32_t>::max()), L"4294967295");
    EXPECT_EQ(ValueText(std::numeric_limits<std::int64_t>::min()), L"-9223372036854775808");
    EXPECT_EQ(ValueText(std::numeric_limits<std::uint64_t>::max()), L"18446744073709551615");
    EXPECT_EQ(ValueText(std::uint8_t{7}), L"7");
}

TEST(ValueText, Bool_IsOneOrZero) {
    EXPECT_EQ(ValueText(true), L"1");
    EXPECT_EQ(ValueText(false), L"0");
}

TEST(ValueText, Guid_IsInRegistryForm) {
    const GUID guid{0xc12a7328, 0xf81f, 0x11d2, {0xba, 0x4b, 0x00, 0xa0, 0xc9, 0x3e, 0xc9, 0x3b}};
    EXPECT_EQ(ValueText(guid), L"{C12A7328-F81F-11D2-BA4B-00A0C93EC93B}");
    EXPECT_EQ(ValueText(GUID{}), L"{00000000-0000-0000-0000-000000000000}");
}

TEST(ValueText, Text_StandsAsItIs) {
    EXPECT_EQ(ValueText(std::wstring(L" <a> & 007 ")), L" <a> & 007 ");
}

// A locale with grouped digits, which a host may have set for its own output.
class Grouping : public std::numpunct<wchar_t> {
    wchar_t do_thousands_sep() const override { return L'.'; }
    std::string do_grouping() const override { return "\3"; }
};

TEST(ValueText, HostsLocale_DoesNotGroupDigits) {
    const std::locale former = std::locale::global(std::locale(std::locale::classic(), new Grouping));
    EXPECT_EQ(ValueText(std::uint64_t{1234567}), L"1234567");
    EXPECT_EQ(ValueText(std::int32_t{-1234567}), L"-1234567");
    std::locale::global(former);
}

}  // namespace
