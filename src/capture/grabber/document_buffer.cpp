#include "capture/grabber/document_buffer.h"

#include "capture/grabber/grabber_exception.h"
#include "capture/grabber/info_grabber.h"
#include "common/logger/orvane_logger.h"
#include "common/platform/decimal_text.h"
#include "common/platform/safe.h"
#include "common/platform/string_conversion.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>

namespace orvane {

namespace {

// Whether the code page puts markup in the place of a letter that it lacks: the full-width "<" becomes "<".
bool BecomesMarkup(wchar_t letter) {
    const std::string narrow = ConvertWStrToStr({&letter, 1});
    return narrow == "<" || narrow == ">" || narrow == "&";
}

bool IsAscii(wchar_t letter) {
    return letter <= 0x7F;
}

// Letters that would become markup, and break the document, are written by their numbers.
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

CMSXmlNode LoadEmptyDocument(CMSXmlDoc& document) {
    if (!document.LoadXML("<root></root>")) {
        throw GrabberException(L"InfoGrabber::CaptureInfo: Failed to load XML configuration");
    }
    return document.GetRoot();
}

std::string DocumentText(const CMSXmlNode& root) {
    const UniqueBstr owner = root.GetXML();
    const std::wstring_view xml = TextOf(owner);
    // Most documents are ASCII and need no copy.
    return std::all_of(xml.begin(), xml.end(), IsAscii) ? ConvertWStrToStr(xml)
                                                        : ConvertWStrToStr(WithoutFalseMarkup(xml));
}

void CopyDocument(const std::string& text, std::uint32_t buffer_size, char* buffer,
                  std::uint32_t* required_size, std::uint32_t* status) {
    if (text.size() > std::numeric_limits<std::uint32_t>::max()) {
        throw GrabberException(L"InfoGrabber::CaptureInfo: XML is invalid");
    }
    const auto length = static_cast<std::uint32_t>(text.size());
    if (buffer_size < length) {
        // A size query is no error: compatibility C39
        GetLogger().Write(kLogTrace, L"InfoGrabber::CaptureInfo: output buffer too small");
        *status = kCaptureBufferTooSmall;
    } else {
        // No terminator follows: compatibility C119
        safe::MemoryCopy(buffer, buffer_size, text.data(), length);
        *status = kCaptureDone;
    }
    if (required_size != nullptr) {
        *required_size = length;
    }
}

}  // namespace orvane
