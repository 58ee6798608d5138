#include "tools/orvane/machine_choice.h"

#include "common/windows.h"
#include "tools/orvane/default_machine.h"

namespace host {

namespace {

bool RunsUnderWine() {
    return GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr;
}

}  // namespace

std::optional<machine::Description> ChooseMachine(const std::optional<std::filesystem::path>& file) {
    if (file) {
        return machine::LoadDescription(*file);
    }
    if (RunsUnderWine()) {
        return machine::ParseDescription(kDefaultMachine, kDefaultMachineName);
    }
    return std::nullopt;
}

}  // namespace host
