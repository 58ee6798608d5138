// The forms of a volume's names, and the ways between them.

#include "common/volume/volume.h"

#include "common/logger/orvane_logger.h"

#include <boost/algorithm/string/predicate.hpp>
#include <boost/algorithm/string/trim.hpp>

#include <source_location>

namespace bmr_common {

namespace {

constexpr wchar_t kDevicePrefix[] = L"\\Device\\";
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

}  // namespace

std::wstring Volume::GetWin32APICompatibleName(const std::wstring& device_name) {
    if (!device_name.starts_with(kDevicePrefix)) {
        LogUnexpectedFormat(L"bmr_common::Volume::GetWin32APICompatibleName", device_name);
        return {};
    }
    return std::wstring(L"\\\\?\\") + L"GLOBALROOT" + device_name;
}

bool Volume::ConvertToNormalizedDeviceId(std::wstring& device_name) {
    const std::size_t start = device_name.find(kDevicePrefix);
    if (start == std::wstring::npos) {
        LogUnexpectedFormat(L"bmr_common::Volume::ConvertToNormalizedDeviceId", device_name);
        return false;
    }
    device_name.erase(0, start);
    boost::algorithm::trim_right_if(device_name, boost::algorithm::is_any_of(L"\\"));
    return true;
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
    std::wstring guid = volume_guid;
    if (guid.starts_with(kVolumeGuidPrefix)) {
        guid.erase(0, std::size(kVolumeGuidPrefix) - 1);
    }
    for (const wchar_t* closing : {L"}\\", L"}"}) {
        if (guid.ends_with(closing)) {
            guid.erase(guid.rfind(L'}'));
            break;
        }
    }
    return guid;
}

bool Volume::ConvertToNormalizedVolumeGUID(std::wstring& volume_guid) {
    const std::wstring guid = GetGuidFromVolumeGUID(volume_guid);
    if (guid.empty() || guid.find_first_of(L"{}\\") != std::wstring::npos) {
        return false;
    }
    volume_guid = kVolumeGuidPrefix + guid + L"}\\";
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
