#include "documents/text/encoding.h"

#include "documents/text/code_pages.h"
#include "documents/text/read_error.h"
#include "documents/text/utf8.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <utility>

namespace documents {

namespace {

constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view kUtf16LittleMark = "\xFF\xFE";
constexpr std::string_view kUtf16BigMark = "\xFE\xFF";

constexpr unsigned kUtf8 = 65001;

std::string HexOf(unsigned char byte) {
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    return std::string("0x") + kDigits[byte >> 4U] + kDigits[byte & 0xFU];
}

std::string Lower(std::string_view text) {
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(), [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter + 32) : letter;
    });
    return lower;
}

// The value of `encoding` in an XML declaration at the beginning; empty if there is none.
std::string_view DeclaredEncoding(std::string_view bytes) {
    constexpr std::string_view kBegin = "<?xml";
    constexpr std::string_view kName = "encoding";
    const std::size_t end = bytes.substr(0, 1024).find("?>");
    if (!bytes.starts_with(kBegin) || end == std::string_view::npos) {
        return {};
    }
    std::string_view rest = bytes.substr(0, end);
    const std::size_t name = rest.find(kName);
    if (name == std::string_view::npos) {
        return {};
    }
    rest.remove_prefix(name + kName.size());
    const std::size_t open = rest.find_first_of("\"'");
    if (open == std::string_view::npos) {
        return {};
    }
    const std::size_t close = rest.find(rest[open], open + 1);
    return close == std::string_view::npos ? std::string_view() : rest.substr(open + 1, close - open - 1);
}

// The code page of an encoding's name: "UTF-8", "windows-1252", "cp850", "IBM437". Throws ReadError.
unsigned CodePageOf(std::string_view name) {
    const std::string lower = Lower(name);
    if (lower == "utf-8" || lower == "utf8" || lower == "us-ascii") {
        return kUtf8;
    }
    if (lower == "utf-16") {
        throw ReadError("line 1, column 1", "declares UTF-16, but has no byte order mark");
    }
    for (const std::string_view prefix : {"windows-", "cp", "ibm", "ibm-"}) {
        unsigned number = 0;
        const char* const end = lower.data() + lower.size();
        if (lower.starts_with(prefix)) {
            const auto [last, error] = std::from_chars(lower.data() + prefix.size(), end, number);
            if (error == std::errc() && last == end && FindCodePage(number) != nullptr) {
                return number;
            }
        }
    }
    throw ReadError("line 1, column 1",
                    "declares the encoding " + std::string(name) + ", which is not supported");
}

std::string FromCodePage(std::string_view bytes, const CodePage& page) {
    std::size_t length = 0;
    for (const char byte : bytes) {
        const auto value = static_cast<unsigned char>(byte);
        length += value < 0x80 ? 1U : page.upper[value - 0x80U] < 0x800 ? 2U : 3U;
    }
    std::string utf8;
    utf8.reserve(length);
    for (const char byte : bytes) {
        const auto value = static_cast<unsigned char>(byte);
        const char32_t code = value < 0x80 ? char32_t{value} : char32_t{page.upper[value - 0x80U]};
        if (code == 0 && value != 0) {
            throw ReadError(
                PlaceOf(utf8, utf8.size()),
                "the byte " + HexOf(value) + " is no character of code page " + std::to_string(page.number));
        }
        AppendUtf8(utf8, code);
    }
    return utf8;
}

std::string FromUtf16Bytes(std::string_view bytes, bool little) {
    std::string utf8;
    utf8.reserve(bytes.size() / 2 * 3 / 2);
    const auto unit_at = [&](std::size_t at) {
        const auto first = static_cast<unsigned char>(bytes[at]);
        const auto second = static_cast<unsigned char>(bytes[at + 1]);
        return static_cast<char32_t>(little ? first | (second << 8U) : (first << 8U) | second);
    };
    const auto refuse = [&](const char* reason) { throw ReadError(PlaceOf(utf8, utf8.size()), reason); };
    std::size_t at = 0;
    for (; at + 1 < bytes.size(); at += 2) {
        char32_t code = unit_at(at);
        if (code >= 0xD800 && code < 0xE000) {
            const char32_t low = code < 0xDC00 && at + 3 < bytes.size() ? unit_at(at + 2) : 0;
            if (low < 0xDC00 || low >= 0xE000) {
                refuse("half of a surrogate pair is no character of UTF-16");
            }
            code = 0x10000U + ((code - 0xD800U) << 10U) + (low - 0xDC00U);
            at += 2;
        }
        AppendUtf8(utf8, code);
    }
    if (at != bytes.size()) {
        refuse("half of a character of UTF-16 ends the file");
    }
    return utf8;
}

// Eight bytes at a time, because nearly all of a document is ASCII.
std::size_t AsciiEnd(std::string_view text, std::size_t at) {
    constexpr std::uint64_t kHighBits = 0x8080808080808080U;
    std::uint64_t eight = 0;
    while (at + sizeof(eight) <= text.size()) {
        std::memcpy(&eight, text.data() + at, sizeof(eight));
        if ((eight & kHighBits) != 0) {
            break;
        }
        at += sizeof(eight);
    }
    while (at < text.size() && static_cast<unsigned char>(text[at]) < 0x80) {
        ++at;
    }
    return at;
}

void RequireUtf8(std::string_view text) {
    for (std::size_t at = AsciiEnd(text, 0); at < text.size(); at = AsciiEnd(text, at)) {
        const std::size_t length = FirstCharacter(text.substr(at, 4)).length;
        if (length == 0) {
            throw ReadError(PlaceOf(text, at), "the byte " + HexOf(static_cast<unsigned char>(text[at])) +
                                                   " is not UTF-8; --code-page says another encoding");
        }
        at += length;
    }
}

}  // namespace

std::string DecodeText(std::string bytes, const std::optional<unsigned>& code_page) {
    if (bytes.size() > kLargestDocument) {
        throw ReadError("line 1, column 1", "the file is larger than 256 MiB");
    }
    if (bytes.starts_with(kUtf16LittleMark) || bytes.starts_with(kUtf16BigMark)) {
        return FromUtf16Bytes(std::string_view(bytes).substr(2), bytes.starts_with(kUtf16LittleMark));
    }
    unsigned number = code_page.value_or(kUtf8);
    if (bytes.starts_with(kUtf8Mark)) {
        bytes.erase(0, kUtf8Mark.size());
        number = kUtf8;
    } else if (const std::string_view name = DeclaredEncoding(bytes); !name.empty()) {
        number = CodePageOf(name);
    }
    if (const CodePage* const page = FindCodePage(number); page != nullptr) {
        return FromCodePage(bytes, *page);
    }
    RequireUtf8(bytes);
    return bytes;
}

std::string DecodeMarkedText(std::string bytes) {
    for (const std::string_view mark : {kUtf8Mark, kUtf16LittleMark, kUtf16BigMark}) {
        if (bytes.starts_with(mark)) {
            return DecodeText(std::move(bytes), std::nullopt);
        }
    }
    return bytes;
}

}  // namespace documents
