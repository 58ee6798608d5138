#pragma once

#include <array>
#include <span>

namespace documents {

// A single-byte code page of Windows.
struct CodePage {
    unsigned number;
    std::array<char16_t, 128> upper;  // of the bytes 0x80 to 0xFF; 0: no character
};

// Those that documents can be read in: 437, 850, 852, 866, 874, 1250 to 1258.
std::span<const CodePage> CodePages();

// None if it is not among them.
const CodePage* FindCodePage(unsigned number);

}  // namespace documents
