#pragma once

#include "common/platform/system_answer.h"
#include "common/platform/unique_handle.h"

#include <cstddef>

// Sends control codes to devices and checks that the answers are complete. Logs nothing.
namespace win {

// Sends one control code and returns a Win32 error code. `returned_bytes` is the value from the system; check
// it before use.
DWORD SendControl(const UniqueFile& device, DWORD code, void* input, std::size_t input_bytes, void* output,
                  std::size_t output_bytes, DWORD& returned_bytes);

// Reads an answer of fixed size. Returns ERROR_INVALID_DATA if the number of bytes differs. Changes `answer`
// only on success.
template <class Answer>
DWORD ReadFixedControl(const UniqueFile& device, DWORD code, Answer& answer) {
    Answer read{};
    DWORD returned = 0;
    const DWORD error = SendControl(device, code, nullptr, 0, &read, sizeof(read), returned);
    if (error != ERROR_SUCCESS) {
        return error;
    }
    if (returned != sizeof(read)) {
        return ERROR_INVALID_DATA;
    }
    answer = read;
    return ERROR_SUCCESS;
}

// How to size the buffer for an answer of unknown length.
struct Growth {
    std::size_t first_bytes = 0;
    DWORD too_small = ERROR_INSUFFICIENT_BUFFER;  // the error after which the buffer grows
    // Computes the next size from a truncated answer; null: double the size.
    std::size_t (*next_size)(const ByteBuffer& answer) = nullptr;
};

// Reads an answer of unknown length. On success `buffer` contains exactly the bytes returned. If `is_whole`
// rejects them, returns ERROR_INVALID_DATA. On failure, including std::bad_alloc, `buffer` is empty.
template <class IsWhole>
DWORD ReadGrowingControl(const UniqueFile& device, DWORD code, const Growth& growth, ByteBuffer& buffer,
                         IsWhole&& is_whole) {
    ByteBuffer answer;
    buffer.swap(answer);
    DWORD returned = 0;
    const auto ask = [&](ByteBuffer& bytes, std::size_t& needed) {
        const DWORD error = SendControl(device, code, nullptr, 0, bytes.data(), bytes.size(), returned);
        if (error == growth.too_small && growth.next_size != nullptr) {
            needed = growth.next_size(bytes);
        }
        return error;
    };
    const DWORD error = GrowAndRetry(answer, growth.first_bytes, growth.too_small, ask);
    if (error != ERROR_SUCCESS) {
        return error;
    }
    if (returned > answer.size()) {
        return ERROR_INVALID_DATA;
    }
    answer.resize(returned);
    if (!is_whole(answer)) {
        return ERROR_INVALID_DATA;
    }
    buffer.swap(answer);
    return ERROR_SUCCESS;
}

// Checks for a DISK_GEOMETRY_EX that includes its partition record.
bool IsWholeGeometry(const ByteBuffer& buffer);
// Check for a layout or extent list that includes every element that it counts.
bool IsWholeLayoutEx(const ByteBuffer& buffer);
bool IsWholeLegacyLayout(const ByteBuffer& buffer);
bool IsWholeExtentList(const ByteBuffer& buffer);

}  // namespace win
