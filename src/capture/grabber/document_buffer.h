#pragma once

#include "common/xml/ms_xml.h"

#include <cstdint>
#include <string>

namespace orvane {

// Loads the empty document into `document` and returns its root; throws GrabberException where that fails.
CMSXmlNode NewDocument(CMSXmlDoc& document);

// The size protocol of a capture: copies `text` where it fits, sets status and size. See
// InfoGrabber::CaptureInfo.
void CopyDocument(const std::string& text, std::uint32_t buffer_size, char* buffer,
                  std::uint32_t* required_size, std::uint32_t* status);

}  // namespace orvane
