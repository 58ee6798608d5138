#pragma once

#include "common/platform/nt_api_wrapper.h"
#include "common/platform/win_api_wrapper.h"

#include <functional>
#include <ostream>
#include <string>
#include <vector>

// One call of each wrapper, for the tests of what all wrappers have in common.
struct WrapperCall {
    std::string name;                        // without the class; as in its trace lines
    std::function<bool(DWORD& error)> call;  // with handles 0x10; outputs are discarded
    std::string system_function;             // the member of the table that it calls
    std::string failure_line;                // logged when the function fails with error 1167
    int failure_level = 0;                   // host's log level
};

inline void PrintTo(const WrapperCall& call, std::ostream* out) {
    *out << call.name;
}

inline constexpr DWORD kExampleError = 1167;  // ERROR_DEVICE_NOT_CONNECTED

// All wrappers of kernel32 functions.
const std::vector<WrapperCall>& KernelWrapperCalls();
