#pragma once

#include "common/windows.h"

#include <cstddef>
#include <cstring>
#include <new>
#include <string_view>

// A text that ends at the end of readable memory: reading past its last character is an access violation.
class GuardedText {
public:
    explicit GuardedText(std::wstring_view text) {
        SYSTEM_INFO system{};
        GetSystemInfo(&system);
        const std::size_t page = system.dwPageSize;
        const std::size_t bytes = text.size() * sizeof(wchar_t);
        const std::size_t readable = (bytes / page + 1) * page;
        pages_ = static_cast<char*>(
            VirtualAlloc(nullptr, readable + page, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE));
        DWORD former = 0;
        if (pages_ == nullptr || !VirtualProtect(pages_ + readable, page, PAGE_NOACCESS, &former)) {
            throw std::bad_alloc();
        }
        text_ = pages_ + readable - bytes;
        std::memcpy(text_, text.data(), bytes);
    }
    ~GuardedText() { VirtualFree(pages_, 0, MEM_RELEASE); }
    GuardedText(const GuardedText&) = delete;
    GuardedText& operator=(const GuardedText&) = delete;

    const wchar_t* get() const { return reinterpret_cast<const wchar_t*>(text_); }

private:
    char* pages_ = nullptr;
    char* text_ = nullptr;
};
