#include "common/platform/nt_api_wrapper.h"

#include "common/platform/system_query.h"
#include "common/text/safe.h"

#include <cstring>
#include <limits>

namespace win {

namespace {

constexpr NTSTATUS kStatusSuccess = 0;
constexpr auto kStatusBufferTooSmall = static_cast<NTSTATUS>(0xC0000023);
constexpr auto kStatusNoMoreEntries = static_cast<NTSTATUS>(0x8000001A);
constexpr auto kStatusDataError = static_cast<NTSTATUS>(0xC000003E);
constexpr auto kStatusProcedureNotFound = static_cast<NTSTATUS>(0xC000007A);
constexpr ACCESS_MASK kDirectoryQuery = 1;
constexpr std::size_t kFirstDirectoryBytes = 260;

// The start of the buffer that the native query fills. Both strings point into the same buffer.
struct ObjectDirectoryInformation {
    UNICODE_STRING name;
    UNICODE_STRING type_name;
};

// Errors without an NTSTATUS, such as a failed allocation, are not logged here.
void LogFailedStatus(const wchar_t* function, NTSTATUS status) {
    if (status != kStatusSuccess) {
        GetLogger().Write(kLogTrace, L"%s - failed status=%x", function, status);
    }
}

// Copies a counted string. Returns false if it is not entirely inside `buffer`.
bool CopyCountedString(const ByteBuffer& buffer, const UNICODE_STRING& counted, std::wstring& text) {
    if (counted.Length == 0) {
        text.clear();
        return true;
    }
    const auto begin = reinterpret_cast<std::uintptr_t>(buffer.data());
    const auto first = reinterpret_cast<std::uintptr_t>(counted.Buffer);
    if (first < begin || first - begin > buffer.size() || buffer.size() - (first - begin) < counted.Length) {
        return false;
    }
    text.resize(counted.Length / sizeof(wchar_t));
    std::memcpy(text.data(), counted.Buffer, text.size() * sizeof(wchar_t));
    return true;
}

bool CopyEntry(const ByteBuffer& buffer, DirectoryEntry& entry) {
    ObjectDirectoryInformation information{};
    if (buffer.size() < sizeof(information)) {
        return false;
    }
    std::memcpy(&information, buffer.data(), sizeof(information));
    return CopyCountedString(buffer, information.name, entry.name) &&
           CopyCountedString(buffer, information.type_name, entry.type_name);
}

// Measures a text. Returns false if it has no terminator within `capacity` characters or does not fit into a
// counted string.
bool MeasureText(const wchar_t* text, std::size_t capacity, std::size_t& length) {
    constexpr std::size_t kLongest = std::numeric_limits<USHORT>::max() / sizeof(wchar_t) - 1;
    try {
        length = safe::StringLengthTemplate(text, capacity + 1);
    } catch (const std::length_error&) {
        return false;
    }
    return length <= kLongest;
}

NTSTATUS AskForEntry(const UniqueDirectory& directory, bool restart, ULONG& context, ByteBuffer& buffer) {
    const auto ask = [&](ByteBuffer& answer, std::size_t& /*needed*/) {
        ULONG returned = 0;
        const auto size = static_cast<ULONG>(answer.size());
        const NTSTATUS status = CallBound(NtDLL::Get().ZwQueryDirectoryObject, kStatusProcedureNotFound,
                                          directory.get(), static_cast<void*>(answer.data()), size,
                                          BOOLEAN{TRUE}, static_cast<BOOLEAN>(restart), &context, &returned);
        if (status == kStatusBufferTooSmall) {
            GetLogger().Write(kLogTrace, L"Buffer too small - size=%d, retry...", size);
        }
        return status;
    };
    return GrowAndRetry(buffer, std::max(buffer.size(), kFirstDirectoryBytes), kStatusBufferTooSmall, ask);
}

}  // namespace

void NT_API::RtlInitUnicodeString(UNICODE_STRING& counted, const wchar_t* text, std::size_t capacity) {
    constexpr const wchar_t* kFunction = L"win::NT_API::RtlInitUnicodeString";
    Traced(kFunction, [&] {
        counted = {};
        std::size_t length = 0;
        if (text == nullptr || !MeasureText(text, capacity, length)) {
            GetLogger().Write(kLogError, L"%s - invalid parameter", kFunction);
            return;
        }
        counted.Length = static_cast<USHORT>(length * sizeof(wchar_t));
        counted.MaximumLength = static_cast<USHORT>((length + 1) * sizeof(wchar_t));
        // The native structure has no const pointer; the text is only read.
        counted.Buffer = const_cast<wchar_t*>(text);
    });
}

bool NtAPIWrapper::OpenDirectoryObject(const std::wstring& path, UniqueDirectory& directory, DWORD& error) {
    constexpr const wchar_t* kFunction = L"win::NtAPIWrapper::OpenDirectoryObject";
    NTSTATUS status = kStatusSuccess;
    const auto query = [&]() -> DWORD {
        UNICODE_STRING name{};
        NT_API::RtlInitUnicodeString(name, path.c_str(), path.size());
        if (name.Buffer == nullptr) {
            return ERROR_INVALID_PARAMETER;
        }
        OBJECT_ATTRIBUTES attributes{};
        attributes.Length = sizeof(attributes);
        attributes.ObjectName = &name;
        attributes.Attributes = OBJ_CASE_INSENSITIVE;
        HANDLE handle = nullptr;
        status = CallBound(NtDLL::Get().ZwOpenDirectoryObject, kStatusProcedureNotFound, &handle,
                           kDirectoryQuery, &attributes);
        if (status != kStatusSuccess) {
            return ERROR_GEN_FAILURE;
        }
        directory.Reset(handle);
        return ERROR_SUCCESS;
    };
    return Query(kFunction, error, query, [&] { LogFailedStatus(kFunction, status); });
}

bool NtAPIWrapper::QueryDirectoryObject(const UniqueDirectory& directory, bool restart, ULONG& context,
                                        ByteBuffer& buffer, DirectoryEntry& entry, DWORD& error) {
    constexpr const wchar_t* kFunction = L"win::NtAPIWrapper::QueryDirectoryObject";
    NTSTATUS status = kStatusSuccess;
    const auto query = [&]() -> DWORD {
        status = AskForEntry(directory, restart, context, buffer);
        if (status == kStatusNoMoreEntries) {
            return ERROR_NO_MORE_FILES;
        }
        if (status != kStatusSuccess) {
            return ERROR_GEN_FAILURE;
        }
        if (!CopyEntry(buffer, entry)) {
            status = kStatusDataError;
            return ERROR_INVALID_DATA;
        }
        return ERROR_SUCCESS;
    };
    return Query(kFunction, error, query, [&] {
        if (status != kStatusNoMoreEntries) {
            LogFailedStatus(kFunction, status);
        }
    });
}

bool NtAPIWrapper::CloseObject(UniqueDirectory& directory, DWORD& error) {
    constexpr const wchar_t* kFunction = L"win::NtAPIWrapper::CloseObject";
    NTSTATUS status = kStatusSuccess;
    const auto query = [&]() -> DWORD {
        status = CallBound(NtDLL::Get().ZwClose, kStatusProcedureNotFound, directory.Release());
        return status == kStatusSuccess ? ERROR_SUCCESS : ERROR_GEN_FAILURE;
    };
    return Query(kFunction, error, query, [&] { LogFailedStatus(kFunction, status); });
}

}  // namespace win
