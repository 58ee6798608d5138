#include "documents/report/volume_section.h"

#include "documents/report/disk_map.h"
#include "documents/report/page_template.h"
#include "documents/report/part_texts.h"
#include "documents/report/verdict_section.h"
#include "documents/show/show.h"

#include <cstddef>
#include <unordered_map>
#include <utility>

namespace documents {

namespace {

// The verdicts by volume GUID path and by device.
class VerdictIndex {
public:
    explicit VerdictIndex(const Verdicts* verdicts) {
        if (verdicts == nullptr || !verdicts->volumes) {
            return;
        }
        for (const VolumeVerdict& volume : *verdicts->volumes) {
            verdicts_.emplace(volume.path.empty() ? volume.device : volume.path, &volume.verdict);
        }
    }

    // Null if there is none.
    const Verdict* Of(const Volume& volume) const {
        const auto& key = volume.path ? volume.path : volume.device;
        const auto found = key ? verdicts_.find(*key) : verdicts_.end();
        return found == verdicts_.end() ? nullptr : found->second;
    }

private:
    std::unordered_map<std::string, const Verdict*> verdicts_;
};

void AddTo(std::string& list, const std::string& item) {
    list += (list.empty() ? "" : ", ") + item;
}

std::string DetailsOf(const Volume& volume) {
    std::string details;
    if (volume.mount_points) {
        for (const std::string& mount_point : *volume.mount_points) {
            AddTo(details, mount_point);
        }
    }
    if (volume.device) {
        AddTo(details, *volume.device);
    }
    if (volume.serial) {
        AddTo(details, "serial number " + HexNumber(*volume.serial));
    }
    if (volume.block_size) {
        AddTo(details, "clusters of " + SizeText(*volume.block_size, false));
    }
    return details;
}

PageData PlacesOf(const Volume& volume, const MachineParts& parts) {
    std::vector<std::string> places;
    if (!volume.extents) {
        places.emplace_back("unknown");
    } else {
        for (const Extent& extent : *volume.extents) {
            places.push_back(parts.PlaceNameOf(extent));
        }
    }
    return TextsOf(places);
}

void Fill(PageData& data, const Volume& volume, const MachineParts& parts, const Verdict* verdict) {
    const auto size_of = [](const std::optional<std::uint64_t>& size) {
        return size ? SizeText(*size, false) : "unknown";
    };
    const auto bytes_of = [](const std::optional<std::uint64_t>& size) {
        return size ? std::to_string(*size) : "";
    };
    data["look"] = LookOf(volume);
    data["volume_title"] = TitleOf(volume);
    data["volume_label"] = TextOrNone(LabelOf(volume));
    data["volume_marks"] = TextsOf(MarksOf(volume));
    data["volume_places"] = PlacesOf(volume, parts);
    data["volume_used"] = size_of(volume.used);
    data["volume_used_bytes"] = bytes_of(volume.used);
    data["volume_size"] = size_of(volume.size);
    data["volume_size_bytes"] = bytes_of(volume.size);
    data["volume_details"] = DetailsOf(volume);
    data["volume_path"] = TextOrNone(volume.path);
    if (verdict == nullptr) {
        data["volume_verdict"] = PageData(false);
    } else {
        data["volume_verdict"] = WordOf(*verdict);
    }
}

}  // namespace

std::vector<std::string> MarksOf(const Volume& volume) {
    std::vector<std::string> marks;
    if (volume.system.value_or(false)) {
        marks.emplace_back("Windows");
    }
    if (volume.boot.value_or(false)) {
        marks.emplace_back("starts the machine");
    }
    if (volume.dynamic.value_or(false)) {
        marks.emplace_back("dynamic");
    }
    return marks;
}

std::string LabelOf(const Volume& volume) {
    std::string text;
    if (volume.label && !volume.label->empty() && *volume.label != TitleOf(volume)) {
        AddTo(text, *volume.label);
    }
    if (volume.file_system && !volume.file_system->empty()) {
        AddTo(text, *volume.file_system);
    }
    return text;
}

void AppendVolumes(std::string& page, const Machine& machine, const MachineParts& parts,
                   const Verdicts* verdicts) {
    const VerdictIndex index(verdicts);
    PageTemplate row(kVolumeTemplate);
    PageData data;
    for (const Volume& volume : machine.volumes) {
        Fill(data, volume, parts, index.Of(volume));
        row.AppendTo(page, data);
    }
}

}  // namespace documents
