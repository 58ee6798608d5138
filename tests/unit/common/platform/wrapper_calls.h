#pragma once

#include "common/platform/nt_api_wrapper.h"
#include "common/platform/win_api_wrapper.h"

#include <functional>
#include <ostream>
#include <string>
#include <vector>

// What every wrapper has in common is tested with this one call of each.
struct WrapperCall {
    std::string name;                        // its qualified name, as it traces itself
    std::function<bool(DWORD& error)> call;  // with handles 0x10 and outputs that are thrown away
    std::string system_function;             // the member of the table behind it
    std::string failure_line;                // what it logs of a failure with the code 1167
    int failure_level = 0;                   // the host's
};

inline void PrintTo(const WrapperCall& call, std::ostream* out) {
    *out << call.name;
}

inline constexpr DWORD kExampleError = 1167;  // ERROR_DEVICE_NOT_CONNECTED

// All operations over kernel32.
const std::vector<WrapperCall>& KernelWrapperCalls();
