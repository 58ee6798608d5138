// Texts as BSTR functions of the system see them.

#include "common/xml/bstr_argument.h"

#include "support/stub.h"

#include <comdef.h>
#include <gmock/gmock.h>

#include <cstdint>
#include <string>

namespace {

using support::StubImport;

class BstrArgumentLengths : public testing::TestWithParam<std::size_t> {
protected:
    void ExpectText(BSTR bstr) const {
        ASSERT_NE(bstr, nullptr);
        EXPECT_EQ(SysStringLen(bstr), GetParam());
        EXPECT_EQ(SysStringByteLen(bstr), GetParam() * sizeof(wchar_t));
        EXPECT_EQ(std::wstring(bstr), text_);  // up to the terminator
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(bstr) % sizeof(void*), 0U);
    }

    std::wstring text_ = std::wstring(GetParam(), L'x');
};

TEST_P(BstrArgumentLengths, WideText_HasItsLengthAndATerminator) {
    BstrArgument argument{std::wstring_view(text_)};
    ExpectText(argument.get());
}

TEST_P(BstrArgumentLengths, AsciiText_HasItsLengthAndATerminator) {
    const std::string narrow(GetParam(), 'x');
    BstrArgument argument(narrow.c_str());
    ExpectText(argument.get());
}

TEST_P(BstrArgumentLengths, Copy_IsTheWholeText) {
    BstrArgument argument{std::wstring_view(text_)};
    BSTR copy = SysAllocStringLen(argument.get(), SysStringLen(argument.get()));
    EXPECT_EQ(std::wstring(copy, SysStringLen(copy)), text_);
    SysFreeString(copy);
}

INSTANTIATE_TEST_SUITE_P(AroundTheLengthKeptInPlace, BstrArgumentLengths,
                         testing::Values(0, 1, BstrArgument::kShort - 1, BstrArgument::kShort,
                                         BstrArgument::kShort + 1, 5000));

TEST(BstrArgument, ZeroCharacter_EndsTheText) {
    BstrArgument argument{std::wstring_view(L"be\0fore", 7)};
    EXPECT_EQ(SysStringLen(argument.get()), 2U);
    EXPECT_EQ(std::wstring(argument.get()), L"be");
}

TEST(BstrArgument, CharactersThatXmlForbids_AreReplacedBeforeTheFirstZero) {
    BstrArgument argument{std::wstring_view(L"\x0001\tx\xD83D\0\xDE00", 6)};
    EXPECT_EQ(SysStringLen(argument.get()), 4U);
    EXPECT_EQ(std::wstring(argument.get()), L"\xFFFD\tx\xFFFD");
}

TEST(BstrArgument, CharactersThatXmlForbids_AreReplacedInALongTextToo) {
    const std::wstring plain(BstrArgument::kShort, L'x');
    BstrArgument argument{std::wstring_view(plain + L"\xFFFE\xD83D\xDE00" + plain)};
    EXPECT_EQ(std::wstring(argument.get()), plain + L"\xFFFD\xD83D\xDE00" + plain);
}

TEST(BstrArgument, ByteBeyondAscii_IsNotWidenedWithASign) {
    BstrArgument argument("\x80z\xFF");
    EXPECT_EQ(std::wstring(argument.get()), L"\x80z\xFF");
}

TEST(BstrArgument, LongTextThatEndsEarly_IsShort) {
    std::wstring text(BstrArgument::kShort * 2, L'x');
    text[1] = L'\0';
    BstrArgument argument{std::wstring_view(text)};
    EXPECT_EQ(SysStringLen(argument.get()), 1U);
}

TEST(BstrArgument, NoMemory_FailsForALongTextOnly) {
    const StubImport none("SysAllocStringLen", &::SysAllocStringLen,
                          [](const OLECHAR*, UINT) -> BSTR { return nullptr; });
    BstrArgument kept{std::wstring(BstrArgument::kShort, L'x')};
    EXPECT_EQ(SysStringLen(kept.get()), BstrArgument::kShort);
    try {
        BstrArgument too_long{std::wstring(BstrArgument::kShort + 1, L'x')};
        ADD_FAILURE() << "nothing was thrown";
    } catch (const _com_error& error) {
        EXPECT_EQ(error.Error(), E_OUTOFMEMORY);
    }
}

}  // namespace
