#include "support/text.h"

#include "common/windows.h"

namespace support {
namespace {

std::wstring FromCodePage(UINT code_page, std::string_view text) {
    const auto length = static_cast<int>(text.size());
    std::wstring wide(
        static_cast<std::size_t>(MultiByteToWideChar(code_page, 0, text.data(), length, nullptr, 0)), L'\0');
    MultiByteToWideChar(code_page, 0, text.data(), length, wide.data(), static_cast<int>(wide.size()));
    return wide;
}

std::string ToCodePage(UINT code_page, std::wstring_view text) {
    const auto length = static_cast<int>(text.size());
    std::string narrow(static_cast<std::size_t>(WideCharToMultiByte(code_page, 0, text.data(), length,
                                                                    nullptr, 0, nullptr, nullptr)),
                       '\0');
    WideCharToMultiByte(code_page, 0, text.data(), length, narrow.data(), static_cast<int>(narrow.size()),
                        nullptr, nullptr);
    return narrow;
}

}  // namespace

std::wstring Wide(std::string_view ansi) {
    return FromCodePage(CP_ACP, ansi);
}

std::string Ansi(std::wstring_view wide) {
    return ToCodePage(CP_ACP, wide);
}

std::string Utf8(std::wstring_view wide) {
    return ToCodePage(CP_UTF8, wide);
}

std::wstring WideFromUtf8(std::string_view utf8) {
    return FromCodePage(CP_UTF8, utf8);
}

std::wstring MultiString(std::initializer_list<std::wstring_view> entries) {
    std::wstring list;
    for (const std::wstring_view entry : entries) {
        list.append(entry).push_back(L'\0');
    }
    list.push_back(L'\0');
    return list;
}

}  // namespace support
