#include "machine/description/text.h"
#include "machine/simulation/simulated_functions.h"

#include <algorithm>

namespace machine::simulated {
namespace {

bool IsVolumeName(const std::wstring& name) {
    return StartsWith(name, L"\\\\?\\Volume{") && name.size() > 3 &&
           name.compare(name.size() - 2, 2, L"}\\") == 0;
}

// The answer of a call that returns one string. Fails if the buffer is too small.
Answer OneText(const std::wstring& text, DWORD size) {
    if (size < text.size() + 1) {
        return Answer::Failure(ERROR_FILENAME_EXCED_RANGE);
    }
    Answer answer;
    AppendText(answer.bytes, text);
    return answer;
}

Answer MountPoints(const Simulation& simulation, const std::wstring& name, const NameIndex::Target& target,
                   DWORD size) {
    if (!IsVolumeName(name)) {
        return Answer::Failure(ERROR_INVALID_NAME);
    }
    if (target.kind != NameIndex::Target::Kind::kVolume) {
        return Answer::Failure(ERROR_FILE_NOT_FOUND);
    }
    Answer answer;
    for (const std::wstring& mount_point : simulation.machine().volumes[target.position].mount_points) {
        AppendText(answer.bytes, mount_point);
    }
    AppendText(answer.bytes, L"");
    answer.returned = answer.bytes.size() / sizeof(wchar_t);
    if (answer.returned > size) {
        answer.bytes.clear();
        answer.failed = true;
        answer.error = ERROR_MORE_DATA;
    }
    return answer;
}

Answer DosTargets(const NameIndex& names, LPCWSTR device, DWORD size) {
    Answer answer;
    if (device == nullptr) {
        for (const std::wstring& name : names.dos_names()) {
            AppendText(answer.bytes, name);
        }
    } else {
        const std::wstring name = device;
        if (!name.empty() && name.front() == L'\\') {
            return Answer::Failure(ERROR_BAD_PATHNAME);
        }
        if (name.find(L'\\') != std::wstring::npos) {
            return Answer::Failure(ERROR_INVALID_NAME);
        }
        const std::wstring* target = names.FindDosDevice(name);
        if (target == nullptr) {
            return Answer::Failure(ERROR_FILE_NOT_FOUND);
        }
        AppendText(answer.bytes, *target);
    }
    AppendText(answer.bytes, L"");
    answer.value = answer.bytes.size() / sizeof(wchar_t);
    return answer.value > size ? Answer::Failure(ERROR_INSUFFICIENT_BUFFER) : answer;
}

const CallErrors* ErrorsOfDosDevice(Simulation& simulation, LPCWSTR device) {
    for (const DosDevice& described : simulation.machine().dos_devices) {
        if (device != nullptr && !described.errors.codes.empty() && EqualNames(described.name, device)) {
            return &described.errors;
        }
    }
    const std::wstring* target = device == nullptr ? nullptr : simulation.names().FindDosDevice(device);
    return target == nullptr ? nullptr : simulation.ErrorsOf(simulation.names().FindDevice(*target));
}

Answer VolumeNameOf(const Simulation& simulation, const std::wstring& mount_point,
                    const NameIndex::Target& target, DWORD size) {
    if (mount_point.empty() || mount_point.back() != L'\\') {
        return Answer::Failure(ERROR_INVALID_NAME);
    }
    if (target.kind != NameIndex::Target::Kind::kVolume) {
        const bool drive = DriveNumber(mount_point).has_value() || IsVolumeName(mount_point);
        return Answer::Failure(drive ? ERROR_FILE_NOT_FOUND : ERROR_NOT_A_REPARSE_POINT);
    }
    const Volume& volume = simulation.machine().volumes[target.position];
    if (volume.guid.empty()) {
        return Answer::Failure(ERROR_FILE_NOT_FOUND);
    }
    return OneText(VolumeName(volume.guid), size);
}

}  // namespace

BOOL WINAPI GetVolumePathNamesForVolumeNameW(LPCWSTR volume, LPWCH names, DWORD size, PDWORD needed) {
    return Simulated(
        Simulation::Current(), "GetVolumePathNamesForVolumeNameW", FALSE,
        [&] { return ::GetVolumePathNamesForVolumeNameW(volume, names, size, needed); },
        [&](CallFrame& frame) {
            const std::wstring name = TextOrEmpty(volume);
            const NameIndex::Target target =
                IsVolumeName(name) ? frame.names().Resolve(name) : NameIndex::Target{};
            const Answer answer = frame.Perform(
                name, target, [&] { return MountPoints(frame.simulation(), name, target, size); });
            if (needed != nullptr) {
                *needed = static_cast<DWORD>(answer.returned);
            }
            CopyBytes(answer, names, size);
            return Succeeded(answer);
        });
}

BOOL WINAPI GetVolumeNameForVolumeMountPointW(LPCWSTR mount_point, LPWSTR name, DWORD size) {
    return Simulated(
        Simulation::Current(), "GetVolumeNameForVolumeMountPointW", FALSE,
        [&] { return ::GetVolumeNameForVolumeMountPointW(mount_point, name, size); },
        [&](CallFrame& frame) {
            const std::wstring path = TextOrEmpty(mount_point);
            const NameIndex::Target target = frame.names().Resolve(path);
            const Answer answer = frame.Perform(
                path, target, [&] { return VolumeNameOf(frame.simulation(), path, target, size); });
            CopyBytes(answer, name, size);
            return Succeeded(answer);
        });
}

BOOL WINAPI GetVolumePathNameW(LPCWSTR path, LPWSTR mount_point, DWORD size) {
    return Simulated(
        Simulation::Current(), "GetVolumePathNameW", FALSE,
        [&] { return ::GetVolumePathNameW(path, mount_point, size); },
        [&](CallFrame& frame) {
            const std::wstring name = TextOrEmpty(path);
            std::wstring root;
            const NameIndex::Target target = frame.names().ResolveMountPoint(name, &root);
            const Answer answer = frame.Perform(name, target, [&] {
                return target.kind == NameIndex::Target::Kind::kNone ? Answer::Failure(ERROR_FILE_NOT_FOUND)
                                                                     : OneText(root, size);
            });
            CopyBytes(answer, mount_point, size);
            return Succeeded(answer);
        });
}

DWORD WINAPI QueryDosDeviceW(LPCWSTR device, LPWSTR targets, DWORD size) {
    return Simulated(
        Simulation::Current(), "QueryDosDeviceW", DWORD{0},
        [&] { return ::QueryDosDeviceW(device, targets, size); },
        [&](CallFrame& frame) {
            const Answer answer =
                frame.Perform(TextOrEmpty(device), ErrorsOfDosDevice(frame.simulation(), device),
                              [&] { return DosTargets(frame.names(), device, size); });
            CopyBytes(answer, targets, size);
            return ValueOf(answer, DWORD{0});
        });
}

DWORD WINAPI GetLogicalDrives() {
    return Simulated(
        Simulation::Current(), "GetLogicalDrives", DWORD{0}, [] { return ::GetLogicalDrives(); },
        [](CallFrame& frame) {
            return ValueOf(
                frame.Perform({}, nullptr, [&] { return Answer::Success(frame.names().drive_mask()); }),
                DWORD{0});
        });
}

}  // namespace machine::simulated
