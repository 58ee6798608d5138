#pragma once

#include "common/logger/debug_logger.h"
#include "orvane/orvane.h"

// Passes every message to the host's callback, or to the debugger output if no callback is set.
class OrvaneLogger final : public CLogger {
public:
    constexpr OrvaneLogger() = default;

    void Output(int level, const wchar_t* text, std::size_t length) override;
    int GetLevel() const override;
    // Without a callback, the debugger output's level applies.
    bool IsSeen(int level) const override { return callback_ != nullptr || level <= fallback_.GetLevel(); }

    // Replaces the callback; null restores the debugger output.
    void SetCallback(OrvaneEventCallback callback);

private:
    CDebugLogger fallback_;
    OrvaneEventCallback callback_ = nullptr;
};

// The process-wide logger. It exists from load to unload.
OrvaneLogger& GetLogger();

// Logs a failed assertion at level 3. `source` is the file or folder that contains the assertion.
void LogAssertionFailure(const wchar_t* source, int line, const wchar_t* condition);
