#pragma once

#include "common/platform/unique_handle.h"
#include "common/platform/win_api_wrapper.h"

#include <cstddef>
#include <string>

namespace win {

namespace NT_API {

// Makes `counted` describe `text`, a string of at most `capacity` characters before its terminator. A null
// text, or one that does not end in time or is too long, leaves it empty (one level 2 line). The text must
// outlive the counted string.
void RtlInitUnicodeString(UNICODE_STRING& counted, const wchar_t* text, std::size_t capacity);

}  // namespace NT_API

// One entry of an object directory.
struct DirectoryEntry {
    std::wstring name;
    std::wstring type_name;
};

// The object directories of the native API, reached through the bound table only. Same contract as
// WinAPIWrapper.
class NtAPIWrapper {
public:
    static bool OpenDirectoryObject(const std::wstring& path, UniqueDirectory& directory, DWORD& error);
    // One entry: the first with `restart`, else the one that `context` stands on; carries `context` forward.
    // ERROR_NO_MORE_FILES, without a line, at the end. `buffer` is the caller's only to be used again.
    static bool QueryDirectoryObject(const UniqueDirectory& directory, bool restart, ULONG& context,
                                     ByteBuffer& buffer, DirectoryEntry& entry, DWORD& error);
    // Closes the directory, whatever is answered.
    static bool CloseObject(UniqueDirectory& directory, DWORD& error);
};

}  // namespace win
