#include "capture/environment/firmware.h"

#include "common/logger/orvane_logger.h"
#include "common/platform/system_library.h"
#include "common/text/raw_value.h"

#include <iterator>
#include <string>

namespace {

// The error code is used as an offset into the text and is not shown: compatibility C15
void LogUndecided(DWORD error) {
    constexpr wchar_t kText[] = L"GetFirmwareEnvironment function failed to find firmware type. Error code ";
    constexpr std::size_t kLength = std::size(kText) - 1;
    GetLogger().Write(kLogError, L"%s", kText + (error < kLength ? error : kLength));
}

}  // namespace

bool DetectFirmwareType(std::uint32_t& type) {
    type = kFirmwareUnknown;
    const auto read_variable = Kernel32DLL::Get().GetFirmwareEnvironmentVariableW;
    if (read_variable == nullptr) {
        GetLogger().Write(kLogError, L"GetFirmwareEnvironment function does not exist.");
        return false;
    }
    const std::wstring name;
    const std::wstring name_space = L"{00000000-0000-0000-0000-000000000000}";
    if (read_variable(name.c_str(), name_space.c_str(), nullptr, 0) != 0) {
        type = kFirmwareUefi;
        return true;
    }
    const DWORD error = GetLastError();
    switch (error) {
        case ERROR_INVALID_FUNCTION:  // no such interface: started by a legacy BIOS
            type = kFirmwareBios;
            return true;
        case ERROR_NOACCESS:  // the interface exists and rejects the null buffer
            type = kFirmwareUefi;
            return true;
        default:
            LogUndecided(error);
            return false;
    }
}

bool FindFirmwareType(std::uint32_t& type) {
    const auto get_firmware_type = Kernel32DLL::Get().GetFirmwareType;
    if (get_firmware_type == nullptr) {
        return DetectFirmwareType(type);
    }
    FIRMWARE_TYPE answer{};
    const bool known = get_firmware_type(&answer) == TRUE;
    type = RawValue(answer);  // the value may match no enumerator
    return known;
}
