#include "common/platform/string_conversion.h"

#include "common/logger/orvane_logger.h"
#include "common/windows.h"

#include <limits>

namespace {

int Convert(std::wstring_view text, std::string& narrow) {
    return WideCharToMultiByte(CP_ACP, 0, text.data(), static_cast<int>(text.size()), narrow.data(),
                               static_cast<int>(narrow.size()), nullptr, nullptr);
}

std::string Failed(DWORD error) {
    GetLogger().Write(kLogError, L"ConvertWStrToStr: WideCharToMultiByte failed error = %u", error);
    return {};
}

}  // namespace

std::string ConvertWStrToStr(std::wstring_view text) {
    if (text.empty()) {
        return {};
    }
    if (text.size() > static_cast<std::size_t>(std::numeric_limits<int>::max())) {
        return Failed(ERROR_INVALID_PARAMETER);
    }
    std::string narrow;
    const int needed = Convert(text, narrow);
    if (needed <= 0) {
        return Failed(GetLastError());
    }
    narrow.resize(static_cast<std::size_t>(needed));
    const int written = Convert(text, narrow);
    if (written <= 0) {
        return Failed(GetLastError());
    }
    narrow.resize(static_cast<std::size_t>(written));
    return narrow;
}
