// The exports that return or change a setting.

#include "capture/exports/host_callback.h"
#include "capture/exports/process_settings.h"
#include "common/logger/trace.h"
#include "common/text/multi_string.h"
#include "orvane/orvane.h"

namespace {

constexpr std::uint32_t kInterfaceVersion = 4;

void TakeSelectedVolumes(const wchar_t* list, std::uint64_t count) {
    SelectedVolumes().clear();
    // The call succeeds although it logs an error: compatibility C40
    if (list == nullptr) {
        GetLogger().Write(kLogError, L"SetupSelectedVolumesList: volume_guid_list is NULL");
        return;
    }
    if (count == 0 || *list == L'\0') {
        GetLogger().Write(kLogError, L"SetupSelectedVolumesList: volume_guid_list is empty");
        return;
    }
    // Keeps an entry that is truncated at `count`: no volume has that name, so that the backup check reports
    // it. Without the entry, the volume would not be checked.
    SelectedVolumes() = SplitMultiString(list, count, CutEntry::kTaken);
}

}  // namespace

std::uint32_t GetOrvaneVersion() {
    return kInterfaceVersion;
}

void SetEventFunc(OrvaneEventCallback callback) {
    UseHostCallback(callback);
}

void SetXmlFormat(std::uint32_t format) {
    Traced(L"SetXmlFormat", [&] { gSaveXmlFormat = format; });
}

std::int64_t SetupSelectedVolumesList(const wchar_t* volume_guid_list, std::uint64_t count) {
    try {
        return Traced(L"SetupSelectedVolumesList", [&] {
            TakeSelectedVolumes(volume_guid_list, count);
            return static_cast<std::int64_t>(SelectedVolumes().size());
        });
    } catch (...) {
        GetLogger().Write(kLogError, L"SetupSelectedVolumesList Exception");
        return static_cast<std::int64_t>(SelectedVolumes().size());
    }
}
