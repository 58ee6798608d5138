#pragma once

#include "common/platform/unique_bstr.h"

#include <array>
#include <cstddef>
#include <string_view>

// A text as a BSTR for calls that only read it. A short text, as most texts in a document are, is stored in
// the object; a longer one is allocated by the system. Throws _com_error (E_OUTOFMEMORY) if that fails.
class BstrArgument {
public:
    // Uses the text up to the first null character. Every other character that XML cannot contain becomes
    // U+FFFD.
    explicit BstrArgument(std::wstring_view text);
    // Expects ASCII. Other bytes become the character with that number, regardless of the code page.
    explicit BstrArgument(const char* text);
    ~BstrArgument() = default;
    BstrArgument(const BstrArgument&) = delete;
    BstrArgument& operator=(const BstrArgument&) = delete;

    // Valid as long as this object. The receiver must not take ownership, reallocate or free it.
    BSTR get() { return long_ ? long_.get() : short_.letters.data(); }

    static constexpr std::size_t kShort = 63;

private:
    // The memory layout of a BSTR: the length in bytes directly before the characters.
    struct Short {
        alignas(alignof(void*)) UINT unused;
        UINT bytes;
        std::array<wchar_t, kShort + 1> letters;
    };

    template <class Letter>
    void Assign(std::basic_string_view<Letter> text);

    Short short_{};  // zero after the characters
    UniqueBstr long_;
};
