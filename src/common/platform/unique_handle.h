#pragma once

#include "common/platform/system_library.h"

#include <utility>

// Sole ownership of one system handle; closes it on destruction and keeps the thread's last error while doing
// so.
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

    // Gives the handle up without closing it.
    HANDLE Release() { return std::exchange(handle_, Kind::Invalid()); }

    // Closes the handle that is held and takes `handle`.
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
