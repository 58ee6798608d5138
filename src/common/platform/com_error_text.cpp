#include "common/platform/com_error_text.h"

#include <array>
#include <cwchar>
#include <memory>

namespace {

constexpr HRESULT kFirstAutomationError = static_cast<HRESULT>(0x80040200);
constexpr HRESULT kLastAutomationError = static_cast<HRESULT>(0x8004FFFF);

struct FreeLocal {
    void operator()(wchar_t* text) const { LocalFree(text); }
};

std::wstring SystemMessage(HRESULT result) {
    wchar_t* text = nullptr;
    const DWORD length = FormatMessageW(
        FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
        static_cast<DWORD>(result), 0, reinterpret_cast<wchar_t*>(&text), 0, nullptr);
    const std::unique_ptr<wchar_t, FreeLocal> owner(text);
    std::wstring message(text, text + (text == nullptr ? 0 : length));
    if (message.ends_with(L"\r\n")) {
        message.resize(message.size() - 2);
    }
    return message;
}

std::wstring Numbered(const wchar_t* format, HRESULT number) {
    std::array<wchar_t, 64> text{};
    _snwprintf(text.data(), text.size() - 1, format, number);
    return text.data();
}

}  // namespace

std::wstring ComErrorText(HRESULT result) {
    std::wstring message = SystemMessage(result);
    if (!message.empty()) {
        return message;
    }
    if (result > kFirstAutomationError && result <= kLastAutomationError) {
        return Numbered(L"IDispatch error #%d", result - kFirstAutomationError);
    }
    return Numbered(L"Unknown error 0x%0lX", result);
}
