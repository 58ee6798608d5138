#include "machine/description/control_codes.h"
#include "machine/description/disk_image.h"
#include "machine/simulation/device_controls.h"
#include "machine/simulation/simulated_functions.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace machine::simulated {
namespace {

constexpr DWORD kReading = GENERIC_READ | GENERIC_ALL | FILE_READ_DATA;
constexpr DWORD kWriting = GENERIC_WRITE | GENERIC_ALL | FILE_WRITE_DATA;

std::uint32_t GrantedAccess(DWORD asked) {
    return ((asked & kReading) != 0 ? FILE_READ_ACCESS : 0U) |
           ((asked & kWriting) != 0 ? FILE_WRITE_ACCESS : 0U);
}

Answer Opened(Simulation& simulation, const std::wstring& path, const NameIndex::Target& target, DWORD access,
              DWORD disposition, DWORD flags) {
    if (target.kind == NameIndex::Target::Kind::kNone) {
        return Answer::Failure(ERROR_FILE_NOT_FOUND);
    }
    if (disposition != OPEN_EXISTING && disposition != OPEN_ALWAYS) {
        return Answer::Failure(disposition == CREATE_NEW ? ERROR_FILE_EXISTS : ERROR_INVALID_PARAMETER);
    }
    if (target.root && (flags & FILE_FLAG_BACKUP_SEMANTICS) == 0) {
        return Answer::Failure(ERROR_PATH_NOT_FOUND);  // a directory, with a trailing backslash in its name
    }
    OpenObject object;
    object.name = path;
    object.access = GrantedAccess(access);
    std::uint32_t reading_error = 0;
    std::uint32_t writing_error = 0;
    if (target.kind == NameIndex::Target::Kind::kDisk) {
        const Disk& disk = simulation.machine().disks[target.position];
        object.kind = OpenObject::Kind::kDisk;
        object.disk = disk.index;
        reading_error = disk.open_for_reading_error;
        writing_error = disk.open_for_writing_error;
    } else {
        const Volume& volume = simulation.machine().volumes[target.position];
        object.kind = target.root ? OpenObject::Kind::kRootDirectory : OpenObject::Kind::kVolume;
        object.device = volume.device;
        reading_error = target.root ? 0 : volume.open_for_reading_error;
        writing_error = volume.open_for_writing_error;
    }
    if (reading_error != 0 && object.access != 0) {
        return Answer::Failure(reading_error);
    }
    if (writing_error != 0 && (object.access & FILE_WRITE_ACCESS) != 0) {
        return Answer::Failure(writing_error);
    }
    return simulation.Open(std::move(object));
}

bool IsFile(const OpenObject* object) {
    return object != nullptr && object->kind != OpenObject::Kind::kVolumeSearch &&
           object->kind != OpenObject::Kind::kObjectDirectory;
}

const CallErrors* ErrorsOfFile(Simulation& simulation, const OpenObject* object) {
    if (object == nullptr || !IsFile(object)) {
        return nullptr;
    }
    if (object->kind == OpenObject::Kind::kDisk) {
        const Disk* disk = simulation.FindDisk(object->disk);
        return disk == nullptr ? nullptr : &disk->errors;
    }
    const Volume* volume = simulation.FindVolume(object->device);
    return volume == nullptr ? nullptr : &volume->errors;
}

// Performs a call on an open file. `body` is not run for other handles.
template <class Body>
Answer PerformOnFile(CallFrame& frame, OpenObject* object, const CallErrors* errors, const Body& body) {
    return frame.Perform(object == nullptr ? std::wstring() : object->name, errors,
                         [&] { return IsFile(object) ? body() : Answer::Failure(ERROR_INVALID_HANDLE); });
}

template <class Body>
Answer PerformOnFile(CallFrame& frame, OpenObject* object, const Body& body) {
    return PerformOnFile(frame, object, ErrorsOfFile(frame.simulation(), object), body);
}

Answer Written(Simulation& simulation, OpenObject& object, const void* data, DWORD size,
               const OVERLAPPED* at) {
    if ((object.access & FILE_WRITE_ACCESS) == 0) {
        return Answer::Failure(ERROR_ACCESS_DENIED);
    }
    Disk* disk = object.kind == OpenObject::Kind::kDisk ? simulation.FindDisk(object.disk) : nullptr;
    if (disk == nullptr || !disk->image) {
        // A disk without an image has a partition table, but no sectors to write to.
        return Answer::Failure(ERROR_NOT_SUPPORTED);
    }
    const std::uint64_t offset =
        at == nullptr ? object.position : static_cast<std::uint64_t>(at->OffsetHigh) << 32 | at->Offset;
    const auto* bytes = static_cast<const std::uint8_t*>(data);
    const std::uint32_t error = WriteSectors(*disk, offset, Bytes(bytes, bytes + size));
    if (error != 0) {
        return Answer::Failure(error);
    }
    object.position = offset + size;
    Answer answer;
    answer.returned = size;
    return answer;
}

}  // namespace

HANDLE WINAPI CreateFileW(LPCWSTR path, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security,
                          DWORD disposition, DWORD flags, HANDLE model) {
    return Simulated(
        Simulation::Current(), "CreateFileW", INVALID_HANDLE_VALUE,
        [&] { return ::CreateFileW(path, access, share, security, disposition, flags, model); },
        [&](CallFrame& frame) {
            const std::wstring name = TextOrEmpty(path);
            const NameIndex::Target target = frame.names().Resolve(name);
            const Answer answer = frame.Perform(name, target, [&] {
                return name.empty() ? Answer::Failure(ERROR_PATH_NOT_FOUND)
                                    : Opened(frame.simulation(), name, target, access, disposition, flags);
            });
            frame.simulation().CloseIfFailed(answer);
            return answer.failed ? INVALID_HANDLE_VALUE : HandleIn(answer);
        });
}

BOOL WINAPI CloseHandle(HANDLE handle) {
    return Simulated(
        SimulationOf(handle), "CloseHandle", FALSE, [&] { return ::CloseHandle(handle); },
        [&](CallFrame& frame) {
            HandleTable& handles = frame.simulation().handles();
            const OpenObject* object = handles.Find(handle);
            const bool known = object != nullptr && object->kind != OpenObject::Kind::kVolumeSearch;
            const std::wstring name = object == nullptr ? std::wstring() : object->name;
            const CallErrors* errors = ErrorsOfFile(frame.simulation(), object);
            // Close the handle even if the call is made to fail: the caller cannot use it afterwards.
            if (known) {
                handles.Close(handle);
            }
            return Succeeded(frame.Perform(
                name, errors, [&] { return known ? Answer{} : Answer::Failure(ERROR_INVALID_HANDLE); }));
        });
}

BOOL WINAPI DeviceIoControl(HANDLE handle, DWORD code, LPVOID input, DWORD input_size, LPVOID output,
                            DWORD output_size, LPDWORD returned, LPOVERLAPPED overlapped) {
    Simulation* simulation = SimulationOf(handle);
    if (simulation != nullptr && returned != nullptr) {
        *returned = 0;
    }
    return Simulated(
        simulation, "DeviceIoControl", FALSE,
        [&] {
            return ::DeviceIoControl(handle, code, input, input_size, output, output_size, returned,
                                     overlapped);
        },
        [&](CallFrame& frame) {
            frame.SetKind(ControlName(code));
            OpenObject* object = frame.simulation().handles().Find(handle);
            // The system refuses a handle without the rights before the driver can fail.
            const bool refused = IsFile(object) && !MayControl(code, object->access);
            const CallErrors* errors = refused ? nullptr : ErrorsOfFile(frame.simulation(), object);
            const Answer answer = PerformOnFile(frame, object, errors, [&] {
                if (returned == nullptr && overlapped == nullptr) {
                    return Answer::Failure(ERROR_NOACCESS);
                }
                ControlRequest request;
                request.code = code;
                request.input = static_cast<const std::uint8_t*>(input);
                request.input_size = input == nullptr ? 0 : input_size;
                request.output_size = output == nullptr ? 0 : output_size;
                request.access = object->access;
                return AnswerControl(frame.simulation(), *object, request);
            });
            if (output != nullptr && !answer.bytes.empty()) {
                std::memcpy(output, answer.bytes.data(),
                            std::min<std::size_t>(answer.bytes.size(), output_size));
            }
            if (returned != nullptr) {
                *returned = static_cast<DWORD>(answer.returned);
            }
            return Succeeded(answer);
        });
}

BOOL WINAPI FlushFileBuffers(HANDLE handle) {
    return Simulated(
        SimulationOf(handle), "FlushFileBuffers", FALSE, [&] { return ::FlushFileBuffers(handle); },
        [&](CallFrame& frame) {
            OpenObject* object = frame.simulation().handles().Find(handle);
            return Succeeded(PerformOnFile(frame, object, [&] {
                return (object->access & FILE_WRITE_ACCESS) != 0 ? Answer{}
                                                                 : Answer::Failure(ERROR_ACCESS_DENIED);
            }));
        });
}

BOOL WINAPI WriteFile(HANDLE handle, LPCVOID data, DWORD size, LPDWORD written, LPOVERLAPPED overlapped) {
    Simulation* simulation = SimulationOf(handle);
    if (simulation != nullptr && written != nullptr) {
        *written = 0;
    }
    return Simulated(
        simulation, "WriteFile", FALSE, [&] { return ::WriteFile(handle, data, size, written, overlapped); },
        [&](CallFrame& frame) {
            OpenObject* object = frame.simulation().handles().Find(handle);
            const Answer answer = PerformOnFile(
                frame, object, [&] { return Written(frame.simulation(), *object, data, size, overlapped); });
            if (written != nullptr) {
                *written = static_cast<DWORD>(answer.returned);
            }
            return Succeeded(answer);
        });
}

void AppendText(Bytes& bytes, const std::wstring& text) {
    const auto* start = reinterpret_cast<const std::uint8_t*>(text.c_str());
    bytes.insert(bytes.end(), start, start + (text.size() + 1) * sizeof(wchar_t));
}

void CopyBytes(const Answer& answer, LPWSTR buffer, DWORD size) {
    if (buffer != nullptr) {
        const std::size_t count = std::min(answer.bytes.size(), size * sizeof(wchar_t));
        std::copy_n(answer.bytes.begin(), count, reinterpret_cast<std::uint8_t*>(buffer));
    }
}

Simulation* SimulationOf(HANDLE handle) {
    return HandleTable::IsSimulated(handle) ? Simulation::Current() : nullptr;
}

std::wstring TextOrEmpty(LPCWSTR text) {
    return text == nullptr ? std::wstring() : std::wstring(text);
}

}  // namespace machine::simulated
