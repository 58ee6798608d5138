#include "support/wine.h"

#include "common/windows.h"

namespace support {

bool UnderWine() {
    return GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr;
}

}  // namespace support
