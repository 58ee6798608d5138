#include "capture/document/document_text.h"

#include "common/platform/string_conversion.h"
#include "common/text/decimal_text.h"

#include <algorithm>
#include <string_view>

namespace {

// Whether the conversion to the code page turns the character into markup, as it turns the full-width "<"
// into "<".
bool BecomesMarkup(wchar_t letter) {
    const std::string narrow = ConvertWStrToStr({&letter, 1});
    return narrow == "<" || narrow == ">" || narrow == "&";
}

bool IsAscii(wchar_t letter) {
    return letter <= 0x7F;
}

// Writes characters that would turn into markup, and break the document, as numeric character references.
std::wstring WithoutFalseMarkup(std::wstring_view xml) {
    std::wstring safe;
    safe.reserve(xml.size());
    for (const wchar_t letter : xml) {
        if (!IsAscii(letter) && BecomesMarkup(letter)) {
            safe.append(L"&#").append(DecimalText(unsigned{letter})).push_back(L';');
        } else {
            safe.push_back(letter);
        }
    }
    return safe;
}

}  // namespace

bool LoadEmptyDocument(CMSXmlDoc& document) {
    return document.LoadXML("<root></root>");
}

std::string DocumentText(const CMSXmlNode& root) {
    const UniqueBstr owner = root.GetXML();
    const std::wstring_view xml = TextOf(owner);
    // Most documents are ASCII and need no copy.
    return std::all_of(xml.begin(), xml.end(), IsAscii) ? ConvertWStrToStr(xml)
                                                        : ConvertWStrToStr(WithoutFalseMarkup(xml));
}
