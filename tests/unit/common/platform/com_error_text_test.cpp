#include "common/platform/com_error_text.h"

#include "support/stub.h"

#include <gmock/gmock.h>

#include <cstring>
#include <string>

namespace {

using support::StubImport;

struct Code {
    std::uint32_t result;
    const wchar_t* text;
};

class ComErrorTextWithoutMessage : public testing::TestWithParam<Code> {};

TEST_P(ComErrorTextWithoutMessage, SystemKnowsNoMessage_NamesTheNumber) {
    const StubImport stub(
        "FormatMessageW", &::FormatMessageW,
        [](DWORD, const void*, DWORD, DWORD, wchar_t*, DWORD, va_list*) -> DWORD { return 0; });

    EXPECT_EQ(ComErrorText(static_cast<HRESULT>(GetParam().result)), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(Table, ComErrorTextWithoutMessage,
                         testing::Values(Code{0x80040200, L"Unknown error 0x80040200"},  //
                                         Code{0x80040201, L"IDispatch error #1"},        //
                                         Code{0x80040300, L"IDispatch error #256"},      //
                                         Code{0x8004FFFF, L"IDispatch error #65023"},    //
                                         Code{0x80050000, L"Unknown error 0x80050000"},  //
                                         Code{0x800401FF, L"Unknown error 0x800401FF"},  //
                                         Code{0x8007000E, L"Unknown error 0x8007000E"},  //
                                         Code{0xC0040300, L"Unknown error 0xC0040300"},  //
                                         Code{0x00000001, L"Unknown error 0x1"}));

struct Message {
    const wchar_t* from_system;
    const wchar_t* text;
};

class ComErrorTextWithMessage : public testing::TestWithParam<Message> {};

TEST_P(ComErrorTextWithMessage, SystemKnowsAMessage_IsGivenWithoutItsLineEnd) {
    const std::wstring message = GetParam().from_system;
    DWORD asked = 0;
    const StubImport stub(
        "FormatMessageW", &::FormatMessageW,
        [&](DWORD, const void*, DWORD code, DWORD, wchar_t* buffer, DWORD, va_list*) -> DWORD {
            asked = code;
            const std::size_t bytes = (message.size() + 1) * sizeof(wchar_t);
            void* const copy = LocalAlloc(LMEM_FIXED, bytes);
            std::memcpy(copy, message.c_str(), bytes);
            std::memcpy(buffer, &copy, sizeof(copy));  // as with FORMAT_MESSAGE_ALLOCATE_BUFFER
            return static_cast<DWORD>(message.size());
        });

    EXPECT_EQ(ComErrorText(static_cast<HRESULT>(0x80040300)), GetParam().text);
    EXPECT_EQ(asked, 0x80040300U);
}

INSTANTIATE_TEST_SUITE_P(Table, ComErrorTextWithMessage,
                         testing::Values(Message{L"Invalid pointer.\r\n", L"Invalid pointer."},
                                         Message{L"No line end", L"No line end"},
                                         Message{L"Two lines.\r\nThe second.\r\n",
                                                 L"Two lines.\r\nThe second."},
                                         Message{L"100 %1 %s\r\n", L"100 %1 %s"}));

TEST(ComErrorText, KnownCode_IsTheSystemsOwnText) {
    const std::wstring text = ComErrorText(ERROR_ACCESS_DENIED);

    EXPECT_FALSE(text.empty());
    EXPECT_EQ(text.find_first_of(L"\r\n"), std::wstring::npos);
    EXPECT_EQ(text.find(L"0x"), std::wstring::npos) << testing::PrintToString(text);
}

}  // namespace
