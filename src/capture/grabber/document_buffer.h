#pragma once

#include "common/xml/ms_xml.h"

#include <cstdint>
#include <string>

namespace orvane {

// Loads the empty document into `document` and returns its root. Throws GrabberException if that fails.
CMSXmlNode NewDocument(CMSXmlDoc& document);

// Copies `text` to the buffer if it fits, and sets the status and the size as InfoGrabber::CaptureInfo
// describes.
void CopyDocument(const std::string& text, std::uint32_t buffer_size, char* buffer,
                  std::uint32_t* required_size, std::uint32_t* status);

}  // namespace orvane
