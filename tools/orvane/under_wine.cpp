#include "tools/orvane/under_wine.h"

#include "common/windows.h"

namespace host {

bool RunsUnderWine() {
    return GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr;
}

}  // namespace host
