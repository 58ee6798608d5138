#include "tools/orvane/text_encoding.h"

#include "common/windows.h"
#include "support/text.h"

#include <gtest/gtest.h>

#include <clocale>
#include <string>

namespace {

// Every character of the code page must be converted as the system converts it.
TEST(FromAnsi, EveryByte_BecomesItsCharacter) {
    for (int byte = 1; byte < 256; ++byte) {
        const char narrow = static_cast<char>(byte);
        wchar_t wide = 0;
        if (MultiByteToWideChar(CP_ACP, MB_ERR_INVALID_CHARS, &narrow, 1, &wide, 1) == 1) {
            EXPECT_EQ(host::FromAnsi(std::string(1, narrow)), support::Utf8(std::wstring(1, wide))) << byte;
        }
    }
}

TEST(FromAnsi, Nothing_IsNothing) {
    EXPECT_EQ(host::FromAnsi(""), "");
}

// Sets the C runtime's locale for its lifetime.
class Locale {
public:
    explicit Locale(const char* name) : former_(std::setlocale(LC_CTYPE, nullptr)) {
        std::setlocale(LC_CTYPE, name);
    }
    ~Locale() { std::setlocale(LC_CTYPE, former_.c_str()); }
    Locale(const Locale&) = delete;
    Locale& operator=(const Locale&) = delete;

private:
    std::string former_;
};

TEST(FromLocale, PlainText_IsKept) {
    EXPECT_EQ(host::FromLocale("Volume #1: C:\\ 100 %"), "Volume #1: C:\\ 100 %");
}

TEST(FromLocale, NationalLetter_IsReadInTheLocaleThatIsSet) {
    const Locale locale(".1252");
    EXPECT_EQ(host::FromLocale("\x80 \xFC"), "\xE2\x82\xAC \xC3\xBC");  // euro sign, u with diaeresis
}

}  // namespace
