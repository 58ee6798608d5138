#include "capture/document/fields.h"

#include "common/platform/guid.h"

std::wstring ValueText(std::int32_t value) {
    return std::to_wstring(value);
}

std::wstring ValueText(std::uint32_t value) {
    return std::to_wstring(value);
}

std::wstring ValueText(std::int64_t value) {
    return std::to_wstring(value);
}

std::wstring ValueText(std::uint64_t value) {
    return std::to_wstring(value);
}

std::wstring ValueText(std::uint8_t value) {
    return std::to_wstring(value);
}

std::wstring ValueText(bool value) {
    return value ? L"1" : L"0";
}

std::wstring ValueText(const GUID& value) {
    return GuidText(value);
}

const std::wstring& ValueText(const std::wstring& value) {
    return value;
}
