// The forms of volume names and the conversions between them.

#include "common/logger/orvane_logger.h"
#include "common/platform/case_folding.h"
#include "common/volume/volume.h"

#include <source_location>

namespace bmr_common {

namespace {

constexpr wchar_t kDevicePrefix[] = L"\\Device\\";
constexpr wchar_t kVolumeGuidEnd[] = L"}\\";
constexpr wchar_t kAssertionSource[] = L"src/common/volume";

void LogUnexpectedFormat(const wchar_t* function, const std::wstring& device_name) {
    GetLogger().Write(kLogTrace, L"%s device name '%s' in unexpected format", function, device_name.c_str());
}

void AssertConverted(bool converted, const wchar_t* condition, const wchar_t* message,
                     const wchar_t* function, const std::wstring& text,
                     const std::source_location where = std::source_location::current()) {
    if (!converted) {
        GetLogger().Write(kLogError, message, function, text.c_str());
        LogAssertionFailure(kAssertionSource, static_cast<int>(where.line()), condition);
    }
}

// The part from "\Device\" on, without trailing backslashes. Empty if the name does not contain "\Device\".
std::wstring_view DeviceIdIn(std::wstring_view device_name) {
    const std::size_t start = device_name.find(kDevicePrefix);
    return start == std::wstring_view::npos ? std::wstring_view()
                                            : WithoutTrailingBackslashes(device_name.substr(start));
}

// The GUID in a volume GUID path with or without its trailing backslash. Any other text is returned
// unchanged.
std::wstring_view GuidIn(std::wstring_view volume_guid) {
    if (volume_guid.starts_with(kVolumeGuidPrefix)) {
        volume_guid.remove_prefix(std::size(kVolumeGuidPrefix) - 1);
    }
    if (volume_guid.ends_with(kVolumeGuidEnd) || volume_guid.ends_with(L'}')) {
        volume_guid = volume_guid.substr(0, volume_guid.rfind(L'}'));
    }
    return volume_guid;
}

}  // namespace

std::wstring Volume::GetWin32APICompatibleName(std::wstring_view device_name) {
    if (!device_name.starts_with(kDevicePrefix)) {
        LogUnexpectedFormat(L"bmr_common::Volume::GetWin32APICompatibleName", std::wstring(device_name));
        return {};
    }
    constexpr std::wstring_view kRoot = L"\\\\?\\GLOBALROOT";
    std::wstring path;
    path.reserve(kRoot.size() + device_name.size() + 1);  // some callers append a backslash
    path.append(kRoot).append(device_name);
    return path;
}

bool Volume::ConvertToNormalizedDeviceId(std::wstring& device_name) {
    const std::wstring_view id = DeviceIdIn(device_name);
    if (id.empty()) {
        LogUnexpectedFormat(L"bmr_common::Volume::ConvertToNormalizedDeviceId", device_name);
        return false;
    }
    if (id.size() != device_name.size()) {
        device_name = std::wstring(id);
    }
    return true;
}

bool Volume::IsDevice(const std::wstring& device_name) const {
    const std::wstring_view id = DeviceIdIn(device_name);
    // A name in another form is compared unchanged and logged.
    return id.empty() ? EqualFolded(GetNormalizedDeviceId(device_name), device_name_)
                      : EqualFolded(id, device_name_);
}

std::wstring Volume::GetNormalizedDeviceId(const std::wstring& device_name) {
    std::wstring normalized = device_name;
    const bool able_to_convert_device_id = ConvertToNormalizedDeviceId(normalized);
    AssertConverted(able_to_convert_device_id, L"able_to_convert_device_id",
                    L"%s failed to convert device id %s", L"bmr_common::Volume::GetNormalizedDeviceId",
                    device_name);
    return normalized;
}

std::wstring Volume::GetGuidFromVolumeGUID(const std::wstring& volume_guid) {
    return std::wstring(GuidIn(volume_guid));
}

bool Volume::ConvertToNormalizedVolumeGUID(std::wstring& volume_guid) {
    const std::wstring_view guid = GuidIn(volume_guid);
    if (guid.empty() || guid.find_first_of(L"{}\\") != std::wstring_view::npos) {
        return false;
    }
    if (volume_guid.starts_with(kVolumeGuidPrefix) && volume_guid.ends_with(kVolumeGuidEnd)) {
        return true;  // already in the form that the system lists
    }
    std::wstring path;
    path.reserve(std::size(kVolumeGuidPrefix) + guid.size() + std::size(kVolumeGuidEnd));
    volume_guid = std::move(path.append(kVolumeGuidPrefix).append(guid).append(kVolumeGuidEnd));
    return true;
}

std::wstring Volume::GetNormalizedVolumeGUID(const std::wstring& volume_guid) {
    std::wstring normalized = volume_guid;
    const bool able_to_convert_volume_GUID = ConvertToNormalizedVolumeGUID(normalized);
    AssertConverted(able_to_convert_volume_GUID, L"able_to_convert_volume_GUID",
                    L"%s failed to convert volume_guid %s", L"bmr_common::Volume::GetNormalizedVolumeGUID",
                    volume_guid);
    return normalized;
}

}  // namespace bmr_common
