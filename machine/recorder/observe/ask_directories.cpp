#include "machine/recorder/observe/ask_calls.h"

#include <cstring>

namespace recorder {
namespace {

constexpr std::uint32_t kMoreEntries = 0x00000105;
constexpr std::uint32_t kNoMoreEntries = 0x8000001A;
constexpr std::uint32_t kBufferTooSmall = 0xC0000023;
constexpr std::uint32_t kDataError = 0xC000003E;
constexpr std::uint32_t kProcedureNotFound = 0xC000007A;
constexpr ACCESS_MASK kQuery = 1;
constexpr std::size_t kLargestBytes = 1 << 20;

struct EntryRecord {
    UNICODE_STRING name;
    UNICODE_STRING type;
};

bool CopyCounted(const Bytes& buffer, const UNICODE_STRING& counted, std::wstring& text) {
    const auto begin = reinterpret_cast<std::uintptr_t>(buffer.data());
    const auto first = reinterpret_cast<std::uintptr_t>(counted.Buffer);
    if (counted.Length == 0) {
        return true;
    }
    if (first < begin || first - begin > buffer.size() || buffer.size() - (first - begin) < counted.Length) {
        return false;
    }
    text.resize(counted.Length / sizeof(wchar_t));
    std::memcpy(text.data(), counted.Buffer, text.size() * sizeof(wchar_t));
    return true;
}

// Reads the next entry into a buffer that begins with `size` bytes and grows. Returns the status.
std::uint32_t NextEntry(const SystemFunctions& functions, HANDLE directory, std::size_t size, bool first,
                        ULONG& context, Part& part) {
    std::uint32_t status = kBufferTooSmall;
    Bytes buffer;
    for (; status == kBufferTooSmall && size <= kLargestBytes; size *= 2) {
        buffer.assign(size, 0);
        ULONG returned = 0;
        status = static_cast<std::uint32_t>(
            functions.ZwQueryDirectoryObject(directory, buffer.data(), static_cast<ULONG>(size), TRUE,
                                             first ? TRUE : FALSE, &context, &returned));
    }
    if (status != 0 && status != kMoreEntries) {
        return status;
    }
    EntryRecord record{};
    std::memcpy(&record, buffer.data(), std::min(sizeof(record), buffer.size()));
    const bool whole = buffer.size() >= sizeof(record) && CopyCounted(buffer, record.name, part.name) &&
                       CopyCounted(buffer, record.type, part.type);
    return whole ? 0 : kDataError;
}

}  // namespace

Answer AskDirectory(const SystemFunctions& functions, const Question& question) {
    if (functions.ZwOpenDirectoryObject == nullptr) {
        return Failure(kProcedureNotFound, "ZwOpenDirectoryObject");
    }
    UNICODE_STRING name{};
    name.Length = static_cast<USHORT>(question.object.size() * sizeof(wchar_t));
    name.MaximumLength = static_cast<USHORT>(name.Length + sizeof(wchar_t));
    name.Buffer = const_cast<wchar_t*>(question.object.c_str());  // only read
    OBJECT_ATTRIBUTES attributes{};
    attributes.Length = sizeof(attributes);
    attributes.ObjectName = &name;
    attributes.Attributes = OBJ_CASE_INSENSITIVE;
    HANDLE directory = nullptr;
    const auto opened =
        static_cast<std::uint32_t>(functions.ZwOpenDirectoryObject(&directory, kQuery, &attributes));
    if (opened != 0) {
        return Failure(opened, "ZwOpenDirectoryObject");
    }
    Answer answer;
    std::uint32_t status = functions.ZwQueryDirectoryObject == nullptr ? kProcedureNotFound : 0;
    ULONG context = 0;
    while (status == 0) {
        Part part;
        status = NextEntry(functions, directory, question.size, answer.parts.empty(), context, part);
        if (status == 0) {
            answer.parts.push_back(std::move(part));
        }
        if (answer.parts.size() >= kMostParts) {
            status = kDataError;
        }
    }
    answer.error = status == kNoMoreEntries ? 0 : status;
    if (functions.ZwClose != nullptr) {
        functions.ZwClose(directory);
    }
    return answer;
}

}  // namespace recorder
