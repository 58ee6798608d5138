#pragma once

#include "common/logger/trace.h"
#include "common/windows.h"

#include <algorithm>
#include <cstddef>
#include <new>
#include <stdexcept>
#include <vector>

// What the wrappers over system functions have in common: the trace, the error code, the failure line, and
// answers that may not fit. For the code that asks it.
namespace win {

using ByteBuffer = std::vector<unsigned char>;

// A system that asks for a larger buffer for ever is given up at this size; its last error stands.
inline constexpr std::size_t kLargestAnswerBytes = std::size_t{64} * 1024 * 1024;
inline constexpr int kMostAttempts = 32;  // more than doubling needs to come to that size

// The thread's last error, never 0: a call that failed without saying why is a general failure.
inline DWORD LastFailure() {
    const DWORD error = GetLastError();
    return error != ERROR_SUCCESS ? error : static_cast<DWORD>(ERROR_GEN_FAILURE);
}

inline DWORD ErrorUnless(BOOL succeeded) {
    return succeeded != FALSE ? static_cast<DWORD>(ERROR_SUCCESS) : LastFailure();
}

// Runs `query` (it returns a Win32 error code) between the trace lines of `function`. An allocation failure
// becomes ERROR_OUTOFMEMORY. On any error calls `log_failure`, and returns false with the code in
// `error`.
template <class QueryBody, class LogFailure>
bool Query(const wchar_t* function, DWORD& error, QueryBody&& query, LogFailure&& log_failure,
           const std::source_location where = std::source_location::current()) {
    error = ERROR_SUCCESS;
    return Traced(
        function,
        [&] {
            try {
                error = query();
            } catch (const std::bad_alloc&) {
                error = ERROR_OUTOFMEMORY;
            } catch (const std::length_error&) {
                error = ERROR_OUTOFMEMORY;
            }
            if (error != ERROR_SUCCESS) {
                log_failure();
            }
            return error == ERROR_SUCCESS;
        },
        where);
}

// Calls `ask(buffer, needed)` with a growing buffer of `Element`s until it answers anything but `too_small`.
// `needed` starts at 0 and may be set to the size that the system asks for; else the buffer doubles. A system
// that never has enough is given up.
template <class Element, class Code, class Ask>
Code GrowAndRetry(std::vector<Element>& buffer, std::size_t first_size, Code too_small, Ask&& ask) {
    std::size_t size = first_size;
    for (int attempt = 1;; ++attempt) {
        buffer.assign(size, Element{});
        std::size_t needed = 0;
        const Code code = ask(buffer, needed);
        const std::size_t next = needed > size ? needed : size * 2;
        if (code != too_small || attempt == kMostAttempts || next > kLargestAnswerBytes / sizeof(Element)) {
            return code;
        }
        size = next;
    }
}

}  // namespace win
