#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>

// Checked memory and string functions. They throw std::invalid_argument for null pointers and
// std::length_error for overruns and overlaps, and change nothing if they throw.
namespace safe {

// Copies `count` bytes to a destination of `destination_size` bytes. A count of 0 does nothing, even with
// null pointers.
void MemoryCopy(void* destination, std::size_t destination_size, const void* source, std::size_t count);

// The number of characters before the terminator. Reads at most `maximum` characters.
template <class Character>
std::size_t StringLengthTemplate(const Character* text, std::size_t maximum) {
    if (text == nullptr) {
        throw std::invalid_argument(
            "Null pointer parameter passed to "
            "StringLengthTemplate");
    }
    for (std::size_t length = 0; length < maximum; ++length) {
        if (text[length] == Character{}) {
            return length;
        }
    }
    throw std::length_error(
        "Buffer overrun in "
        "StringLengthTemplate");
}

}  // namespace safe
