#pragma once

#include "machine/description/description.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace machine {

// An index of all names in a description. The time of a lookup does not depend on the size of the machine.
// Stores positions in the description that it was built from. All lookups ignore case.
class NameIndex {
public:
    NameIndex() = default;
    explicit NameIndex(const Description& description);

    // The object that a path refers to.
    struct Target {
        enum class Kind { kNone, kDisk, kVolume };
        Kind kind = Kind::kNone;
        std::size_t position = 0;  // in Description::disks or Description::volumes
        bool root = false;         // the root directory of the volume, not the volume itself
    };

    // Resolves "\\.\PhysicalDrive0", "\\?\Volume{...}", "\\?\GLOBALROOT\Device\HarddiskVolume1", "C:\" and
    // the folders of mount points.
    Target Resolve(std::wstring_view path) const;

    // Finds the longest mount point that the path starts with. Returns Kind::kNone if there is none.
    Target ResolveMountPoint(std::wstring_view path, std::wstring* mount_point) const;

    Target FindDevice(std::wstring_view nt_device) const;
    std::optional<std::size_t> FindDisk(std::uint32_t index) const;
    std::optional<std::size_t> FindVolumeByGuid(std::wstring_view guid) const;  // "{...}"
    const std::wstring* FindDosDevice(std::wstring_view name) const;
    const std::vector<DirectoryEntry>* FindDirectory(std::wstring_view path) const;

    // What QueryDosDeviceW lists, in order.
    const std::vector<std::wstring>& dos_names() const noexcept { return dos_names_; }

    // The names that a volume search returns, in order: "\\?\Volume{...}\".
    const std::vector<std::wstring>& volume_names() const noexcept { return volume_names_; }

    std::uint32_t drive_mask() const noexcept { return drive_mask_; }

private:
    void AddDisk(const Disk& disk, std::size_t position);
    void AddVolume(const Volume& volume, std::size_t position);
    void AddVolumeName(const std::wstring& guid, const Volume& volume, std::size_t position, bool enumerated);
    void AddDosDevice(const std::wstring& name, const std::wstring& target);
    void SetDosDevice(const std::wstring& name, const std::wstring& target);
    void AddDosNames(const Description& description);
    void AddDirectories(const Description& description);
    void AddDevice(std::vector<DirectoryEntry>& devices, const std::wstring& path);
    void AddOtherLinks(const Description& description);

    std::unordered_map<std::uint32_t, std::size_t> disks_;
    std::unordered_map<std::wstring, Target> devices_;
    std::unordered_map<std::wstring, std::size_t> guids_;
    std::unordered_map<std::wstring, std::size_t> mount_points_;
    std::unordered_map<std::wstring, std::wstring> dos_targets_;
    std::unordered_map<std::wstring, std::vector<DirectoryEntry>> directories_;
    std::vector<DosDevice> dos_devices_;
    std::vector<std::wstring> dos_names_;
    std::vector<std::wstring> volume_names_;
    std::wstring current_drive_;
    std::uint32_t drive_mask_ = 0;
};

}  // namespace machine
