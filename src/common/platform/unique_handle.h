#pragma once

#include "common/platform/system_library.h"

#include <utility>

// Unique ownership of one system handle. Closes it on destruction and preserves the thread's last error.
template <class Kind>
class UniqueHandle {
public:
    UniqueHandle() = default;
    explicit UniqueHandle(HANDLE handle) : handle_(handle) {}
    UniqueHandle(UniqueHandle&& other) noexcept : handle_(other.Release()) {}
    UniqueHandle& operator=(UniqueHandle&& other) noexcept {
        Reset(other.Release());
        return *this;
    }
    UniqueHandle(const UniqueHandle&) = delete;
    UniqueHandle& operator=(const UniqueHandle&) = delete;
    ~UniqueHandle() { Reset(); }

    HANDLE get() const { return handle_; }
    explicit operator bool() const { return handle_ != Kind::Invalid(); }

    // Gives up ownership without closing the handle.
    HANDLE Release() { return std::exchange(handle_, Kind::Invalid()); }

    // Closes the current handle and takes ownership of `handle`.
    void Reset(HANDLE handle = Kind::Invalid()) {
        const HANDLE previous = std::exchange(handle_, handle);
        if (previous != Kind::Invalid()) {
            const DWORD last_error = GetLastError();
            Kind::Close(previous);
            SetLastError(last_error);
        }
    }

private:
    HANDLE handle_ = Kind::Invalid();
};

struct FileHandleKind {
    static HANDLE Invalid() { return INVALID_HANDLE_VALUE; }
    static void Close(HANDLE handle) { CallBound(Kernel32DLL::Get().CloseHandle, FALSE, handle); }
};

struct VolumeSearchHandleKind {
    static HANDLE Invalid() { return INVALID_HANDLE_VALUE; }
    static void Close(HANDLE handle) { CallBound(Kernel32DLL::Get().FindVolumeClose, FALSE, handle); }
};

struct DirectoryHandleKind {
    static HANDLE Invalid() { return nullptr; }
    static void Close(HANDLE handle) { CallBound(NtDLL::Get().ZwClose, NTSTATUS{}, handle); }
};

using UniqueFile = UniqueHandle<FileHandleKind>;
using UniqueVolumeSearch = UniqueHandle<VolumeSearchHandleKind>;
using UniqueDirectory = UniqueHandle<DirectoryHandleKind>;
