#include "capture/exports/process_settings.h"

namespace {

constexpr std::uint32_t kDefaultFormat = 2;

}  // namespace

std::uint32_t gSaveXmlFormat = kDefaultFormat;

std::vector<std::wstring>& SelectedVolumes() {
    static std::vector<std::wstring> volumes;
    return volumes;
}

const std::vector<orvane::RequestedDisk>& RequestedDisks() {
    static const std::vector<orvane::RequestedDisk> disks;
    return disks;
}
