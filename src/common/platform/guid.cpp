#include "common/platform/guid.h"

#include "common/logger/orvane_logger.h"

#include <objbase.h>

#include <array>

std::wstring GuidText(const GUID& guid) {
    std::array<wchar_t, 39> text{};
    StringFromGUID2(guid, text.data(), static_cast<int>(text.size()));
    return text.data();
}

bool CreateGuid(GUID& guid) {
    const HRESULT result = CoCreateGuid(&guid);
    if (FAILED(result)) {
        GetLogger().Write(kLogError, L"CoCreateGuid call failed error: %u", result);
        guid = {};
        return false;
    }
    return true;
}
