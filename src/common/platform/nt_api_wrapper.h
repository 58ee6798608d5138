#pragma once

#include "common/platform/unique_handle.h"
#include "common/platform/win_api_wrapper.h"

#include <cstddef>
#include <string>

namespace win {

namespace NT_API {

// Makes `counted` refer to `text`, a string of at most `capacity` characters before its terminator. If `text`
// is null, not terminated in time or too long, leaves `counted` empty and logs one line at level 2. The text
// must outlive the counted string.
void RtlInitUnicodeString(UNICODE_STRING& counted, const wchar_t* text, std::size_t capacity);

}  // namespace NT_API

// One entry of an object directory.
struct DirectoryEntry {
    std::wstring name;
    std::wstring type_name;
};

// Object directory functions of the native API, called only through the bound table. Error handling is the
// same as in WinAPIWrapper.
class NtAPIWrapper {
public:
    static bool OpenDirectoryObject(const std::wstring& path, UniqueDirectory& directory, DWORD& error);
    // Reads one entry, the first if `restart` is set, otherwise the one at `context`, and advances `context`.
    // At the end of the directory fails with ERROR_NO_MORE_FILES and does not log the failure. `buffer` is a
    // work buffer, passed in only to be reused between calls.
    static bool QueryDirectoryObject(const UniqueDirectory& directory, bool restart, ULONG& context,
                                     ByteBuffer& buffer, DirectoryEntry& entry, DWORD& error);
    // Closes the directory. `directory` is empty afterwards, even on failure.
    static bool CloseObject(UniqueDirectory& directory, DWORD& error);
};

}  // namespace win
