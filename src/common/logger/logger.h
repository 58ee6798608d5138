#pragma once

#include <cstddef>
#include <string>

// Message levels; a lower number is more severe. Level 1 is reserved.
enum LogLevel : int {
    kLogError = 2,
    kLogWarning = 3,
    kLogInformation = 4,
    kLogTrace = 5,
};

// Receives formatted messages and filters them by level. Never throws to its callers. Uses no locks.
class CLogger {
public:
    constexpr CLogger() = default;
    virtual ~CLogger() = default;
    CLogger(const CLogger&) = delete;
    CLogger& operator=(const CLogger&) = delete;

    // Outputs one formatted message. `text` is null-terminated; `length` is its length in characters.
    virtual void Output(int level, const wchar_t* text, std::size_t length) = 0;
    // The highest level that this logger outputs.
    virtual int GetLevel() const = 0;
    // Sets `result` to the local time in the form "03/07/2021 02:05:09 PM " (with a trailing blank).
    virtual void FormatTime(std::wstring& result) const;
    // Whether any output shows messages of that level, which GetLevel allows. Other messages are not
    // formatted.
    virtual bool IsSeen(int /*level*/) const { return true; }

    // Formats like the platform's wide printf (%s wide, %S narrow), truncates to 254 characters and outputs
    // the result. Returns false if the level is too high or an exception was thrown.
    bool Write(int level, const wchar_t* format, ...);

    // Outputs a text that is itself used as a format: "%d" prints `argument`, "%%" prints one percent sign.
    // Conversions that would read a missing pointer argument ("%s", "%n") are output unchanged.
    bool WriteTextAsFormat(int level, const wchar_t* text, std::size_t argument = 0);

private:
    template <class Compose>
    bool Deliver(int level, const wchar_t* given, Compose&& compose);
};
