#pragma once

// What machine/description uses of the Windows headers, so that a fuzz target of it is built for this system.
// Texts are UTF-16 as there, in a wider wchar_t. There are no files: a disk image cannot be opened.

#include <cstdint>
#include <cstring>

using BYTE = std::uint8_t;
using WORD = std::uint16_t;
using USHORT = std::uint16_t;
using DWORD = std::uint32_t;
using LONGLONG = std::int64_t;
using BOOL = int;
using HANDLE = void*;

constexpr BOOL FALSE = 0;
inline const HANDLE INVALID_HANDLE_VALUE = reinterpret_cast<HANDLE>(-1);

struct GUID {
    std::uint32_t Data1;
    std::uint16_t Data2;
    std::uint16_t Data3;
    std::uint8_t Data4[8];
};
inline bool operator==(const GUID& left, const GUID& right) {
    return std::memcmp(&left, &right, sizeof(GUID)) == 0;
}
inline bool IsEqualGUID(const GUID& left, const GUID& right) {
    return left == right;
}
inline bool operator!=(const GUID& left, const GUID& right) {
    return !(left == right);
}

union LARGE_INTEGER {
    LONGLONG QuadPart;
};

// Error codes.
constexpr DWORD ERROR_FILE_NOT_FOUND = 2;
constexpr DWORD ERROR_WRITE_PROTECT = 19;
constexpr DWORD ERROR_SECTOR_NOT_FOUND = 27;
constexpr DWORD ERROR_WRITE_FAULT = 29;
constexpr DWORD ERROR_INVALID_PARAMETER = 87;
constexpr DWORD ERROR_SEM_TIMEOUT = 121;

// Types of drives and of registry values.
enum : std::uint32_t {
    DRIVE_UNKNOWN,
    DRIVE_NO_ROOT_DIR,
    DRIVE_REMOVABLE,
    DRIVE_FIXED,
    DRIVE_REMOTE,
    DRIVE_CDROM,
    DRIVE_RAMDISK
};
enum : std::uint32_t {
    REG_NONE = 0,
    REG_SZ = 1,
    REG_EXPAND_SZ = 2,
    REG_BINARY = 3,
    REG_DWORD = 4,
    REG_MULTI_SZ = 7,
    REG_QWORD = 11
};

// Texts.
constexpr DWORD CP_UTF8 = 65001;
constexpr DWORD LOCALE_INVARIANT = 0x7F;
constexpr DWORD LCMAP_UPPERCASE = 0x200;
int MultiByteToWideChar(DWORD page, DWORD flags, const char* utf8, int size, wchar_t* text, int room);
int WideCharToMultiByte(DWORD page, DWORD flags, const wchar_t* text, int size, char* utf8, int room,
                        const char*, BOOL*);
int LCMapStringW(DWORD locale, DWORD flags, const wchar_t* text, int size, wchar_t* mapped, int room);

// Files.
constexpr DWORD GENERIC_READ = 0x80000000;
constexpr DWORD GENERIC_WRITE = 0x40000000;
constexpr DWORD FILE_SHARE_READ = 1;
constexpr DWORD FILE_SHARE_WRITE = 2;
constexpr DWORD OPEN_EXISTING = 3;
constexpr DWORD FILE_BEGIN = 0;
inline HANDLE CreateFileW(const wchar_t*, DWORD, DWORD, void*, DWORD, DWORD, HANDLE) {
    return INVALID_HANDLE_VALUE;
}
inline BOOL CopyFileW(const wchar_t*, const wchar_t*, BOOL) {
    return FALSE;
}
inline BOOL GetFileSizeEx(HANDLE, LARGE_INTEGER*) {
    return FALSE;
}
inline BOOL SetFilePointerEx(HANDLE, LARGE_INTEGER, LARGE_INTEGER*, DWORD) {
    return FALSE;
}
inline BOOL ReadFile(HANDLE, void*, DWORD, DWORD*, void*) {
    return FALSE;
}
inline BOOL WriteFile(HANDLE, const void*, DWORD, DWORD*, void*) {
    return FALSE;
}
inline BOOL CloseHandle(HANDLE) {
    return FALSE;
}
inline DWORD GetLastError() {
    return ERROR_FILE_NOT_FOUND;
}
