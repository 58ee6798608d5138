#pragma once

#include "common/windows.h"

#include <cstddef>
#include <vector>

// What all questions to the system have in common: error codes, and answers that may not fit their buffer.
namespace win {

using ByteBuffer = std::vector<unsigned char>;

// A system that keeps asking for a larger buffer is given up at this size; its last error stands.
inline constexpr std::size_t kLargestAnswerBytes = std::size_t{64} * 1024 * 1024;
inline constexpr int kMostAttempts = 32;  // more than doubling needs to reach that size

// The thread's last error, never 0: a call that failed without saying why is a general failure.
inline DWORD LastFailure() {
    const DWORD error = GetLastError();
    return error != ERROR_SUCCESS ? error : static_cast<DWORD>(ERROR_GEN_FAILURE);
}

inline DWORD ErrorUnless(BOOL succeeded) {
    return succeeded != FALSE ? static_cast<DWORD>(ERROR_SUCCESS) : LastFailure();
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
