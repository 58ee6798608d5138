#include "machine/simulation/disk_structures.h"
#include "machine/simulation/redirect.h"
#include "machine/simulation/simulated_functions.h"

namespace machine::simulated {
namespace {

constexpr std::uint32_t kBios = 1;

Answer FirmwareVariable(const Firmware& firmware, const void* buffer) {
    if (firmware.variable_length != 0) {
        Answer answer;
        answer.value = firmware.variable_length;
        return answer;
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
    Simulation* simulation = Simulation::Current();
    if (simulation == nullptr) {
        const auto real = RealFunction<decltype(&GetFirmwareType)>(L"kernel32.dll", "GetFirmwareType");
        return real == nullptr ? NotFound(FALSE) : real(type);
    }
    return Guarded(FALSE, [&]() -> BOOL {
        const Answer answer = simulation->Perform({CallFamily::kWin32, "GetFirmwareType", {}, nullptr}, [&] {
            if (type == nullptr) {
                return Answer::Failure(ERROR_INVALID_PARAMETER);
            }
            Answer told;
            told.value = simulation->machine().firmware.type;
            return told;
        });
        if (!Deliver(answer)) {
            return FALSE;
        }
        StoreNumber(*type, static_cast<std::uint32_t>(answer.value));
        return TRUE;
    });
}

DWORD WINAPI GetFirmwareEnvironmentVariableW(LPCWSTR name, LPCWSTR guid, PVOID buffer, DWORD size) {
    Simulation* simulation = Simulation::Current();
    if (simulation == nullptr) {
        const auto real = RealFunction<decltype(&GetFirmwareEnvironmentVariableW)>(
            L"kernel32.dll", "GetFirmwareEnvironmentVariableW");
        return real == nullptr ? NotFound(DWORD{0}) : real(name, guid, buffer, size);
    }
    return Guarded(DWORD{0}, [&]() -> DWORD {
        const Answer answer =
            simulation->Perform({CallFamily::kWin32, "GetFirmwareEnvironmentVariableW",
                                 TextOrEmpty(guid) + TextOrEmpty(name), nullptr},
                                [&] { return FirmwareVariable(simulation->machine().firmware, buffer); });
        return Deliver(answer) ? static_cast<DWORD>(answer.value) : 0;
    });
}

}  // namespace machine::simulated
