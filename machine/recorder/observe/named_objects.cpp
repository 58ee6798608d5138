// The objects that answers name, to be asked about next.

#include "machine/description/text.h"
#include "machine/recorder/observe/answer_texts.h"
#include "machine/recorder/observe/question_table.h"

#include <algorithm>
#include <cwctype>
#include <set>

namespace recorder {
namespace {

constexpr std::wstring_view kDiskName = L"PhysicalDrive";
constexpr std::wstring_view kDiskDirectory = L"Harddisk";
constexpr std::wstring_view kDeviceDirectory = L"\\Device\\";
constexpr std::wstring_view kGlobalRoot = L"\\\\?\\GLOBALROOT";

// Texts without repetition, compared without regard to case, in the order in which they were added.
class NameList {
public:
    void Add(const std::wstring& name) {
        if (!name.empty() && known_.insert(machine::Folded(name)).second) {
            names_.push_back(name);
        }
    }

    std::vector<std::wstring> Take() { return std::move(names_); }

private:
    std::set<std::wstring> known_;
    std::vector<std::wstring> names_;
};

std::vector<std::wstring> Drives(const Observations& observations) {
    std::vector<std::wstring> drives;
    const Observation* mask = observations.Best("GetLogicalDrives", L"");
    for (unsigned i = 0; mask != nullptr && i < 26; ++i) {
        if ((mask->answer.value >> i & 1U) != 0) {
            drives.push_back({static_cast<wchar_t>(L'A' + i), L':'});
        }
    }
    return drives;
}

std::vector<std::wstring> DosNames(const Observations& observations) {
    NameList names;
    for (const std::wstring& name : ListedNames(observations, "ZwQueryDirectoryObject", L"\\GLOBAL??")) {
        names.Add(name);
    }
    for (const std::wstring& name : AnsweredTexts(observations, "QueryDosDeviceW", L"")) {
        names.Add(name);
    }
    for (const std::wstring& drive : Drives(observations)) {
        names.Add(drive);
    }
    return names.Take();
}

std::vector<std::wstring> VolumeNames(const Observations& observations) {
    NameList names;
    for (const std::wstring& name : ListedNames(observations, "FindFirstVolumeW", L"")) {
        names.Add(name);
    }
    for (const std::wstring& name : DosNames(observations)) {
        if (machine::StartsWith(name, L"Volume{")) {
            names.Add(L"\\\\?\\" + name + L"\\");
        }
    }
    return names.Take();
}

// The number after the prefix; none if other characters follow.
std::optional<std::uint32_t> NumberAfter(const std::wstring& name, std::wstring_view prefix) {
    constexpr std::size_t kMostDigits = 6;
    const std::wstring digits = machine::StartsWith(name, prefix) ? name.substr(prefix.size()) : L"";
    if (digits.empty() || digits.size() > kMostDigits ||
        !std::all_of(digits.begin(), digits.end(), [](wchar_t c) { return std::iswdigit(c) != 0; })) {
        return std::nullopt;
    }
    return static_cast<std::uint32_t>(std::stoul(digits));
}

std::set<std::uint32_t> DiskNumbers(const Observations& observations) {
    std::set<std::uint32_t> numbers;
    const auto add = [&](std::optional<std::uint32_t> number) {
        if (number) {
            numbers.insert(*number);
        }
    };
    for (const std::wstring& name : DosNames(observations)) {
        add(NumberAfter(name, kDiskName));
    }
    for (const std::wstring& name : ListedNames(observations, "ZwQueryDirectoryObject", L"\\Device")) {
        add(NumberAfter(name, kDiskDirectory));
    }
    constexpr std::uint64_t kNoDisk = 255;  // also -1: a drive without a number
    const Observation* drives = observations.Best("IWbemServices::ExecQuery", L"Win32_DiskDrive");
    for (const Part& part : drives == nullptr ? std::vector<Part>() : drives->answer.parts) {
        if (part.name == L"Index" && part.error == 0 && part.value < kNoDisk) {
            numbers.insert(static_cast<std::uint32_t>(part.value));
        }
    }
    return numbers;
}

std::vector<std::wstring> Disks(const Observations& observations) {
    NameList names;
    for (const std::uint32_t number : DiskNumbers(observations)) {
        const std::wstring name = std::wstring(kDiskName) + std::to_wstring(number);
        names.Add(L"\\\\.\\" + name);
        const auto targets = AnsweredTexts(observations, "QueryDosDeviceW", name);
        if (!targets.empty() && machine::StartsWith(targets.front(), kDeviceDirectory)) {
            names.Add(std::wstring(kGlobalRoot) + targets.front());
        }
    }
    return names.Take();
}

bool IsVolumeDeviceName(const std::wstring& name) {
    return machine::StartsWith(name, L"HarddiskVolume") || machine::StartsWith(name, L"CdRom") ||
           machine::StartsWith(name, L"Floppy");
}

// The devices of volumes: the targets of volume names and drive letters, and the usual names in \Device.
std::vector<std::wstring> VolumeDevices(const Observations& observations) {
    NameList devices;
    const auto add_target = [&](const std::wstring& name) {
        const auto targets = AnsweredTexts(observations, "QueryDosDeviceW", name);
        if (!targets.empty() && machine::StartsWith(targets.front(), kDeviceDirectory)) {
            devices.Add(targets.front());
        }
    };
    for (const std::wstring& name : ListedNames(observations, "ZwQueryDirectoryObject", L"\\Device")) {
        if (IsVolumeDeviceName(name)) {
            devices.Add(std::wstring(kDeviceDirectory) + name);
        }
    }
    for (const std::wstring& name : DosNames(observations)) {
        const bool drive = name.size() == 2 && name[1] == L':';
        if (machine::StartsWith(name, L"Volume{") || drive || IsVolumeDeviceName(name)) {
            add_target(name);
        }
    }
    return devices.Take();
}

// The forms in which volumes are named, without a backslash at the end.
std::vector<std::wstring> VolumeForms(const Observations& observations, std::wstring_view drive_prefix) {
    NameList forms;
    for (const std::wstring& device : VolumeDevices(observations)) {
        forms.Add(std::wstring(kGlobalRoot) + device);
    }
    for (const std::wstring& name : VolumeNames(observations)) {
        forms.Add(name.ends_with(L'\\') ? name.substr(0, name.size() - 1) : name);
    }
    for (const std::wstring& drive : Drives(observations)) {
        forms.Add(std::wstring(drive_prefix) + drive);
    }
    return forms.Take();
}

std::vector<std::wstring> VolumeRoots(const Observations& observations) {
    std::vector<std::wstring> roots = VolumeForms(observations, L"");
    for (std::wstring& root : roots) {
        root += L'\\';
    }
    return roots;
}

std::vector<std::wstring> MountPoints(const Observations& observations) {
    NameList points;
    for (const std::wstring& drive : Drives(observations)) {
        points.Add(drive + L'\\');
    }
    for (const std::wstring& volume : VolumeNames(observations)) {
        for (const std::wstring& path :
             AnsweredTexts(observations, "GetVolumePathNamesForVolumeNameW", volume)) {
            points.Add(path);
        }
    }
    return points.Take();
}

}  // namespace

std::vector<std::wstring> ObjectsOf(Subject subject, const Observations& observations) {
    switch (subject) {
        case Subject::kDosName:
            return DosNames(observations);
        case Subject::kVolumeName:
            return VolumeNames(observations);
        case Subject::kDisk:
            return Disks(observations);
        case Subject::kVolumeDevice:
            return VolumeForms(observations, L"\\\\.\\");
        case Subject::kVolumeRoot:
            return VolumeRoots(observations);
        case Subject::kMountPoint:
            return MountPoints(observations);
        case Subject::kMachine:
            break;
    }
    return {};
}

}  // namespace recorder
