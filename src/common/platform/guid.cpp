#include "common/platform/guid.h"

#include "common/logger/orvane_logger.h"
#include "common/platform/short_text.h"

#include <objbase.h>

std::wstring GuidText(const GUID& guid) {
    return std::wstring(ShortText(guid));
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
