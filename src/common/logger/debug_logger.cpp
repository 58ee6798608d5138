#include "common/logger/debug_logger.h"

#include "common/windows.h"

void CDebugLogger::Output(int /*level*/, const wchar_t* text, std::size_t /*length*/) {
    std::wstring line;
    FormatTime(line);
    line += text;
    if (!line.empty() && line.back() != L'\n') {
        line += L"\n";
    }
    OutputDebugStringW(line.c_str());
}
