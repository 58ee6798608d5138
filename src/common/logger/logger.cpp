#include "common/logger/logger.h"

#include "common/logger/format_text.h"
#include "common/windows.h"

#include <array>
#include <ctime>
#include <cwchar>

namespace {

constexpr std::size_t kMessageCharacters = 255;  // the terminator included
constexpr std::size_t kTimeCharacters = 80;

using MessageBuffer = std::array<wchar_t, kMessageCharacters>;

void ReportThrowingOutput(const wchar_t* format) noexcept {
    MessageBuffer message{};
    _snwprintf(message.data(), message.size() - 1, L"Exception in CLogger::Write while writing %s", format);
    OutputDebugStringW(message.data());
}

}  // namespace

int CLogger::Write(int level, const wchar_t* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    int delivered = 0;
    try {
        if (level <= GetLevel()) {
            if (IsSeen(level)) {
                FormatAndOutput(level, format, arguments);
            }
            delivered = 1;
        }
    } catch (...) {
        ReportThrowingOutput(format);
    }
    va_end(arguments);
    return delivered;
}

void CLogger::FormatAndOutput(int level, const wchar_t* format, std::va_list arguments) {
    MessageBuffer message{};
    // The last element is never written, so that a cut message still ends.
    _vsnwprintf(message.data(), message.size() - 1, format, arguments);
    Output(level, message.data(), wcsnlen(message.data(), message.size()));
}

int CLogger::WriteTextAsFormat(int level, const wchar_t* text, std::size_t argument) {
    try {
        if (level > GetLevel()) {
            return 0;
        }
        FormatBuffer format{};
        EscapeUnsafeConversions(text, format);
        constexpr std::size_t kNone = 0;
        static_assert(kSafeConversions == 4, "one argument for each conversion that is let through");
        return Write(level, format.data(), argument, kNone, kNone, kNone);
    } catch (...) {
        ReportThrowingOutput(text);
        return 0;
    }
}

void CLogger::FormatTime(std::wstring& result) const {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    std::array<wchar_t, kTimeCharacters> text{};
    if (localtime_s(&local, &now) == 0) {
        wcsftime(text.data(), text.size(), L"%m/%d/%Y %I:%M:%S %p ", &local);
    }
    result = text.data();
}
