#include "capture/document/fields.h"

#include "support/written_document.h"

#include <gtest/gtest.h>

#include <limits>
#include <locale>
#include <string>

namespace {

// The text of the element that a value becomes.
template <class Value>
std::string TextOf(const Value& value) {
    const XmlTree root = Written([&](CMSXmlNode& node) { AddValue(node, "Element", value); });
    return root.Child("Element").text;
}

TEST(AddValue, Numbers_ArePlainDecimal) {
    EXPECT_EQ(TextOf(std::int32_t{0}), "0");
    EXPECT_EQ(TextOf(std::numeric_limits<std::int32_t>::min()), "-2147483648");
    EXPECT_EQ(TextOf(std::numeric_limits<std::int32_t>::max()), "2147483647");
    EXPECT_EQ(TextOf(std::numeric_limits<std::uint32_t>::max()), "4294967295");
    EXPECT_EQ(TextOf(std::numeric_limits<std::int64_t>::min()), "-9223372036854775808");
    EXPECT_EQ(TextOf(std::numeric_limits<std::uint64_t>::max()), "18446744073709551615");
    EXPECT_EQ(TextOf(std::uint8_t{7}), "7");
}

TEST(AddValue, Bool_IsOneOrZero) {
    EXPECT_EQ(TextOf(true), "1");
    EXPECT_EQ(TextOf(false), "0");
}

TEST(AddValue, Guid_IsInRegistryForm) {
    const GUID guid{0xc12a7328, 0xf81f, 0x11d2, {0xba, 0x4b, 0x00, 0xa0, 0xc9, 0x3e, 0xc9, 0x3b}};
    EXPECT_EQ(TextOf(guid), "{C12A7328-F81F-11D2-BA4B-00A0C93EC93B}");
    EXPECT_EQ(TextOf(GUID{}), "{00000000-0000-0000-0000-000000000000}");
}

// A locale with grouped digits, which a host may have set for its own output.
class Grouping : public std::numpunct<wchar_t> {
    wchar_t do_thousands_sep() const override { return L'.'; }
    std::string do_grouping() const override { return "\3"; }
};

TEST(AddValue, HostsLocale_DoesNotGroupDigits) {
    const std::locale former = std::locale::global(std::locale(std::locale::classic(), new Grouping));
    EXPECT_EQ(TextOf(std::uint64_t{1234567}), "1234567");
    EXPECT_EQ(TextOf(std::int32_t{-1234567}), "-1234567");
    std::locale::global(former);
}

}  // namespace
