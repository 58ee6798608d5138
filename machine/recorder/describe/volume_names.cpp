#include "machine/recorder/describe/volume_names.h"

#include "machine/description/text.h"
#include "machine/recorder/describe/control_calls.h"
#include "machine/recorder/observe/answer_texts.h"

#include <algorithm>

namespace recorder {
namespace {

constexpr const char* kNameOfMountPoint = "GetVolumeNameForVolumeMountPointW";
constexpr std::wstring_view kGlobalRoot = L"\\\\?\\GLOBALROOT";
constexpr std::wstring_view kVolumeForm = L"\\\\?\\Volume{";
constexpr std::wstring_view kDriveForm = L"\\\\.\\";
constexpr std::wstring_view kDeviceDirectory = L"\\Device\\";

std::wstring TargetOf(const Observations& observations, const std::wstring& name) {
    const auto targets = AnsweredTexts(observations, "QueryDosDeviceW", name);
    return targets.empty() ? std::wstring() : targets.front();
}

// "{...}" in "\\?\Volume{...}"; empty if it is no GUID.
std::wstring GuidOfForm(const std::wstring& form) {
    const std::wstring guid = form.substr(kVolumeForm.size() - 1);
    return machine::ParseGuid(machine::Narrow(guid)) ? guid : std::wstring();
}

class Collector {
public:
    explicit Collector(const Observations& observations) : observations_(observations) {}

    std::vector<NamedVolume> Collect() {
        const std::vector<std::wstring> forms = observations_.ObjectsOf("CreateFileW");
        for (const std::wstring& form : forms) {
            // A device name ends without a backslash.
            const bool device = machine::StartsWith(form, kGlobalRoot) && form.back() != L'\\';
            if (device && IsVolume(form)) {
                At(form.substr(kGlobalRoot.size())).forms.push_back(form);
            }
        }
        AddDrives(forms);
        AddGuids(forms);
        PutOwnGuidFirst();
        SplitLinkTargets();
        return std::move(volumes_);
    }

private:
    // Not a disk, and not only a name: something answers.
    bool IsVolume(const std::wstring& form) const {
        const Observation* type = observations_.Best("GetDriveTypeW", form + L'\\');
        if (type == nullptr) {
            return false;
        }
        const auto openings = observations_.Find("CreateFileW", form);
        const bool found = std::any_of(openings.begin(), openings.end(), [](const Observation* opening) {
            return opening->answer.error != ERROR_FILE_NOT_FOUND &&
                   opening->answer.error != ERROR_PATH_NOT_FOUND;
        });
        return found || type->answer.value != DRIVE_NO_ROOT_DIR;
    }

    // Whether a drive that leads to no known device has a root: it may be a folder of another drive.
    bool HasRoot(const std::wstring& drive) const {
        const Observation* type = observations_.Best("GetDriveTypeW", drive + L'\\');
        return type != nullptr && type->answer.succeeded() && type->answer.value != DRIVE_NO_ROOT_DIR;
    }

    NamedVolume* Find(const std::wstring& device) {
        const auto found = std::find_if(volumes_.begin(), volumes_.end(), [&](const NamedVolume& volume) {
            return machine::EqualNames(volume.device, device);
        });
        return found == volumes_.end() ? nullptr : &*found;
    }

    NamedVolume& At(const std::wstring& device) {
        if (NamedVolume* known = Find(device)) {
            return *known;
        }
        volumes_.push_back({});
        volumes_.back().device = device;
        return volumes_.back();
    }

    void AddDrives(const std::vector<std::wstring>& forms) {
        for (const std::wstring& form : forms) {
            if (!machine::StartsWith(form, kDriveForm) || form.size() != kDriveForm.size() + 2) {
                continue;
            }
            const std::wstring drive = form.substr(kDriveForm.size());
            const std::wstring target = TargetOf(observations_, drive);
            NamedVolume* volume = Find(target);
            if (volume == nullptr && !target.empty() && HasRoot(drive)) {
                volume = &At(std::wstring(kDeviceDirectory) + L"Drive" + drive.front());
            }
            if (volume != nullptr) {
                volume->drives.push_back(drive);
                volume->forms.push_back(form);
            }
        }
    }

    void AddGuids(const std::vector<std::wstring>& forms) {
        for (const std::wstring& form : forms) {
            if (!machine::StartsWith(form, kVolumeForm)) {
                continue;
            }
            const std::wstring guid = GuidOfForm(form);
            const std::wstring target = TargetOf(observations_, L"Volume" + guid);
            if (guid.empty() || (target.empty() && !IsVolume(form))) {
                continue;
            }
            NamedVolume* volume = Find(target);
            if (volume == nullptr) {
                volume = Unlinked(form, guid);
                volume->linked = observations_.Best("QueryDosDeviceW", L"Volume" + guid) != nullptr;
            }
            volume->guids.push_back(guid);
            volume->forms.push_back(form);
        }
    }

    // The mount points of a volume: by its name, and those that tell its name.
    std::vector<std::wstring> MountPointsOf(const std::wstring& guid) const {
        auto paths =
            AnsweredTexts(observations_, "GetVolumePathNamesForVolumeNameW", machine::VolumeName(guid));
        const auto telling = MountPointsThatTell(guid);
        paths.insert(paths.end(), telling.begin(), telling.end());
        return paths;
    }

    std::vector<std::wstring> MountPointsThatTell(const std::wstring& guid) const {
        std::vector<std::wstring> paths;
        for (const std::wstring& path : observations_.ObjectsOf(kNameOfMountPoint)) {
            const Bytes* name = observations_.BytesOf(kNameOfMountPoint, path);
            if (name != nullptr && machine::EqualNames(machine::WideText(*name), machine::VolumeName(guid))) {
                paths.push_back(path);
            }
        }
        return paths;
    }

    // The volume of a name whose link does not lead to a device: by its drive letter, by its place on the
    // disks, or else a volume of its own.
    NamedVolume* Unlinked(const std::wstring& form, const std::wstring& guid) {
        for (const std::wstring& path : MountPointsOf(guid)) {
            NamedVolume* volume =
                path.size() == 3 ? Find(TargetOf(observations_, path.substr(0, 2))) : nullptr;
            if (volume != nullptr) {
                return volume;
            }
        }
        const Observation* own = observations_.Best(kExtents, form);
        for (NamedVolume& volume : volumes_) {
            const Observation* other = observations_.Best(kExtents, volume.forms.front());
            if (volume.guids.empty() && own != nullptr && other != nullptr && own->answer.succeeded() &&
                own->answer == other->answer) {
                return &volume;
            }
        }
        return &At(std::wstring(kDeviceDirectory) + L"Volume" + guid);
    }

    // Mount points tell a volume's own GUID.
    void PutOwnGuidFirst() {
        for (NamedVolume& volume : volumes_) {
            const auto own =
                std::find_if(volume.guids.begin(), volume.guids.end(),
                             [&](const std::wstring& guid) { return !MountPointsThatTell(guid).empty(); });
            if (own != volume.guids.end()) {
                std::rotate(volume.guids.begin(), own, own + 1);
            }
        }
    }

    // A volume whose drive letter leads to one device and whose links lead to another one is one volume.
    void SplitLinkTargets() {
        for (NamedVolume& linked : volumes_) {
            if (linked.guids.empty() || !linked.drives.empty()) {
                continue;
            }
            const std::vector<std::wstring> paths = MountPointsOf(linked.guids.front());
            const auto other = std::find_if(volumes_.begin(), volumes_.end(), [&](const NamedVolume& volume) {
                return volume.guids.empty() &&
                       std::any_of(paths.begin(), paths.end(), [&](const std::wstring& path) {
                           return std::find(volume.drives.begin(), volume.drives.end(), path.substr(0, 2)) !=
                                      volume.drives.end() &&
                                  path.size() == 3;
                       });
            });
            if (other != volumes_.end()) {
                other->link_target = linked.device;
                other->guids = std::move(linked.guids);
                other->forms.insert(other->forms.end(), linked.forms.begin(), linked.forms.end());
                linked.forms.clear();
            }
        }
        std::erase_if(volumes_, [](const NamedVolume& volume) { return volume.forms.empty(); });
    }

    const Observations& observations_;
    std::vector<NamedVolume> volumes_;
};

// Puts the volumes that the search returns first, in its order: where the search breaks off, those behind are
// not known.
void SortBySearch(const Observations& observations, std::vector<NamedVolume>& volumes) {
    const std::vector<std::wstring> search = ListedNames(observations, "FindFirstVolumeW", L"");
    const auto rank = [&](const NamedVolume& volume) {
        std::size_t lowest = search.size();
        for (const std::wstring& guid : volume.guids) {
            const auto found = std::find_if(search.begin(), search.end(), [&](const std::wstring& name) {
                return machine::EqualNames(name, machine::VolumeName(guid));
            });
            lowest = std::min(lowest, static_cast<std::size_t>(found - search.begin()));
        }
        return lowest;
    };
    std::stable_sort(volumes.begin(), volumes.end(), [&](const NamedVolume& left, const NamedVolume& right) {
        return rank(left) < rank(right);
    });
}

}  // namespace

std::vector<NamedVolume> NamedVolumes(const Observations& observations) {
    std::vector<NamedVolume> volumes = Collector(observations).Collect();
    SortBySearch(observations, volumes);
    return volumes;
}

}  // namespace recorder
