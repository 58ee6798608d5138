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

// Finds the volume of any directory on it, as GetDiskFreeSpaceW and GetDiskFreeSpaceExW do.
VolumeCall FindVolumeOf(Simulation& simulation, const std::wstring& path) {
    VolumeCall call;
    std::wstring mount_point;
    call.target = simulation.names().ResolveMountPoint(path, &mount_point);
    if (call.target.kind == NameIndex::Target::Kind::kVolume) {
        call.volume = &simulation.machine().volumes[call.target.position];
    }
    return call;
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
    answer.bytes.resize(sizeof(Record));
    std::memcpy(answer.bytes.data(), &record, sizeof(Record));
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
    Simulation* simulation = Simulation::Current();
    if (simulation == nullptr) {
        return ::GetDriveTypeW(root);
    }
    return Guarded(UINT{DRIVE_UNKNOWN}, [&]() -> UINT {
        const std::wstring path = RootText(root);
        const NameIndex::Target target = simulation->names().Resolve(AsRoot(path));
        const Answer answer = simulation->Perform(
            {CallFamily::kWin32, "GetDriveTypeW", path, ErrorsOf(*simulation, target)}, [&] {
                Answer type;
                type.value = target.kind == NameIndex::Target::Kind::kVolume && target.root
                                 ? simulation->machine().volumes[target.position].drive_type
                                 : DRIVE_NO_ROOT_DIR;
                return type;
            });
        return Deliver(answer) ? static_cast<UINT>(answer.value) : DRIVE_UNKNOWN;
    });
}

BOOL WINAPI GetDiskFreeSpaceW(LPCWSTR root, LPDWORD sectors_per_cluster, LPDWORD bytes_per_sector,
                              LPDWORD free_clusters, LPDWORD total_clusters) {
    Simulation* simulation = Simulation::Current();
    if (simulation == nullptr) {
        return ::GetDiskFreeSpaceW(root, sectors_per_cluster, bytes_per_sector, free_clusters,
                                   total_clusters);
    }
    return Guarded(FALSE, [&]() -> BOOL {
        const std::wstring path = RootText(root);
        const VolumeCall call = FindVolumeOf(*simulation, path);
        const Answer answer = simulation->Perform(
            {CallFamily::kWin32, "GetDiskFreeSpaceW", path, ErrorsOf(*simulation, call.target)}, [&] {
                const std::uint32_t obstacle = Obstacle(call, path);
                return obstacle != 0
                           ? Answer::Failure(obstacle)
                           : Recorded(FreeSpace{
                                 call.volume->sectors_per_cluster, call.volume->bytes_per_sector,
                                 Clipped(call.volume->free_clusters), Clipped(call.volume->total_clusters)});
            });
        if (!Deliver(answer)) {
            return FALSE;
        }
        const auto space = RecordOf<FreeSpace>(answer);
        Store(sectors_per_cluster, space.sectors_per_cluster);
        Store(bytes_per_sector, space.bytes_per_sector);
        Store(free_clusters, space.free_clusters);
        Store(total_clusters, space.total_clusters);
        return TRUE;
    });
}

BOOL WINAPI GetDiskFreeSpaceExW(LPCWSTR root, PULARGE_INTEGER free_to_caller, PULARGE_INTEGER total,
                                PULARGE_INTEGER total_free) {
    Simulation* simulation = Simulation::Current();
    if (simulation == nullptr) {
        return ::GetDiskFreeSpaceExW(root, free_to_caller, total, total_free);
    }
    return Guarded(FALSE, [&]() -> BOOL {
        const std::wstring path = RootText(root);
        const VolumeCall call = FindVolumeOf(*simulation, path);
        const Answer answer = simulation->Perform(
            {CallFamily::kWin32, "GetDiskFreeSpaceExW", path, ErrorsOf(*simulation, call.target)}, [&] {
                const std::uint32_t obstacle = Obstacle(call, path);
                return obstacle != 0
                           ? Answer::Failure(obstacle)
                           : Recorded(FreeSpaceEx{call.volume->free_bytes_to_caller, call.volume->total_bytes,
                                                  call.volume->free_bytes});
            });
        if (!Deliver(answer)) {
            return FALSE;
        }
        const auto space = RecordOf<FreeSpaceEx>(answer);
        Store(free_to_caller, space.to_caller);
        Store(total, space.total);
        Store(total_free, space.free);
        return TRUE;
    });
}

BOOL WINAPI GetVolumeInformationW(LPCWSTR root, LPWSTR label, DWORD label_size, LPDWORD serial,
                                  LPDWORD max_component, LPDWORD flags, LPWSTR file_system,
                                  DWORD file_system_size) {
    Simulation* simulation = Simulation::Current();
    if (simulation == nullptr) {
        return ::GetVolumeInformationW(root, label, label_size, serial, max_component, flags, file_system,
                                       file_system_size);
    }
    return Guarded(FALSE, [&]() -> BOOL {
        const std::wstring path = RootText(root);
        const NameIndex::Target target = simulation->names().Resolve(path);
        VolumeCall call;
        call.target = target;
        if (target.kind == NameIndex::Target::Kind::kVolume) {
            call.volume = &simulation->machine().volumes[target.position];
        }
        const Answer answer = simulation->Perform(
            {CallFamily::kWin32, "GetVolumeInformationW", path, ErrorsOf(*simulation, target)}, [&] {
                if (!path.empty() && path.back() != L'\\') {
                    return Answer::Failure(ERROR_INVALID_NAME);
                }
                const std::uint32_t obstacle = Obstacle(call, path);
                if (obstacle != 0) {
                    return Answer::Failure(obstacle);
                }
                if (!Fits(call.volume->label, label, label_size) ||
                    !Fits(call.volume->file_system, file_system, file_system_size)) {
                    return Answer::Failure(ERROR_MORE_DATA);
                }
                return Recorded(Information{call.volume->serial, call.volume->max_component_length,
                                            call.volume->file_system_flags});
            });
        if (!Deliver(answer) || call.volume == nullptr) {
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
