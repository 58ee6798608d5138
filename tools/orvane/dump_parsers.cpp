#include "tools/orvane/dump_parsers.h"

#include "tools/orvane/log_lines.h"

namespace host {

namespace {

constexpr std::string_view kDiskHeading = "[Disk/Partition Information]";

// The indent of the lines after "Drive letter/Mount points: ".
constexpr std::string_view kMountPointIndent = "  ";

// Extracts the readable size from the text, "476.94 GB" from "512110190592(476.94 GB)".
std::string ReadableSize(std::string_view size) {
    const std::size_t begin = size.find('(');
    if (begin == std::string_view::npos || !size.ends_with(')')) {
        return std::string(size);
    }
    return std::string(size.substr(begin + 1, size.size() - begin - 2));
}

template <class Verdicts>
std::optional<Verdicts> Complete(const Verdicts& verdicts, std::uint32_t judged, std::uint32_t announced) {
    return verdicts.size() == announced && judged == announced ? std::optional(verdicts) : std::nullopt;
}

}  // namespace

void DiskDumpParser::Take(const LogMessage& message) {
    if (message.level == ORVANE_LEVEL_INFORMATION) {
        TakeLine(message.text);
    }
}

void DiskDumpParser::TakeLine(std::string_view line) {
    if (stage_ != Stage::kCount && line == kDiskHeading) {
        stage_ = Stage::kId;
        return;
    }
    switch (stage_) {
        case Stage::kCount:
            if (const auto count = NumberAfter(line, "Number of Disks: ")) {
                announced_ = *count;
                stage_ = Stage::kDisk;
            }
            break;
        case Stage::kId:
            if (const auto index = NumberAfter(line, "Disk id: ")) {
                disks_.push_back({.index = *index, .size = {}, .verdict = {}});
                stage_ = Stage::kVerdict;
            }
            break;
        case Stage::kVerdict:
            // The backup check may log other lines first.
            if (const auto answer = After(line, "  Available for backup: ")) {
                disks_.back().verdict.can_backup = *answer == "True";
                ++judged_;
                stage_ = Stage::kDetails;
            }
            break;
        case Stage::kDetails:
            TakeDetail(line);
            break;
        case Stage::kDisk:
            break;
    }
}

void DiskDumpParser::TakeDetail(std::string_view line) {
    DiskVerdict& disk = disks_.back();
    if (const auto reason = After(line, "    Failure reason: ")) {
        disk.verdict.reasons.emplace_back(*reason);
    } else if (const auto size = After(line, "  Disk Size: ")) {
        disk.size = ReadableSize(*size);
        stage_ = Stage::kDisk;
    }
}

std::optional<std::vector<DiskVerdict>> DiskDumpParser::Result() const {
    return stage_ == Stage::kCount ? std::nullopt : Complete(disks_, judged_, announced_);
}

void VolumeDumpParser::Take(const LogMessage& message) {
    if (message.level == ORVANE_LEVEL_INFORMATION) {
        TakeLine(message.text);
    } else if (stage_ == Stage::kMountPoints && IsLostLine(message)) {
        volumes_.back().mount_points.emplace_back(kLostText);
    }
}

void VolumeDumpParser::TakeLine(std::string_view line) {
    switch (stage_) {
        case Stage::kCount:
            if (const auto count = NumberAfter(line, "Number of volumes: ")) {
                announced_ = *count;
                stage_ = Stage::kVolume;
            }
            break;
        case Stage::kVolume:
            // The remaining lines of a volume begin with labels, so that no name in them can start a new
            // volume.
            if (NumberAfter(line, "Volume #")) {
                volumes_.emplace_back();
                stage_ = Stage::kIdentity;
            }
            break;
        case Stage::kIdentity:
            TakeIdentity(line);
            break;
        case Stage::kReasons:
            if (const auto reason = After(line, "  Failure reason: ")) {
                volumes_.back().verdict.reasons.emplace_back(*reason);
            } else if (line.starts_with("Drive letter/Mount points:")) {
                stage_ = Stage::kMountPoints;
            } else if (line == "Error: failed to obtain mount points information") {
                stage_ = Stage::kVolume;
            }
            break;
        case Stage::kMountPoints:
            if (const auto path = After(line, kMountPointIndent)) {
                volumes_.back().mount_points.emplace_back(*path);
            } else {
                stage_ = Stage::kVolume;
            }
            break;
    }
}

void VolumeDumpParser::TakeIdentity(std::string_view line) {
    VolumeVerdict& volume = volumes_.back();
    if (const auto id = After(line, "Volume ID: ")) {
        volume.id = *id;
    } else if (const auto device = After(line, "Device name: ")) {
        volume.device = *device;
    } else if (const auto answer = After(line, "Volume available for backup: ")) {
        volume.verdict.can_backup = *answer == "True";
        ++judged_;
        stage_ = Stage::kReasons;
    }
}

std::optional<std::vector<VolumeVerdict>> VolumeDumpParser::Result() const {
    return stage_ == Stage::kCount ? std::nullopt : Complete(volumes_, judged_, announced_);
}

}  // namespace host
