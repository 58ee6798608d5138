#pragma once

#include "common/logger/logger.h"

// Writes messages of levels 1 to 3 to the debugger output, one line each, with the local time in front.
class CDebugLogger final : public CLogger {
public:
    void Output(int level, const wchar_t* text, std::size_t length) override;
    int GetLevel() const override { return kLogWarning; }
};
