#pragma once

#include "common/platform/system_query.h"
#include "common/platform/unique_handle.h"

#include <cstddef>

// Control codes to devices, and whether what comes back is a whole answer. For the code that speaks to
// devices.
namespace win {

// Sends one control code; returns a Win32 error code. `returned_bytes` is what the system says, not to be
// trusted.
DWORD SendControl(const UniqueFile& device, DWORD code, void* input, std::size_t input_bytes, void* output,
                  std::size_t output_bytes, DWORD& returned_bytes);

// Reads an answer of unknown length, with a buffer of `first_bytes` that grows while the system answers
// `too_small`. On success `buffer` holds just the bytes that came back; `is_whole` must accept them, else the
// answer is ERROR_INVALID_DATA. On failure `buffer` is empty. May throw std::bad_alloc.
template <class IsWhole>
DWORD ReadGrowingControl(const UniqueFile& device, DWORD code, std::size_t first_bytes, DWORD too_small,
                         ByteBuffer& buffer, IsWhole&& is_whole) {
    DWORD returned = 0;
    const auto ask = [&](ByteBuffer& answer, std::size_t& /*needed*/) {
        return SendControl(device, code, nullptr, 0, answer.data(), answer.size(), returned);
    };
    DWORD error = GrowAndRetry(buffer, first_bytes, too_small, ask);
    if (error == ERROR_SUCCESS && returned <= buffer.size()) {
        buffer.resize(returned);
        if (is_whole(buffer)) {
            return ERROR_SUCCESS;
        }
        error = ERROR_INVALID_DATA;
    }
    buffer.clear();
    return error == ERROR_SUCCESS ? static_cast<DWORD>(ERROR_INVALID_DATA) : error;
}

// DISK_GEOMETRY_EX with its partition record.
bool IsWholeGeometry(const ByteBuffer& buffer);
// Layouts and extent lists with every element that they count.
bool IsWholeLayoutEx(const ByteBuffer& buffer);
bool IsWholeLegacyLayout(const ByteBuffer& buffer);
bool IsWholeExtentList(const ByteBuffer& buffer);

}  // namespace win
