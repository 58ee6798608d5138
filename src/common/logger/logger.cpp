#include "common/logger/logger.h"

#include "common/logger/format_text.h"
#include "common/windows.h"

#include <array>
#include <cstdarg>
#include <ctime>
#include <cwchar>

namespace {

constexpr std::size_t kMessageCharacters = 255;  // including the terminator
constexpr std::size_t kTimeCharacters = 80;

using MessageBuffer = std::array<wchar_t, kMessageCharacters>;

// Ignores the callback, adds no time stamp and logs the format instead of the message: compatibility C5
void ReportThrowingOutput(const wchar_t* given) noexcept {
    MessageBuffer message{};
    _snwprintf(message.data(), message.size() - 1, L"Exception in CLogger::Write while writing %s", given);
    OutputDebugStringW(message.data());
}

}  // namespace

// Lets `compose` build the message and outputs it, unless no output shows that level. `compose` must not
// write the last element, so that a truncated message is null-terminated. `given` is the format or text that
// the caller passed, for the report of an exception.
template <class Compose>
bool CLogger::Deliver(int level, const wchar_t* given, Compose&& compose) {
    try {
        if (level > GetLevel()) {
            return false;
        }
        if (IsSeen(level)) {
            MessageBuffer message{};
            compose(message);
            Output(level, message.data(), wcsnlen(message.data(), message.size()));
        }
        return true;
    } catch (...) {
        ReportThrowingOutput(given);
        return false;
    }
}

bool CLogger::Write(int level, const wchar_t* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    const bool delivered = Deliver(level, format, [&](MessageBuffer& message) {
        _vsnwprintf(message.data(), message.size() - 1, format, arguments);
    });
    va_end(arguments);
    return delivered;
}

bool CLogger::WriteTextAsFormat(int level, const wchar_t* text, std::size_t argument) {
    return Deliver(level, text, [&](MessageBuffer& message) {
        FormatBuffer format{};
        EscapeUnsafeConversions(text, format);
        constexpr std::size_t kNone = 0;
        static_assert(kSafeConversions == 4, "one argument for each conversion that is let through");
        _snwprintf(message.data(), message.size() - 1, format.data(), argument, kNone, kNone, kNone);
    });
}

void CLogger::FormatTime(std::wstring& result) const {
    const std::time_t now = std::time(nullptr);
    std::array<wchar_t, kTimeCharacters> text{};
    // The C runtime keeps the result per thread. (The localtime_s of this compiler is looked up at run time.)
    const std::tm* const local = std::localtime(&now);  // NOLINT(concurrency-mt-unsafe)
    if (local != nullptr) {
        wcsftime(text.data(), text.size(), L"%m/%d/%Y %I:%M:%S %p ", local);
    }
    result = text.data();
}
