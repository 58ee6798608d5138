#include "machine/description/tables.h"
#include "machine/description/text.h"
#include "machine/recorder/describe/control_calls.h"
#include "machine/recorder/describe/facts.h"
#include "machine/recorder/describe/volume_names.h"
#include "machine/recorder/observe/answer_bytes.h"
#include "machine/recorder/observe/answer_texts.h"
#include "machine/simulation/device_controls.h"

#include <algorithm>
#include <functional>
#include <map>
#include <set>

namespace recorder {
namespace {

using machine::Volume;

bool Succeeded(const Answer* answer) {
    return answer != nullptr && answer->succeeded();
}

// The answers about one volume, by whichever of its names answers best.
class VolumeAnswers {
public:
    VolumeAnswers(const Observations& observations, const NamedVolume& named)
        : observations_(observations), named_(named) {}

    // Of a call on the open volume; null if nothing was answered.
    const Answer* OfDevice(const char* call) const { return AnswerOf(BestOfDevice(call)); }
    const Answer* OfRoot(const char* call) const { return AnswerOf(BestOf(call, RootNames())); }

    const Bytes* BytesOf(const char* call) const {
        const Answer* answer = OfDevice(call);
        return Succeeded(answer) ? &answer->bytes : nullptr;
    }

    // The answers for all sizes by the name that answers best.
    std::vector<const Observation*> AllOfDevice(const char* call) const {
        const Observation* best = BestOfDevice(call);
        return best == nullptr ? std::vector<const Observation*>()
                               : observations_.Find(call, best->question.object);
    }

private:
    // The volume names first: their file systems answer where those of bare devices may not.
    std::vector<std::wstring> DeviceNames() const { return {named_.forms.rbegin(), named_.forms.rend()}; }

    std::vector<std::wstring> RootNames() const {
        std::vector<std::wstring> names = DeviceNames();
        names.insert(names.end(), named_.drives.begin(), named_.drives.end());
        for (std::wstring& name : names) {
            name += L'\\';
        }
        return names;
    }

    const Observation* BestOf(const char* call, const std::vector<std::wstring>& names) const {
        const Observation* found = nullptr;
        for (const std::wstring& name : names) {
            const Observation* own = observations_.Best(call, name);
            if (own != nullptr &&
                (found == nullptr || (!found->answer.succeeded() && own->answer.succeeded()))) {
                found = own;
            }
        }
        return found;
    }

    const Observation* BestOfDevice(const char* call) const { return BestOf(call, DeviceNames()); }

    static const Answer* AnswerOf(const Observation* found) {
        return found == nullptr ? nullptr : &found->answer;
    }

    const Observations& observations_;
    const NamedVolume& named_;
};

bool FailedWith(const Answer* answer, std::uint32_t error) {
    return answer != nullptr && answer->error == error && !answer->blocks && !answer->crashed;
}

std::optional<machine::Partition> OwnPartition(const VolumeAnswers& answers) {
    return PartitionIn(answers.BytesOf(kPartitionEx), answers.BytesOf(kPartition));
}

// What is known of the members that have defaults, by the keys of their rows.
using Facts = std::map<std::string, std::function<void(Volume&)>>;

template <class Member>
void KnowPart(Facts& facts, const Answer* answer, const wchar_t* name, const char* key,
              Member Volume::*member) {
    if (!Succeeded(answer)) {
        return;
    }
    for (const Part& part : answer->parts) {
        const bool possible = part.value != 0 || std::string_view(key) != "bytesPerSector";
        if (part.name != name || !possible || part.value > kMostBytes) {
            continue;
        }
        facts[key] = [member, part](Volume& volume) {
            if constexpr (std::is_same_v<Member, std::wstring>) {
                volume.*member = machine::WideText(part.bytes);
            } else {
                volume.*member = static_cast<Member>(part.value);
            }
        };
    }
}

// A number of clusters that fills 32 bits is only the largest that GetDiskFreeSpaceW can tell.
void KnowClusters(Facts& facts, const Answer* space, const wchar_t* name, const char* key,
                  std::uint64_t Volume::*member, std::uint64_t Volume::*bytes) {
    KnowPart(facts, space, name, key, member);
    const auto known = facts.find(key);
    if (known == facts.end()) {
        return;
    }
    known->second = [take = known->second, member, bytes](Volume& volume) {
        take(volume);
        const std::uint64_t cluster = std::uint64_t{volume.sectors_per_cluster} * volume.bytes_per_sector;
        if (volume.*member == UINT32_MAX && cluster != 0 && volume.*bytes != 0) {
            volume.*member = volume.*bytes / cluster;
        }
    };
}

Facts SpaceFacts(const VolumeAnswers& answers) {
    constexpr const char* kInformation = "GetVolumeInformationW";
    Facts facts;
    const Answer* information = answers.OfRoot(kInformation);
    const Answer* space = answers.OfRoot("GetDiskFreeSpaceW");
    const Answer* space_ex = answers.OfRoot("GetDiskFreeSpaceExW");
    const Answer* length = answers.OfDevice(kLength);
    const bool has_space = Succeeded(space) || Succeeded(space_ex);
    if (FailedWith(information, ERROR_NOT_READY) && !has_space && !Succeeded(length)) {
        facts["media"] = [](Volume& volume) { volume.has_media = false; };
    }
    if (FailedWith(information, ERROR_UNRECOGNIZED_VOLUME) && !has_space) {
        facts["fileSystem"] = [](Volume& volume) { volume.file_system.clear(); };
    }
    KnowPart(facts, information, L"label", "label", &Volume::label);
    KnowPart(facts, information, L"fileSystem", "fileSystem", &Volume::file_system);
    KnowPart(facts, information, L"serial", "serial", &Volume::serial);
    KnowPart(facts, information, L"maxComponentLength", "maxComponentLength", &Volume::max_component_length);
    KnowPart(facts, information, L"flags", "flags", &Volume::file_system_flags);
    KnowPart(facts, space, L"bytesPerSector", "bytesPerSector", &Volume::bytes_per_sector);
    KnowPart(facts, space, L"sectorsPerCluster", "sectorsPerCluster", &Volume::sectors_per_cluster);
    KnowPart(facts, space_ex, L"totalBytes", "totalBytes", &Volume::total_bytes);
    KnowPart(facts, space_ex, L"freeBytes", "freeBytes", &Volume::free_bytes);
    KnowPart(facts, space_ex, L"freeBytesToCaller", "freeBytesToCaller", &Volume::free_bytes_to_caller);
    KnowClusters(facts, space, L"totalClusters", "totalClusters", &Volume::total_clusters,
                 &Volume::total_bytes);
    KnowClusters(facts, space, L"freeClusters", "freeClusters", &Volume::free_clusters, &Volume::free_bytes);
    if (const auto number = RecordIn<std::uint64_t>(answers.BytesOf(kLength))) {
        facts["length"] = [number = std::min(*number, kMostBytes)](Volume& volume) {
            volume.length = number;
        };
    }
    if (const auto partition = OwnPartition(answers)) {
        facts["partitionNumber"] = [partition](Volume& volume) { volume.partition = partition; };
    }
    return facts;
}

// The rows in their order: what is known is set, all else gets its default. Bytes are set before the clusters
// that may need them.
void Complete(const Facts& facts, const machine::Description& description, Volume& volume) {
    machine::rows::Place place;
    place.machine = &description;
    for (const char* first : {"totalBytes", "freeBytes"}) {
        if (const auto known = facts.find(first); known != facts.end()) {
            known->second(volume);
        }
    }
    for (const auto& row : machine::rows::SpaceRows()) {
        const auto known = facts.find(row.key);
        if (known != facts.end()) {
            known->second(volume);
        } else if (row.fill && !(row.key == "free" && facts.contains("freeBytes"))) {
            row.fill(volume, place);
        }
    }
    // More clusters, or more bytes in them, cannot be described.
    const std::uint64_t cluster = std::uint64_t{volume.sectors_per_cluster} * volume.bytes_per_sector;
    const std::uint64_t most = cluster == 0 ? kMostBytes : kMostBytes / cluster;
    volume.total_clusters = std::min(volume.total_clusters, most);
    volume.free_clusters = std::min(volume.free_clusters, volume.total_clusters);
}

machine::Extent ExtentAt(std::uint32_t disk, std::uint64_t offset, std::uint64_t length) {
    return {disk, std::min(offset, kMostBytes), std::min(length, kMostBytes)};
}

// A volume that does not tell its extents, but its partition, has that one. That the extents cannot be
// queried is described as an error.
void DescribeExtentByPartition(const VolumeAnswers& answers, Volume& volume) {
    const auto place = RecordIn<STORAGE_DEVICE_NUMBER>(answers.BytesOf(kDeviceNumber));
    const auto own = OwnPartition(answers);
    if (place && own && place->DeviceType == FILE_DEVICE_DISK) {
        volume.extents = {ExtentAt(place->DeviceNumber, own->offset, own->length)};
    }
}

void DescribeExtents(const VolumeAnswers& answers, Volume& volume) {
    const Bytes* bytes = answers.BytesOf(kExtents);
    if (bytes == nullptr) {
        DescribeExtentByPartition(answers, volume);
        return;
    }
    volume.extents.emplace();
    for (const DISK_EXTENT& extent : ExtentsIn(*bytes)) {
        volume.extents->push_back(ExtentAt(extent.DiskNumber,
                                           static_cast<std::uint64_t>(extent.StartingOffset.QuadPart),
                                           static_cast<std::uint64_t>(extent.ExtentLength.QuadPart)));
    }
    for (const Observation* observation : answers.AllOfDevice(kExtents)) {
        const Answer& answer = observation->answer;
        const bool too_small = answer.error != 0 &&
                               observation->question.size >= sizeof(VOLUME_DISK_EXTENTS) &&
                               observation->question.size < bytes->size();
        if (!too_small || answer.blocks || answer.crashed) {
            continue;
        }
        if (answer.error != ERROR_MORE_DATA) {
            volume.extents_short_error = answer.error;
        }
        if (answer.bytes.empty()) {
            volume.short_extents = machine::ShortExtents::kNone;
        } else if (answer.bytes.size() > sizeof(VOLUME_DISK_EXTENTS)) {
            volume.short_extents = machine::ShortExtents::kFitting;
        }
    }
}

void DescribeStorageNumber(const VolumeAnswers& answers, Volume& volume) {
    const auto number = RecordIn<STORAGE_DEVICE_NUMBER>(answers.BytesOf(kDeviceNumber));
    if (!number) {
        return;
    }
    const machine::StorageNumber own = {number->DeviceType, number->DeviceNumber, number->PartitionNumber};
    if (machine::UsualStorageNumber(volume) != own) {
        volume.storage_number = own;
    }
}

std::vector<std::wstring> MountPoints(const Observations& observations, const NamedVolume& named) {
    std::vector<std::wstring> points;
    const auto add = [&](const std::wstring& path) {
        const bool valid =
            path.size() >= 3 && machine::DriveNumber(path.substr(0, 3)) && path.back() == L'\\';
        if (valid && std::find(points.begin(), points.end(), path) == points.end()) {
            points.push_back(path);
        }
    };
    for (const std::wstring& guid : named.guids) {
        for (const std::wstring& path :
             AnsweredTexts(observations, "GetVolumePathNamesForVolumeNameW", machine::VolumeName(guid))) {
            add(path);
        }
    }
    for (const std::wstring& drive : named.drives) {
        add(drive + L'\\');
    }
    return points;
}

// A search that broke off may have listed the volumes behind, but not the other names of one that it passed.
void DescribeGuids(const Observations& observations, const NamedVolume& named, Volume& volume) {
    const std::vector<std::wstring> search = ListedNames(observations, "FindFirstVolumeW", L"");
    const Observation* asked = observations.Best("FindFirstVolumeW", L"");
    const bool whole = asked != nullptr && asked->answer.succeeded();
    const auto is_listed = [&](const std::wstring& guid) {
        return std::any_of(search.begin(), search.end(), [&](const std::wstring& name) {
            return machine::EqualNames(name, machine::VolumeName(guid));
        });
    };
    const bool behind = !whole && std::none_of(named.guids.begin(), named.guids.end(), is_listed);
    for (std::size_t i = 0; i < named.guids.size(); ++i) {
        const bool enumerated = behind || is_listed(named.guids[i]);
        if (i == 0) {
            volume.guid = named.guids[i];
            volume.enumerated = enumerated;
        } else {
            volume.aliases.push_back({named.guids[i], enumerated});
        }
    }
}

Volume DescribedVolume(const Observations& observations, const NamedVolume& named,
                       const machine::Description& description) {
    const VolumeAnswers answers(observations, named);
    Volume volume;
    volume.device = named.device;
    volume.link_target = named.link_target;
    volume.linked = named.linked;
    DescribeGuids(observations, named, volume);
    volume.mount_points = MountPoints(observations, named);
    if (const Answer* type = answers.OfRoot("GetDriveTypeW"); Succeeded(type)) {
        volume.drive_type = static_cast<std::uint32_t>(type->value);
    }
    volume.open_for_reading_error = ReadError(observations, named.forms.front());
    DescribeExtents(answers, volume);
    Complete(SpaceFacts(answers), description, volume);
    DescribeStorageNumber(answers, volume);
    return volume;
}

}  // namespace

void DescribeVolumes(const Observations& observations, machine::Description& description) {
    std::set<std::wstring> taken;
    for (const NamedVolume& named : NamedVolumes(observations)) {
        Volume volume = DescribedVolume(observations, named, description);
        // Two volumes at one mount point cannot be described.
        std::erase_if(volume.mount_points,
                      [&](const std::wstring& path) { return !taken.insert(machine::Folded(path)).second; });
        description.volumes.push_back(std::move(volume));
    }
}

}  // namespace recorder
