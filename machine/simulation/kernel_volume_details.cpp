#include "machine/simulation/disk_structures.h"
#include "machine/simulation/simulated_functions.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace machine::simulated {
namespace {

// Appends a missing trailing backslash, which GetDriveTypeW does not require.
std::wstring AsRoot(std::wstring path) {
    if (!path.empty() && path.back() != L'\\') {
        path += L'\\';
    }
    return path;
}

// A null path means the root of the current drive.
std::wstring RootText(LPCWSTR root) {
    return root == nullptr ? std::wstring(L"\\") : std::wstring(root);
}

struct VolumeCall {
    NameIndex::Target target;
    const Volume* volume = nullptr;
};

VolumeCall VolumeAt(Simulation& simulation, const NameIndex::Target& target) {
    const bool found = target.kind == NameIndex::Target::Kind::kVolume;
    return {target, found ? &simulation.machine().volumes[target.position] : nullptr};
}

// Finds the volume of any directory on it, as GetDiskFreeSpaceW and GetDiskFreeSpaceExW do.
VolumeCall FindVolumeOf(Simulation& simulation, const std::wstring& path) {
    std::wstring mount_point;
    return VolumeAt(simulation, simulation.names().ResolveMountPoint(path, &mount_point));
}

// The error that prevents a query of the volume's file system; 0 if there is none.
std::uint32_t Obstacle(const VolumeCall& call, const std::wstring& path) {
    const bool device_form = path.size() > 4 && path[0] == L'\\' && path[1] == L'\\' && path.back() != L'\\';
    if (call.volume == nullptr) {
        return ERROR_PATH_NOT_FOUND;
    }
    if (device_form) {
        return ERROR_DIRECTORY;  // the volume itself is not a directory
    }
    if (!call.volume->has_media) {
        return ERROR_NOT_READY;
    }
    return call.volume->file_system.empty() ? ERROR_UNRECOGNIZED_VOLUME : 0;
}

// Performs a query of the volume's file system. `body` is run only if there is neither this error nor an
// obstacle.
template <class Body>
Answer PerformOnVolume(CallFrame& frame, const VolumeCall& call, const std::wstring& path, const Body& body,
                       std::uint32_t error = 0) {
    return frame.Perform(path, call.target, [&] {
        const std::uint32_t obstacle = error != 0 ? error : Obstacle(call, path);
        return obstacle != 0 ? Answer::Failure(obstacle) : body(*call.volume);
    });
}

template <class Number, class Value>
void Store(Number* target, Value value) {
    if (target != nullptr) {
        *target = static_cast<Number>(value);
    }
}

void Store(PULARGE_INTEGER target, std::uint64_t value) {
    if (target != nullptr) {
        target->QuadPart = value;
    }
}

DWORD Clipped(std::uint64_t clusters) {
    return static_cast<DWORD>(std::min<std::uint64_t>(clusters, std::numeric_limits<DWORD>::max()));
}

bool Fits(const std::wstring& text, LPCWSTR buffer, DWORD size) {
    return buffer == nullptr || size > text.size();
}

void CopyText(const std::wstring& text, LPWSTR buffer, DWORD size) {
    if (buffer != nullptr && Fits(text, buffer, size)) {
        std::copy_n(text.c_str(), text.size() + 1, buffer);
    }
}

// Stores the output values of a call in the answer's bytes, so that the fault plan can corrupt them.
template <class Record>
Answer Recorded(const Record& record) {
    Answer answer;
    answer.bytes = BytesOf(record);
    return answer;
}

template <class Record>
Record RecordOf(const Answer& answer) {
    Record record{};
    std::memcpy(&record, answer.bytes.data(), std::min(sizeof(Record), answer.bytes.size()));
    return record;
}

struct FreeSpace {
    DWORD sectors_per_cluster, bytes_per_sector, free_clusters, total_clusters;
};
struct FreeSpaceEx {
    std::uint64_t to_caller, total, free;
};
struct Information {
    DWORD serial, max_component, flags;
};

}  // namespace

UINT WINAPI GetDriveTypeW(LPCWSTR root) {
    return Simulated(
        Simulation::Current(), "GetDriveTypeW", UINT{DRIVE_UNKNOWN}, [&] { return ::GetDriveTypeW(root); },
        [&](CallFrame& frame) {
            const std::wstring path = RootText(root);
            const NameIndex::Target target = frame.names().Resolve(AsRoot(path));
            const Answer answer = frame.Perform(path, target, [&] {
                return Answer::Success(target.kind == NameIndex::Target::Kind::kVolume && target.root
                                           ? frame.simulation().machine().volumes[target.position].drive_type
                                           : std::uint32_t{DRIVE_NO_ROOT_DIR});
            });
            return ValueOf(answer, UINT{DRIVE_UNKNOWN});
        });
}

BOOL WINAPI GetDiskFreeSpaceW(LPCWSTR root, LPDWORD sectors_per_cluster, LPDWORD bytes_per_sector,
                              LPDWORD free_clusters, LPDWORD total_clusters) {
    return Simulated(
        Simulation::Current(), "GetDiskFreeSpaceW", FALSE,
        [&] {
            return ::GetDiskFreeSpaceW(root, sectors_per_cluster, bytes_per_sector, free_clusters,
                                       total_clusters);
        },
        [&](CallFrame& frame) {
            const std::wstring path = RootText(root);
            const VolumeCall call = FindVolumeOf(frame.simulation(), path);
            const Answer answer = PerformOnVolume(frame, call, path, [&](const Volume& volume) {
                return Recorded(FreeSpace{volume.sectors_per_cluster, volume.bytes_per_sector,
                                          Clipped(volume.free_clusters), Clipped(volume.total_clusters)});
            });
            if (!answer.failed) {
                const auto space = RecordOf<FreeSpace>(answer);
                Store(sectors_per_cluster, space.sectors_per_cluster);
                Store(bytes_per_sector, space.bytes_per_sector);
                Store(free_clusters, space.free_clusters);
                Store(total_clusters, space.total_clusters);
            }
            return Succeeded(answer);
        });
}

BOOL WINAPI GetDiskFreeSpaceExW(LPCWSTR root, PULARGE_INTEGER free_to_caller, PULARGE_INTEGER total,
                                PULARGE_INTEGER total_free) {
    return Simulated(
        Simulation::Current(), "GetDiskFreeSpaceExW", FALSE,
        [&] { return ::GetDiskFreeSpaceExW(root, free_to_caller, total, total_free); },
        [&](CallFrame& frame) {
            const std::wstring path = RootText(root);
            const VolumeCall call = FindVolumeOf(frame.simulation(), path);
            const Answer answer = PerformOnVolume(frame, call, path, [&](const Volume& volume) {
                return Recorded(
                    FreeSpaceEx{volume.free_bytes_to_caller, volume.total_bytes, volume.free_bytes});
            });
            if (!answer.failed) {
                const auto space = RecordOf<FreeSpaceEx>(answer);
                Store(free_to_caller, space.to_caller);
                Store(total, space.total);
                Store(total_free, space.free);
            }
            return Succeeded(answer);
        });
}

BOOL WINAPI GetVolumeInformationW(LPCWSTR root, LPWSTR label, DWORD label_size, LPDWORD serial,
                                  LPDWORD max_component, LPDWORD flags, LPWSTR file_system,
                                  DWORD file_system_size) {
    return Simulated(
        Simulation::Current(), "GetVolumeInformationW", FALSE,
        [&] {
            return ::GetVolumeInformationW(root, label, label_size, serial, max_component, flags, file_system,
                                           file_system_size);
        },
        [&](CallFrame& frame) -> BOOL {
            const std::wstring path = RootText(root);
            const VolumeCall call = VolumeAt(frame.simulation(), frame.names().Resolve(path));
            const bool valid = path.empty() || path.back() == L'\\';
            const Answer answer = PerformOnVolume(
                frame, call, path,
                [&](const Volume& volume) {
                    return Fits(volume.label, label, label_size) &&
                                   Fits(volume.file_system, file_system, file_system_size)
                               ? Recorded(Information{volume.serial, volume.max_component_length,
                                                      volume.file_system_flags})
                               : Answer::Failure(ERROR_MORE_DATA);
                },
                valid ? 0 : ERROR_INVALID_NAME);
            if (answer.failed || call.volume == nullptr) {
                return FALSE;
            }
            const auto information = RecordOf<Information>(answer);
            Store(serial, information.serial);
            Store(max_component, information.max_component);
            Store(flags, information.flags);
            CopyText(call.volume->label, label, label_size);
            CopyText(call.volume->file_system, file_system, file_system_size);
            return TRUE;
        });
}

}  // namespace machine::simulated
