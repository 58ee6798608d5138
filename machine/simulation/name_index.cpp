#include "machine/simulation/name_index.h"

#include "machine/description/text.h"
#include "machine/simulation/other_names.h"

#include <algorithm>

namespace machine {
namespace {

// Names that every Windows has in addition to those of its disks and volumes.
const DosDevice kUsualDosDevices[] = {
    {L"NUL", L"\\Device\\Null"},
    {L"CON", L"\\Device\\ConDrv\\Console"},
    {L"PIPE", L"\\Device\\NamedPipe"},
    {L"MAILSLOT", L"\\Device\\Mailslot"},
    {L"MountPointManager", L"\\Device\\MountPointManager"},
    {L"UNC", L"\\Device\\Mup"},
};
const DirectoryEntry kUsualDevices[] = {
    {L"KsecDD", L"Device"},
    {L"Null", L"Device"},
    {L"NamedPipe", L"Device"},
    {L"Mailslot", L"Device"},
    {L"MountPointManager", L"Device"},
    {L"Ndis", L"Device"},
    {L"Tcp", L"Device"},
    {L"VolMgrControl", L"Device"},
    {L"Http", L"Directory"},
};

constexpr std::wstring_view kDevicePrefix = L"\\Device\\";
constexpr std::wstring_view kGlobalRoot = L"GLOBALROOT\\";
constexpr std::wstring_view kDeviceDirectory = L"\\Device";
constexpr std::wstring_view kLinkDirectory = L"\\GLOBAL??";

bool HasDevicePrefix(std::wstring_view path) {
    return path.size() > 4 && (path.substr(0, 4) == L"\\\\?\\" || path.substr(0, 4) == L"\\\\.\\");
}

// The name of a device that lies in \Device itself; otherwise empty.
std::wstring NameInDirectory(std::wstring_view device) {
    const std::wstring_view name =
        StartsWith(device, kDevicePrefix) ? device.substr(kDevicePrefix.size()) : std::wstring_view();
    return name.find(L'\\') == std::wstring_view::npos ? std::wstring(name) : std::wstring();
}

std::wstring_view WithoutBackslash(std::wstring_view path) {
    return !path.empty() && path.back() == L'\\' ? path.substr(0, path.size() - 1) : path;
}

}  // namespace

NameIndex::NameIndex(const Description& description) : current_drive_(description.current_drive) {
    for (std::size_t i = 0; i < description.disks.size(); ++i) {
        AddDisk(description.disks[i], i);
    }
    for (std::size_t i = 0; i < description.volumes.size(); ++i) {
        AddVolume(description.volumes[i], i);
    }
    for (const DosDevice& device : kUsualDosDevices) {
        AddDosDevice(device.name, device.target);
    }
    for (const DosDevice& device : description.dos_devices) {
        SetDosDevice(device.name, device.target);
    }
    AddOtherLinks(description);
    AddDirectories(description);
    AddDosNames(description);
}

void NameIndex::AddDisk(const Disk& disk, std::size_t position) {
    const std::wstring number = std::to_wstring(disk.index);
    disks_.emplace(disk.index, position);
    devices_.emplace(Folded(disk.device), Target{Target::Kind::kDisk, position, false});
    AddDosDevice(L"PhysicalDrive" + number, disk.device);
}

void NameIndex::AddVolume(const Volume& volume, std::size_t position) {
    devices_.emplace(Folded(volume.device), Target{Target::Kind::kVolume, position, false});
    if (!volume.link_target.empty()) {
        devices_.emplace(Folded(volume.link_target), Target{Target::Kind::kVolume, position, false});
    }
    const std::wstring name = NameInDirectory(volume.device);
    if (!name.empty()) {
        AddDosDevice(name, volume.device);
    }
    if (!volume.guid.empty()) {
        AddVolumeName(volume.guid, volume, position, volume.enumerated);
    }
    for (const VolumeAlias& alias : volume.aliases) {
        AddVolumeName(alias.guid, volume, position, alias.enumerated);
    }
    for (const std::wstring& mount_point : volume.mount_points) {
        mount_points_.emplace(Folded(mount_point), position);
        if (const auto drive = DriveNumber(mount_point)) {
            drive_mask_ |= 1U << *drive;
            AddDosDevice(mount_point.substr(0, 2), volume.device);
        }
    }
}

void NameIndex::AddVolumeName(const std::wstring& guid, const Volume& volume, std::size_t position,
                              bool enumerated) {
    guids_.emplace(Folded(guid), position);
    if (volume.linked) {
        AddDosDevice(L"Volume" + guid, volume.link_target.empty() ? volume.device : volume.link_target);
    }
    if (enumerated) {
        volume_names_.push_back(VolumeName(guid));
    }
}

void NameIndex::AddDosDevice(const std::wstring& name, const std::wstring& target) {
    if (dos_targets_.emplace(Folded(name), target).second) {
        dos_devices_.push_back({name, target});
    }
}

// The target replaces the one that follows from a disk or volume.
void NameIndex::SetDosDevice(const std::wstring& name, const std::wstring& target) {
    AddDosDevice(name, target);
    std::wstring& known = dos_targets_[Folded(name)];
    if (known != target) {
        known = target;
        std::find_if(dos_devices_.begin(), dos_devices_.end(), [&](const DosDevice& device) {
            return EqualNames(device.name, name);
        })->target = target;
    }
}

void NameIndex::AddDosNames(const Description& description) {
    if (description.dos_names) {
        dos_names_ = *description.dos_names;
        return;
    }
    for (const DirectoryEntry& entry : directories_[Folded(kLinkDirectory)]) {
        if (entry.type == L"SymbolicLink") {
            dos_names_.push_back(entry.name);
        }
    }
}

// Adds a device to the listing of \Device or, if it lies deeper, of its own directory.
void NameIndex::AddDevice(std::vector<DirectoryEntry>& devices, const std::wstring& path) {
    const std::wstring name = NameInDirectory(path);
    if (!name.empty()) {
        devices.push_back({name, L"Device"});
        return;
    }
    const std::size_t last = path.rfind(L'\\');
    const std::size_t first = path.find(L'\\', kDevicePrefix.size());
    std::vector<DirectoryEntry>& own = directories_[Folded(path.substr(0, last))];
    if (own.empty() && first == last) {
        devices.push_back({path.substr(kDevicePrefix.size(), last - kDevicePrefix.size()), L"Directory"});
    }
    own.push_back({path.substr(last + 1), L"Device"});
}

void NameIndex::AddOtherLinks(const Description& description) {
    for (const ObjectDirectory& directory : description.directories) {
        for (const std::wstring& name : OtherNames(directory, kLinkDirectory)) {
            AddDosDevice(name,
                         std::wstring(kDevicePrefix) + Widen(std::to_string(DerivedNumber(Narrow(name)))));
        }
    }
}

void NameIndex::AddDirectories(const Description& description) {
    std::vector<DirectoryEntry> devices(std::begin(kUsualDevices), std::end(kUsualDevices));
    for (const Disk& disk : description.disks) {
        devices.push_back({L"Harddisk" + std::to_wstring(disk.index), L"Directory"});
    }
    for (const Volume& volume : description.volumes) {
        AddDevice(devices, volume.device);
        if (!volume.link_target.empty()) {
            AddDevice(devices, volume.link_target);
        }
    }
    std::vector<DirectoryEntry> links;
    links.reserve(dos_devices_.size());
    for (const DosDevice& device : dos_devices_) {
        links.push_back({device.name, L"SymbolicLink"});
    }
    for (const ObjectDirectory& directory : description.directories) {
        for (const std::wstring& name : OtherNames(directory, kDeviceDirectory)) {
            devices.push_back({name, L"Device"});
        }
        if (directory.other_names != 0) {
            Shuffle(EqualNames(directory.path, kLinkDirectory) ? links : devices);
        }
    }
    directories_[Folded(kDeviceDirectory)] = std::move(devices);
    directories_[Folded(kLinkDirectory)] = std::move(links);
    for (const ObjectDirectory& directory : description.directories) {
        if (directory.entries) {
            directories_[Folded(directory.path)] = *directory.entries;
        }
    }
}

NameIndex::Target NameIndex::Resolve(std::wstring_view path) const {
    if (path == L"\\") {
        path = current_drive_;
    }
    if (!HasDevicePrefix(path)) {
        const auto mounted = mount_points_.find(Folded(path));
        return mounted == mount_points_.end() ? Target{}
                                              : Target{Target::Kind::kVolume, mounted->second, true};
    }
    std::wstring_view name = path.substr(4);
    const bool root = name.back() == L'\\';
    name = WithoutBackslash(name);
    Target target;
    if (StartsWith(name, kGlobalRoot)) {
        target = FindDevice(name.substr(kGlobalRoot.size() - 1));
    } else if (const std::wstring* device = FindDosDevice(name)) {
        target = FindDevice(*device);
    } else if (StartsWith(name, L"Volume{")) {
        // The mount manager also resolves volumes that have no link in \GLOBAL??.
        if (const auto volume = FindVolumeByGuid(name.substr(6))) {
            target = {Target::Kind::kVolume, *volume, false};
        }
    } else if (path[2] == L'?') {
        return Resolve(path.substr(4));
    }
    if (root && target.kind == Target::Kind::kDisk) {
        return {};
    }
    target.root = root;
    return target;
}

NameIndex::Target NameIndex::ResolveMountPoint(std::wstring_view path, std::wstring* mount_point) const {
    std::wstring candidate(path);
    if (!candidate.empty() && candidate.back() != L'\\') {
        candidate += L'\\';
    }
    while (!candidate.empty()) {
        const Target target = Resolve(candidate);
        if (target.kind == Target::Kind::kVolume && target.root) {
            *mount_point = candidate;
            return target;
        }
        const std::size_t parent = candidate.rfind(L'\\', candidate.size() - 2);
        candidate.resize(candidate.size() < 2 || parent == std::wstring::npos ? 0 : parent + 1);
    }
    return {};
}

NameIndex::Target NameIndex::FindDevice(std::wstring_view nt_device) const {
    const auto found = devices_.find(Folded(nt_device));
    return found == devices_.end() ? Target{} : found->second;
}

std::optional<std::size_t> NameIndex::FindDisk(std::uint32_t index) const {
    const auto found = disks_.find(index);
    return found == disks_.end() ? std::nullopt : std::optional(found->second);
}

std::optional<std::size_t> NameIndex::FindVolumeByGuid(std::wstring_view guid) const {
    const auto found = guids_.find(Folded(guid));
    return found == guids_.end() ? std::nullopt : std::optional(found->second);
}

const std::wstring* NameIndex::FindDosDevice(std::wstring_view name) const {
    const auto found = dos_targets_.find(Folded(name));
    return found == dos_targets_.end() ? nullptr : &found->second;
}

const std::vector<DirectoryEntry>* NameIndex::FindDirectory(std::wstring_view path) const {
    const auto found = directories_.find(Folded(path));
    return found == directories_.end() ? nullptr : &found->second;
}

}  // namespace machine
