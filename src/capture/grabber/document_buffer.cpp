#include "capture/grabber/document_buffer.h"

#include "capture/grabber/grabber_exception.h"
#include "capture/grabber/info_grabber.h"
#include "common/logger/orvane_logger.h"
#include "common/platform/safe.h"
#include "common/platform/string_conversion.h"

#include <algorithm>
#include <limits>

namespace orvane {

namespace {

// Whether the code page puts markup in the place of a letter that it lacks: the full-width "<" becomes "<".
bool BecomesMarkup(wchar_t letter) {
    const std::string narrow = ConvertWStrToStr(std::wstring(1, letter));
    return narrow == "<" || narrow == ">" || narrow == "&";
}

bool IsNotAscii(wchar_t letter) {
    return letter > 0x7F;
}

// Such a letter, which would break the document, is written by its number.
std::wstring WithoutFalseMarkup(std::wstring xml) {
    auto letter = std::find_if(xml.begin(), xml.end(), IsNotAscii);
    if (letter == xml.end()) {
        return xml;
    }
    std::wstring safe(xml.begin(), letter);
    for (; letter != xml.end(); ++letter) {
        if (IsNotAscii(*letter) && BecomesMarkup(*letter)) {
            safe += L"&#" + std::to_wstring(static_cast<unsigned>(*letter)) + L";";
        } else {
            safe += *letter;
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
    return ConvertWStrToStr(WithoutFalseMarkup(root.GetXML()));
}

void CopyDocument(const std::string& text, std::uint32_t buffer_size, char* buffer,
                  std::uint32_t* required_size, std::uint32_t* status) {
    if (text.size() > std::numeric_limits<std::uint32_t>::max()) {
        throw GrabberException(L"InfoGrabber::CaptureInfo: XML is invalid");
    }
    const auto length = static_cast<std::uint32_t>(text.size());
    if (buffer_size < length) {
        // A size query is no error.
        GetLogger().Write(kLogTrace, L"InfoGrabber::CaptureInfo: output buffer too small");
        *status = kCaptureBufferTooSmall;
    } else {
        safe::MemoryCopy(buffer, buffer_size, text.data(), length);
        *status = kCaptureDone;
    }
    if (required_size != nullptr) {
        *required_size = length;
    }
}

}  // namespace orvane
