#include "common/logger/logger.h"

#include "common/logger/format_text.h"
#include "common/windows.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdarg>
#include <ctime>
#include <cwchar>

namespace {

constexpr std::size_t kMessageCharacters = 255;  // the terminator included
constexpr std::size_t kTimeCharacters = 80;

using MessageBuffer = std::array<wchar_t, kMessageCharacters>;

// Appends what fits before the terminator; returns the new length.
template <class Text>
std::size_t Append(MessageBuffer& message, std::size_t length, const Text& text) {
    const std::size_t count = std::min(text.size(), message.size() - 1 - length);
    std::copy_n(text.begin(), count, message.begin() + length);
    return length + count;
}

void ReportThrowingOutput(const wchar_t* format) noexcept {
    MessageBuffer message{};
    _snwprintf(message.data(), message.size() - 1, L"Exception in CLogger::Write while writing %s", format);
    OutputDebugStringW(message.data());
}

}  // namespace

// Makes the message with `compose`, which returns its length, and outputs it where anybody sees it.
template <class Compose>
int CLogger::Deliver(int level, const wchar_t* format, Compose&& compose) {
    try {
        if (level > GetLevel()) {
            return 0;
        }
        if (IsSeen(level)) {
            MessageBuffer message{};
            const std::size_t length = compose(message);
            Output(level, message.data(), length);
        }
        return 1;
    } catch (...) {
        ReportThrowingOutput(format);
        return 0;
    }
}

int CLogger::Write(int level, const wchar_t* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    const int delivered = Deliver(level, format, [&](MessageBuffer& message) {
        // The last element is never written, so that a cut message still ends.
        _vsnwprintf(message.data(), message.size() - 1, format, arguments);
        return wcsnlen(message.data(), message.size());
    });
    va_end(arguments);
    return delivered;
}

int CLogger::WriteFunctionLine(int level, const wchar_t* format, std::wstring_view function, int line) {
    return Deliver(level, format, [&](MessageBuffer& message) {
        const std::wstring_view text = format;
        const std::size_t name = text.find(L"%s");
        const std::size_t number = text.find(L"%d");
        std::array<char, 16> digits{};
        const char* const end = std::to_chars(digits.data(), digits.data() + digits.size(), line).ptr;
        std::size_t length = Append(message, 0, text.substr(0, name));
        length = Append(message, length, function);
        length = Append(message, length, text.substr(name + 2, number - name - 2));
        return Append(message, length, std::string_view(digits.data(), end));
    });
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
