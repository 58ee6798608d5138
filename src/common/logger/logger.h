#pragma once

#include <cstddef>
#include <string>

// Levels of a message; smaller is more severe. Level 1 is reserved.
enum LogLevel : int {
    kLogError = 2,
    kLogWarning = 3,
    kLogInformation = 4,
    kLogTrace = 5,
};

// A sink of finished messages with a threshold. Never throws to its callers; no locks.
class CLogger {
public:
    constexpr CLogger() = default;
    virtual ~CLogger() = default;
    CLogger(const CLogger&) = delete;
    CLogger& operator=(const CLogger&) = delete;

    // Delivers one finished message. `text` is terminated; `length` is its length in characters.
    virtual void Output(int level, const wchar_t* text, std::size_t length) = 0;
    // The highest level that this logger lets through.
    virtual int GetLevel() const = 0;
    // Puts the local time as "03/07/2021 02:05:09 PM " (trailing blank) into `result`.
    virtual void FormatTime(std::wstring& result) const;
    // Whether anybody sees messages of that level, which this logger lets through. What nobody sees is not
    // formatted.
    virtual bool IsSeen(int /*level*/) const { return true; }

    // Formats as the platform's wide printf does (%s wide, %S narrow), cut at 254 characters, and outputs it.
    // Returns 1 when the message was delivered, 0 when it was dropped by its level or something threw.
    int Write(int level, const wchar_t* format, ...);

    // Outputs a text that is itself read as a format: "%d" prints `argument`, "%%" one percent sign.
    // Conversions that would follow a pointer nobody passed ("%s", "%n") stand in the output as they are.
    int WriteTextAsFormat(int level, const wchar_t* text, std::size_t argument = 0);

private:
    template <class Compose>
    int Deliver(int level, const wchar_t* given, Compose&& compose);
};
