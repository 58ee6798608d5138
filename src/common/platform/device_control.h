#pragma once

#include "common/platform/system_answer.h"
#include "common/platform/unique_handle.h"

#include <cstddef>

// Control codes to devices, and whether an answer is whole. Nothing is logged.
namespace win {

// Sends one control code; returns a Win32 error code. `returned_bytes` is what the system says, not to be
// trusted.
DWORD SendControl(const UniqueFile& device, DWORD code, void* input, std::size_t input_bytes, void* output,
                  std::size_t output_bytes, DWORD& returned_bytes);

// Reads an answer of fixed size: ERROR_INVALID_DATA where another number of bytes came back. Changes `answer`
// on success only.
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

// How the buffer of an answer of unknown length starts and grows.
struct Growth {
    std::size_t first_bytes = 0;
    DWORD too_small = ERROR_INSUFFICIENT_BUFFER;  // the error on which it grows
    // The next size, told by an answer that was too short; null: twice the size.
    std::size_t (*next_size)(const ByteBuffer& answer) = nullptr;
};

// Reads an answer of unknown length. On success `buffer` holds just the bytes that came back; `is_whole` must
// accept them, else the answer is ERROR_INVALID_DATA. On failure `buffer` is empty, also where
// std::bad_alloc is thrown.
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

// DISK_GEOMETRY_EX with its partition record.
bool IsWholeGeometry(const ByteBuffer& buffer);
// Layouts and extent lists with every element that they count.
bool IsWholeLayoutEx(const ByteBuffer& buffer);
bool IsWholeLegacyLayout(const ByteBuffer& buffer);
bool IsWholeExtentList(const ByteBuffer& buffer);

}  // namespace win
