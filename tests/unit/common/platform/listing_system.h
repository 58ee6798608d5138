#pragma once

#include "common/platform/system_library.h"
#include "support/stub.h"

#include <algorithm>
#include <functional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

inline std::wstring NullOr(const wchar_t* text) {
    return text == nullptr ? L"(null)" : text;
}

// Replaces both functions that return lists. They return the same list, each in its own way, and record their
// arguments.
class ListingSystem {
public:
    explicit ListingSystem(std::wstring list)
        : list_(std::move(list)),
          path_names_(Kernel32DLL::Get().GetVolumePathNamesForVolumeNameW,
                      [this](const wchar_t* volume, wchar_t* buffer, DWORD size, DWORD* length) -> BOOL {
                          Note(volume, size);
                          *length = Told();
                          return Put(buffer, size, ERROR_MORE_DATA);
                      }),
          dos_device_(Kernel32DLL::Get().QueryDosDeviceW,
                      [this](const wchar_t* device, wchar_t* buffer, DWORD size) -> DWORD {
                          Note(device, size);
                          return Put(buffer, size, ERROR_INSUFFICIENT_BUFFER) ? Told() : 0;
                      }) {}

    std::vector<std::wstring> names;
    std::vector<DWORD> sizes;
    DWORD last_error_on_success = 0;
    DWORD told_length = 0;  // not 0: reported as the list's length

private:
    void Note(const wchar_t* name, DWORD size) {
        names.push_back(NullOr(name));
        sizes.push_back(size);
    }
    DWORD Told() const { return told_length != 0 ? told_length : static_cast<DWORD>(list_.size()); }
    BOOL Put(wchar_t* buffer, DWORD size, DWORD too_small) {
        if (size < list_.size()) {
            SetLastError(too_small);
            return FALSE;
        }
        std::copy(list_.begin(), list_.end(), buffer);
        SetLastError(last_error_on_success);
        return TRUE;
    }

    std::wstring list_;
    template <class Function>
    using Answer = support::Stub<Function, std::function<std::remove_pointer_t<Function>>>;
    Answer<decltype(Kernel32DLL::GetVolumePathNamesForVolumeNameW)> path_names_;
    Answer<decltype(Kernel32DLL::QueryDosDeviceW)> dos_device_;
};

// A list of this many characters, including its two terminators.
inline std::wstring ListOf(std::size_t characters) {
    return std::wstring(characters - 2, L'x') + std::wstring(2, L'\0');
}
