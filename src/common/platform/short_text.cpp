#include "common/platform/short_text.h"

void ShortText::AppendByte(unsigned value) {
    constexpr wchar_t kDigits[] = L"0123456789ABCDEF";
    Append(kDigits[value >> 4 & 0xF]);
    Append(kDigits[value & 0xF]);
}

ShortText::ShortText(const GUID& guid) {
    Append(L'{');
    for (const int shift : {24, 16, 8, 0}) {
        AppendByte(static_cast<unsigned>(guid.Data1 >> shift));
    }
    for (const unsigned part : {guid.Data2, guid.Data3}) {
        Append(L'-');
        AppendByte(part >> 8);
        AppendByte(part);
    }
    for (std::size_t i = 0; i < std::size(guid.Data4); ++i) {
        if (i == 0 || i == 2) {
            Append(L'-');
        }
        AppendByte(guid.Data4[i]);
    }
    Append(L'}');
}
