#pragma once

#include "common/logger/logger.h"

// Writes levels 1 to 3 with a local time stamp, one line each, to the platform's debugger output.
class CDebugLogger final : public CLogger {
public:
    void Output(int level, const wchar_t* text, std::size_t length) override;
    int GetLevel() const override { return kLogWarning; }
};
