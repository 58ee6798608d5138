#include "machine/simulation/disk_structures.h"
#include "machine/simulation/redirect.h"
#include "machine/simulation/simulated_functions.h"

namespace machine::simulated {
namespace {

constexpr std::uint32_t kBios = 1;

Answer FirmwareVariable(const Firmware& firmware, const void* buffer) {
    if (firmware.variable_length != 0) {
        return Answer::Success(firmware.variable_length);
    }
    if (firmware.variable_error) {
        return Answer::Failure(*firmware.variable_error);
    }
    if (firmware.type == kBios) {
        return Answer::Failure(ERROR_INVALID_FUNCTION);
    }
    return Answer::Failure(buffer == nullptr ? ERROR_NOACCESS : ERROR_ENVVAR_NOT_FOUND);
}

template <class Result>
Result NotFound(Result failure) {
    SetLastError(ERROR_PROC_NOT_FOUND);
    return failure;
}

}  // namespace

BOOL WINAPI GetFirmwareType(PFIRMWARE_TYPE type) {
    return Simulated(
        Simulation::Current(), "GetFirmwareType", FALSE,
        [&] {
            const auto real = RealFunction<decltype(&GetFirmwareType)>(L"kernel32.dll", "GetFirmwareType");
            return real == nullptr ? NotFound(FALSE) : real(type);
        },
        [&](CallFrame& frame) {
            const Answer answer = frame.Perform({}, nullptr, [&] {
                return type == nullptr ? Answer::Failure(ERROR_INVALID_PARAMETER)
                                       : Answer::Success(frame.simulation().machine().firmware.type);
            });
            if (!answer.failed) {
                StoreNumber(*type, static_cast<std::uint32_t>(answer.value));
            }
            return Succeeded(answer);
        });
}

DWORD WINAPI GetFirmwareEnvironmentVariableW(LPCWSTR name, LPCWSTR guid, PVOID buffer, DWORD size) {
    return Simulated(
        Simulation::Current(), "GetFirmwareEnvironmentVariableW", DWORD{0},
        [&] {
            const auto real = RealFunction<decltype(&GetFirmwareEnvironmentVariableW)>(
                L"kernel32.dll", "GetFirmwareEnvironmentVariableW");
            return real == nullptr ? NotFound(DWORD{0}) : real(name, guid, buffer, size);
        },
        [&](CallFrame& frame) {
            return ValueOf(
                frame.Perform(
                    TextOrEmpty(guid) + TextOrEmpty(name), nullptr,
                    [&] { return FirmwareVariable(frame.simulation().machine().firmware, buffer); }),
                DWORD{0});
        });
}

}  // namespace machine::simulated
