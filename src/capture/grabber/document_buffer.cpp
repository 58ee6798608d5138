#include "capture/grabber/document_buffer.h"

#include "capture/document/document_text.h"
#include "capture/grabber/grabber_exception.h"
#include "common/logger/orvane_logger.h"
#include "common/text/safe.h"
#include "orvane/orvane.h"

#include <limits>

namespace orvane {

CMSXmlNode NewDocument(CMSXmlDoc& document) {
    if (!LoadEmptyDocument(document)) {
        throw GrabberException(L"InfoGrabber::CaptureInfo: Failed to load XML configuration");
    }
    return document.GetRoot();
}

void CopyDocument(const std::string& text, std::uint32_t buffer_size, char* buffer,
                  std::uint32_t* required_size, std::uint32_t* status) {
    if (text.size() > std::numeric_limits<std::uint32_t>::max()) {
        throw GrabberException(L"InfoGrabber::CaptureInfo: XML is invalid");
    }
    const auto length = static_cast<std::uint32_t>(text.size());
    if (buffer_size < length) {
        // A size query is not an error: compatibility C39
        GetLogger().Write(kLogTrace, L"InfoGrabber::CaptureInfo: output buffer too small");
        *status = ORVANE_BUFFER_TOO_SMALL;
    } else {
        // No null terminator follows: compatibility C119
        safe::MemoryCopy(buffer, buffer_size, text.data(), length);
        *status = ORVANE_SUCCESS;
    }
    if (required_size != nullptr) {
        *required_size = length;
    }
}

}  // namespace orvane
