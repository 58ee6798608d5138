#include "tools/orvane/console.h"

#include <io.h>

#include <cstdio>
#include <cstdlib>

namespace host {

namespace {

// The NO_COLOR convention: https://no-color.org
bool ColourIsUnwanted() {
    return _wgetenv(L"NO_COLOR") != nullptr;
}

}  // namespace

Console::Console()
    : output_(reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(stdout)))),
      former_code_page_(GetConsoleOutputCP()) {
    // All output is UTF-8, so the console must use that code page.
    SetConsoleOutputCP(CP_UTF8);
    if (_isatty(_fileno(stdout)) != 0 && !ColourIsUnwanted() &&
        GetConsoleMode(output_, &former_mode_) != FALSE) {
        colour_ = SetConsoleMode(output_, former_mode_ | ENABLE_VIRTUAL_TERMINAL_PROCESSING) != FALSE;
    }
}

Console::~Console() {
    if (colour_) {
        SetConsoleMode(output_, former_mode_);
    }
    if (former_code_page_ != 0) {
        SetConsoleOutputCP(former_code_page_);
    }
}

std::optional<std::size_t> Console::width() const {
    CONSOLE_SCREEN_BUFFER_INFO information{};
    if (GetConsoleScreenBufferInfo(output_, &information) == FALSE) {
        return std::nullopt;
    }
    // A line that fills the window would be followed by an empty one.
    const int columns = information.srWindow.Right - information.srWindow.Left;
    return columns > 0 ? std::optional(static_cast<std::size_t>(columns)) : std::nullopt;
}

}  // namespace host
