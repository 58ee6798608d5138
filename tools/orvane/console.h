#pragma once

#include "common/windows.h"

#include <cstddef>
#include <optional>

namespace host {

// Sets up the console, if there is one, for UTF-8 and colours. The destructor restores its settings.
class Console {
public:
    Console();
    ~Console();
    Console(const Console&) = delete;
    Console& operator=(const Console&) = delete;

    // Whether standard output is a terminal that supports colours and the user has not disabled them.
    bool colour() const { return colour_; }
    // The number of characters in a line; none if standard output is no terminal.
    std::optional<std::size_t> width() const;

private:
    HANDLE output_;
    UINT former_code_page_;
    DWORD former_mode_ = 0;
    bool colour_ = false;
};

}  // namespace host
