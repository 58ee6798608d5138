#include "machine/description/text.h"
#include "machine/simulation/redirect.h"
#include "machine/simulation/simulated_functions.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace machine::simulated {
namespace {

constexpr std::uint32_t kDone = 0;
constexpr std::uint32_t kMoreEntries = 0x00000105;
constexpr std::uint32_t kNoMoreEntries = 0x8000001A;
constexpr std::uint32_t kAccessViolation = 0xC0000005;
constexpr std::uint32_t kInvalidHandle = 0xC0000008;
constexpr std::uint32_t kInvalidParameter = 0xC000000D;
constexpr std::uint32_t kNoMemory = 0xC0000017;
constexpr std::uint32_t kAccessDenied = 0xC0000022;
constexpr std::uint32_t kBufferTooSmall = 0xC0000023;
constexpr std::uint32_t kNotFound = 0xC0000034;
constexpr std::uint32_t kPathSyntaxBad = 0xC000003B;
constexpr std::uint32_t kProcedureNotFound = 0xC000007A;

constexpr ACCESS_MASK kDirectoryQuery = 1;

// One record of a directory listing. The strings follow the records in the same buffer.
struct DirectoryRecord {
    UNICODE_STRING name;
    UNICODE_STRING type;
};

NTSTATUS Status(std::uint32_t status) {
    return static_cast<NTSTATUS>(status);
}

// The system's function, or the status that it does not exist.
template <class Function, class... Arguments>
NTSTATUS Real(Function /*type*/, const char* name, Arguments... arguments) {
    const auto real = RealFunction<Function>(L"ntdll.dll", name);
    return real == nullptr ? Status(kProcedureNotFound) : real(arguments...);
}

const CallErrors* ErrorsOfDirectory(const Simulation& simulation, const std::wstring& path) {
    const auto& directories = simulation.machine().directories;
    const auto found =
        std::find_if(directories.begin(), directories.end(),
                     [&](const ObjectDirectory& directory) { return EqualNames(directory.path, path); });
    return found == directories.end() ? nullptr : &found->errors;
}

std::wstring NameIn(const OBJECT_ATTRIBUTES* attributes) {
    if (attributes == nullptr || attributes->ObjectName == nullptr ||
        attributes->ObjectName->Buffer == nullptr) {
        return {};
    }
    return {attributes->ObjectName->Buffer, attributes->ObjectName->Length / sizeof(wchar_t)};
}

Answer OpenedDirectory(Simulation& simulation, const std::wstring& path, ACCESS_MASK access,
                       const OBJECT_ATTRIBUTES* attributes) {
    if (attributes == nullptr || attributes->Length != sizeof(OBJECT_ATTRIBUTES)) {
        return Answer::Failure(kInvalidParameter);
    }
    if (path.empty() || path.front() != L'\\') {
        return Answer::Failure(kPathSyntaxBad);
    }
    if (simulation.names().FindDirectory(path) == nullptr) {
        return Answer::Failure(kNotFound);
    }
    OpenObject object;
    object.kind = OpenObject::Kind::kObjectDirectory;
    object.name = path;
    object.access = access;
    return simulation.Open(std::move(object));
}

std::size_t TextBytes(const DirectoryEntry& entry) {
    return (entry.name.size() + 1 + entry.type.size() + 1) * sizeof(wchar_t);
}

UNICODE_STRING PutText(const std::wstring& text, std::uint8_t*& copy, std::uint8_t*& place) {
    UNICODE_STRING counted{};
    counted.Length = static_cast<USHORT>(text.size() * sizeof(wchar_t));
    counted.MaximumLength = static_cast<USHORT>(counted.Length + sizeof(wchar_t));
    counted.Buffer = reinterpret_cast<PWSTR>(place);
    std::memcpy(copy, text.c_str(), counted.MaximumLength);
    copy += counted.MaximumLength;
    place += counted.MaximumLength;
    return counted;
}

// Builds the records, a terminating zero record, and the strings. Pointers refer to the caller's buffer.
Bytes Listing(const std::vector<DirectoryEntry>& entries, std::size_t first, std::size_t count,
              void* buffer) {
    const std::size_t records = (count + 1) * sizeof(DirectoryRecord);
    std::size_t size = records;
    for (std::size_t i = 0; i < count; ++i) {
        size += TextBytes(entries[first + i]);
    }
    Bytes bytes(size);
    std::uint8_t* copy = bytes.data() + records;
    std::uint8_t* place = static_cast<std::uint8_t*>(buffer) + records;
    for (std::size_t i = 0; i < count; ++i) {
        const DirectoryEntry& entry = entries[first + i];
        DirectoryRecord record{};
        record.name = PutText(entry.name, copy, place);
        record.type = PutText(entry.type, copy, place);
        std::memcpy(bytes.data() + i * sizeof(DirectoryRecord), &record, sizeof(record));
    }
    return bytes;
}

struct ListingRequest {
    bool single = false;
    bool restart = false;
    void* buffer = nullptr;
    ULONG size = 0;
    ULONG* context = nullptr;  // position of the next entry
    ULONG* returned = nullptr;
};

Answer Listed(const std::vector<DirectoryEntry>& entries, std::size_t first, const ListingRequest& request) {
    if (first >= entries.size()) {
        return Answer::Failure(kNoMoreEntries);
    }
    const std::size_t wanted = request.single ? 1 : entries.size() - first;
    std::size_t needed = sizeof(DirectoryRecord);
    std::size_t count = 0;
    while (count < wanted) {
        const std::size_t more = sizeof(DirectoryRecord) + TextBytes(entries[first + count]);
        if (needed + more > request.size) {
            break;
        }
        needed += more;
        ++count;
    }
    if (count == 0) {
        Answer answer = Answer::Failure(kBufferTooSmall);
        answer.returned = needed + sizeof(DirectoryRecord) + TextBytes(entries[first]);
        return answer;
    }
    Answer answer = Answer::Success(Listing(entries, first, count, request.buffer));
    answer.value = first + count;
    answer.error = count < wanted ? kMoreEntries : kDone;
    return answer;
}

Answer Queried(Simulation& simulation, const OpenObject* directory, const ListingRequest& request) {
    if (directory == nullptr) {
        return Answer::Failure(kInvalidHandle);
    }
    if ((directory->access & (kDirectoryQuery | GENERIC_READ | GENERIC_ALL)) == 0) {
        return Answer::Failure(kAccessDenied);
    }
    const std::vector<DirectoryEntry>* entries = simulation.names().FindDirectory(directory->name);
    if (entries == nullptr) {
        return Answer::Failure(kNotFound);
    }
    if (request.context == nullptr || request.buffer == nullptr) {
        return Answer::Failure(kAccessViolation);
    }
    return Listed(*entries, request.restart ? 0 : *request.context, request);
}

void Deliver(const Answer& answer, const ListingRequest& request) {
    if (request.buffer != nullptr && !answer.bytes.empty()) {
        std::memcpy(request.buffer, answer.bytes.data(),
                    std::min<std::size_t>(answer.bytes.size(), request.size));
    }
    if (request.returned != nullptr) {
        *request.returned = static_cast<ULONG>(answer.returned);
    }
    if (!answer.failed && request.context != nullptr) {
        *request.context = static_cast<ULONG>(answer.value);
    }
}

}  // namespace

NTSTATUS NTAPI ZwOpenDirectoryObject(PHANDLE directory, ACCESS_MASK access, POBJECT_ATTRIBUTES attributes) {
    return Simulated(
        Simulation::Current(), "ZwOpenDirectoryObject", Status(kNoMemory),
        [&] { return Real(&ZwOpenDirectoryObject, "ZwOpenDirectoryObject", directory, access, attributes); },
        [&](CallFrame& frame) {
            Simulation& simulation = frame.simulation();
            const std::wstring path = NameIn(attributes);
            const Answer answer = frame.Perform(path, ErrorsOfDirectory(simulation, path), [&] {
                return directory == nullptr ? Answer::Failure(kAccessViolation)
                                            : OpenedDirectory(simulation, path, access, attributes);
            });
            simulation.CloseIfFailed(answer);
            if (!answer.failed && directory != nullptr) {
                *directory = HandleIn(answer);
            }
            return Status(answer.error);
        });
}

NTSTATUS NTAPI ZwQueryDirectoryObject(HANDLE directory, PVOID buffer, ULONG size, BOOLEAN single,
                                      BOOLEAN restart, PULONG context, PULONG returned) {
    return Simulated(
        SimulationOf(directory), "ZwQueryDirectoryObject", Status(kNoMemory),
        [&] {
            return Real(&ZwQueryDirectoryObject, "ZwQueryDirectoryObject", directory, buffer, size, single,
                        restart, context, returned);
        },
        [&](CallFrame& frame) {
            Simulation& simulation = frame.simulation();
            const OpenObject* object =
                simulation.handles().Find(directory, OpenObject::Kind::kObjectDirectory);
            const std::wstring path = object == nullptr ? std::wstring() : object->name;
            const ListingRequest request{single != 0, restart != 0, buffer, size, context, returned};
            const Answer answer = frame.Perform(path, ErrorsOfDirectory(simulation, path),
                                                [&] { return Queried(simulation, object, request); });
            Deliver(answer, request);
            return Status(answer.error);
        });
}

NTSTATUS NTAPI ZwClose(HANDLE handle) {
    return Simulated(
        SimulationOf(handle), "ZwClose", Status(kNoMemory), [&] { return Real(&ZwClose, "ZwClose", handle); },
        [&](CallFrame& frame) {
            HandleTable& handles = frame.simulation().handles();
            const OpenObject* object = handles.Find(handle);
            const bool known = object != nullptr;
            const std::wstring path = known ? object->name : std::wstring();
            if (known) {
                handles.Close(handle);
            }
            const Answer answer = frame.Perform(path, ErrorsOfDirectory(frame.simulation(), path), [&] {
                return known ? Answer{} : Answer::Failure(kInvalidHandle);
            });
            return Status(answer.error);
        });
}

}  // namespace machine::simulated
