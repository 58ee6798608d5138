#pragma once

#include "common/logger/trace.h"
#include "common/platform/system_answer.h"

#include <new>
#include <stdexcept>

namespace win {

// Runs `query`, which returns a Win32 error code, between the trace lines of `function`. Maps a failed
// allocation to ERROR_OUTOFMEMORY. On any error calls `log_failure` and returns false, with the code in
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

}  // namespace win
