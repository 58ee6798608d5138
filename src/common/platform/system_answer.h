#pragma once

#include "common/windows.h"

#include <cstddef>
#include <vector>

// Shared by all system queries: error codes, and retries with a larger buffer.
namespace win {

using ByteBuffer = std::vector<unsigned char>;

// The maximum buffer size. If the system asks for more, the query fails with the last error.
inline constexpr std::size_t kLargestAnswerBytes = std::size_t{64} * 1024 * 1024;
inline constexpr int kMostAttempts = 32;  // more than doubling needs to reach that size

// The thread's last error, never 0. Returns ERROR_GEN_FAILURE if the failed call did not set an error.
inline DWORD LastFailure() {
    const DWORD error = GetLastError();
    return error != ERROR_SUCCESS ? error : static_cast<DWORD>(ERROR_GEN_FAILURE);
}

inline DWORD ErrorUnless(BOOL succeeded) {
    return succeeded != FALSE ? static_cast<DWORD>(ERROR_SUCCESS) : LastFailure();
}

// Calls `ask(buffer, needed)` with a growing buffer until it returns a code other than `too_small`. `needed`
// starts at 0; `ask` may set it to the size that the system requires, otherwise the buffer doubles. Returns
// `too_small` if a limit above is reached. A buffer of the first size is used as it is; otherwise, and after
// each growth, the buffer is zeroed.
template <class Element, class Code, class Ask>
Code GrowAndRetry(std::vector<Element>& buffer, std::size_t first_size, Code too_small, Ask&& ask) {
    std::size_t size = first_size;
    for (int attempt = 1;; ++attempt) {
        if (buffer.size() != size) {
            buffer.assign(size, Element{});
        }
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
