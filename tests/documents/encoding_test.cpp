#include "documents/text/encoding.h"

#include "documents/text/code_pages.h"
#include "documents/text/read_error.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using documents::DecodeText;

std::string Refusal(const std::string& bytes, std::optional<unsigned> page = {}) {
    try {
        DecodeText(bytes, page);
    } catch (const documents::ReadError& error) {
        return error.what();
    }
    return {};
}

std::string Utf16(const std::u16string& text, bool little) {
    std::string bytes = little ? "\xFF\xFE" : "\xFE\xFF";
    for (const char16_t unit : text) {
        const char low = static_cast<char>(unit & 0xFFU);
        const char high = static_cast<char>(unit >> 8U);
        bytes += little ? low : high;
        bytes += little ? high : low;
    }
    return bytes;
}

TEST(DecodeText, WithoutAnySign_IsUtf8) {
    EXPECT_EQ(DecodeText("<a>\xC3\xBC</a>", {}), "<a>\xC3\xBC</a>");
    EXPECT_EQ(Refusal("<a>\n\xFC</a>"),
              "line 2, column 1: the byte 0xFC is not UTF-8; --code-page says another encoding");
}

TEST(DecodeText, Utf16WithItsMark_IsRead) {
    const std::u16string text = u"<a>\u00FC\U0001F4BE</a>";
    EXPECT_EQ(DecodeText(Utf16(text, true), {}), "<a>\xC3\xBC\xF0\x9F\x92\xBE</a>");
    EXPECT_EQ(DecodeText(Utf16(text, false), {}), "<a>\xC3\xBC\xF0\x9F\x92\xBE</a>");
}

TEST(DecodeText, Mark_CountsMoreThanDeclarationAndCodePage) {
    const std::string declared = "<?xml version=\"1.0\" encoding=\"windows-1252\"?><a>\xC3\xBC</a>";
    EXPECT_EQ(DecodeText("\xEF\xBB\xBF" + declared, 1251), declared);
}

TEST(DecodeText, Declaration_CountsMoreThanCodePage) {
    const std::string begin = "<?xml version='1.0' encoding='Windows-1252'?><a>";
    EXPECT_EQ(DecodeText(begin + "\xFC</a>", 437), begin + "\xC3\xBC</a>");
}

TEST(DecodeText, UnknownDeclaration_IsRefused) {
    EXPECT_EQ(Refusal("<?xml version='1.0' encoding='EBCDIC'?><a/>"),
              "line 1, column 1: declares the encoding EBCDIC, which is not supported");
    EXPECT_EQ(Refusal("<?xml version='1.0' encoding='UTF-16'?><a/>"),
              "line 1, column 1: declares UTF-16, but has no byte order mark");
}

TEST(DecodeText, HalvesOfUtf16_AreRefused) {
    EXPECT_EQ(Refusal(Utf16(u"<a>", true) + "x"),
              "line 1, column 4: half of a character of UTF-16 ends the file");
    EXPECT_EQ(Refusal(Utf16({u'<', 0xDC00, u'x'}, true)),
              "line 1, column 2: half of a surrogate pair is no character of UTF-16");
    EXPECT_EQ(Refusal(Utf16({u'<', 0xD83D}, true)),
              "line 1, column 2: half of a surrogate pair is no character of UTF-16");
}

TEST(DecodeText, InvalidUtf8_IsRefused) {
    for (const char* const bytes :
         {"\xC0\x80", "\xE0\x80\x80", "\xED\xA0\x80", "\xF4\x90\x80\x80", "\x80", "\xC3"}) {
        EXPECT_NE(Refusal(bytes), "") << bytes;
    }
}

TEST(DecodeText, TooLarge_IsRefused) {
    EXPECT_EQ(Refusal(std::string(documents::kLargestDocument + 1, ' ')),
              "line 1, column 1: the file is larger than 256 MiB");
}

struct Sample {
    unsigned page;
    unsigned char byte;
    char32_t code;
};

// From the tables that the makers of the code pages publish.
constexpr Sample kSamples[] = {
    {437, 0x81, 0xFC},    {437, 0xE1, 0xDF},    {850, 0xD5, 0x0131},  {852, 0x88, 0x0142},
    {866, 0x80, 0x0410},  {874, 0xA1, 0x0E01},  {1250, 0xB3, 0x0142}, {1251, 0xC0, 0x0410},
    {1252, 0x80, 0x20AC}, {1252, 0x81, 0x81},   {1253, 0xE1, 0x03B1}, {1254, 0xFD, 0x0131},
    {1255, 0xE0, 0x05D0}, {1256, 0xC7, 0x0627}, {1257, 0xE0, 0x0105}, {1258, 0xD2, 0x0309},
};

TEST(DecodeText, CodePages_HaveTheirCharacters) {
    for (const Sample& sample : kSamples) {
        std::string expected;
        const std::string bytes(1, static_cast<char>(sample.byte));
        const std::string decoded = DecodeText(bytes, sample.page);
        char32_t code = 0;
        const auto byte = [&](std::size_t at) { return static_cast<unsigned char>(decoded.at(at)); };
        code = decoded.size() == 2 ? (byte(0) & 0x1FU) << 6U | (byte(1) & 0x3FU)
                                   : (byte(0) & 0x0FU) << 12U | (byte(1) & 0x3FU) << 6U | (byte(2) & 0x3FU);
        EXPECT_EQ(code, sample.code) << sample.page;
    }
    EXPECT_EQ(documents::CodePages().size(), 14U);
}

TEST(DecodeText, ByteThatACodePageLacks_IsRefused) {
    EXPECT_EQ(Refusal("ab\xD2", 1253), "line 1, column 3: the byte 0xD2 is no character of code page 1253");
}

}  // namespace
