#include "documents/report/part_texts.h"

#include "documents/show/partition_types.h"

#include <string_view>

namespace documents {

namespace {

constexpr std::string_view kHexDigits = "0123456789ABCDEF";

// "C:" of "C:\".
std::string WithoutSlash(std::string path) {
    if (path.size() > 1 && path.back() == '\\') {
        path.pop_back();
    }
    return path;
}

void AddTo(std::string& list, const std::string& item) {
    if (!item.empty()) {
        list += (list.empty() ? "" : ", ") + item;
    }
}

// The type's name as the beginning of a sentence: "Recovery".
std::string TypeTitle(const Partition& partition) {
    std::string title = TypeName(partition);
    if (title.front() >= 'a' && title.front() <= 'z') {
        title.front() = static_cast<char>(title.front() - 'a' + 'A');
    }
    return title;
}

bool HasName(const Volume& volume) {
    return (volume.letter && !volume.letter->empty()) ||
           (volume.mount_points && !volume.mount_points->empty()) || (volume.label && !volume.label->empty());
}

}  // namespace

std::string HexNumber(std::uint32_t number) {
    constexpr unsigned kBits = 32;
    std::string text;
    for (unsigned shift = kBits; shift > 0;) {
        shift -= 4;
        text += kHexDigits[(number >> shift) & 0xFU];
    }
    return text;
}

std::string TitleOf(const Volume& volume) {
    if (volume.letter && !volume.letter->empty()) {
        return WithoutSlash(*volume.letter);
    }
    if (volume.mount_points && !volume.mount_points->empty()) {
        return WithoutSlash(volume.mount_points->front());
    }
    if (volume.label && !volume.label->empty()) {
        return *volume.label;
    }
    if (volume.device) {
        return volume.device->substr(volume.device->rfind('\\') + 1);
    }
    return "Volume without a name";
}

std::string TitleOf(const DiskPart& part) {
    switch (part.kind) {
        case PartKind::kGap:
            return part.in_extended ? "Free space" : "Unallocated";
        case PartKind::kUndescribed:
            return "Not in the document";
        case PartKind::kPartition:
        case PartKind::kVolume:
            break;
    }
    if (part.extent && (HasName(*part.extent->volume) || part.partition == nullptr)) {
        return TitleOf(*part.extent->volume);
    }
    // Format 1 names the drives of partitions whose volumes it leaves out.
    const std::string drive = part.partition->drive.value_or("");
    return drive.empty() ? TypeTitle(*part.partition) : WithoutSlash(drive);
}

std::string DetailsOf(const DiskPart& part) {
    std::string details;
    if (part.partition != nullptr) {
        AddTo(details, "Partition " + std::to_string(part.number));
        if (part.partition->kind == PartitionKind::kLogical) {
            AddTo(details, "logical");
        }
        if (TitleOf(part) != TypeTitle(*part.partition)) {
            AddTo(details, TypeName(*part.partition));
        }
        if (part.partition->active.value_or(false)) {
            AddTo(details, "active");
        }
    } else if (part.kind == PartKind::kGap && part.in_extended) {
        AddTo(details, "In the extended partition");
    }
    if (part.extent && part.extent->volume->extents->size() > 1) {
        AddTo(details, "extent " + std::to_string(part.extent->index + 1) + " of " +
                           std::to_string(part.extent->volume->extents->size()));
    } else if (!part.extent && part.partition != nullptr && IsDynamicType(*part.partition)) {
        AddTo(details, "no volume");
    }
    if (!part.others.empty()) {
        AddTo(details, std::to_string(part.others.size()) +
                           (part.others.size() == 1 ? " more volume" : " more volumes") + " in its place");
    }
    return details;
}

}  // namespace documents
