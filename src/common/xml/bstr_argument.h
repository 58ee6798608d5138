#pragma once

#include "common/platform/unique_bstr.h"

#include <array>
#include <cstddef>
#include <string_view>

// A text as a BSTR for calls that only read it. A short one, as nearly all of a document are, is laid out in
// place; a longer one is the system's. Throws _com_error (E_OUTOFMEMORY) when there is no memory for that.
class BstrArgument {
public:
    // Up to the first zero character: XML cannot hold one.
    explicit BstrArgument(std::wstring_view text);
    // ASCII; a byte beyond it would be the character of that number, whatever the code page.
    explicit BstrArgument(const char* text);
    ~BstrArgument() = default;
    BstrArgument(const BstrArgument&) = delete;
    BstrArgument& operator=(const BstrArgument&) = delete;

    // Lives as long as this. Never to be given away, grown or freed.
    BSTR get() { return long_ ? long_.get() : short_.letters.data(); }

    static constexpr std::size_t kShort = 63;

private:
    // What stands in memory where a BSTR points to: before its letters their number of bytes.
    struct Short {
        alignas(alignof(void*)) UINT unused;
        UINT bytes;
        std::array<wchar_t, kShort + 1> letters;
    };

    template <class Letter>
    void Assign(std::basic_string_view<Letter> text);

    Short short_{};  // zero behind the letters
    UniqueBstr long_;
};
