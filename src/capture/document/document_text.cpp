#include "capture/document/document_text.h"

#include "common/platform/string_conversion.h"
#include "common/text/decimal_text.h"

#include <algorithm>
#include <string_view>

namespace {

// Whether the conversion to the code page turns the character into one that breaks the document: into markup,
// as code page 1252 turns the full-width "<" into "<", or into a control character, as code page 874 does
// with the section sign.
bool BreaksTheDocument(wchar_t letter) {
    const std::string narrow = ConvertWStrToStr({&letter, 1});
    return narrow.size() == 1 && (narrow == "<" || narrow == ">" || narrow == "&" ||
                                  static_cast<unsigned char>(narrow.front()) < 0x20);
}

bool IsAscii(wchar_t letter) {
    return letter <= 0x7F;
}

// Writes the characters that the conversion would break the document with as numeric character references.
std::wstring SafeToConvert(std::wstring_view xml) {
    std::wstring safe;
    safe.reserve(xml.size());
    for (const wchar_t letter : xml) {
        if (!IsAscii(letter) && BreaksTheDocument(letter)) {
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
                                                        : ConvertWStrToStr(SafeToConvert(xml));
}
