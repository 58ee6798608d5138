#pragma once

#include "common/windows.h"

namespace host {

// The console, if there is one, made ready for what this program writes, and left as it was found.
class Console {
public:
    Console();
    ~Console();
    Console(const Console&) = delete;
    Console& operator=(const Console&) = delete;

    // Whether standard output is a terminal that shows colours to somebody who wants them.
    bool colour() const { return colour_; }

private:
    HANDLE output_;
    UINT former_code_page_;
    DWORD former_mode_ = 0;
    bool colour_ = false;
};

}  // namespace host
