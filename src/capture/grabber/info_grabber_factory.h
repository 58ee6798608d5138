#pragma once

#include "capture/grabber/info_grabber.h"

namespace orvane {

enum GrabberType : std::uint32_t {
    kGrabberV1 = 0,
    kGrabberV2 = 1,
    kGrabberV3 = 2,
};

// Creates a grabber that has collected nothing yet. For an unknown type logs one error line and returns an
// empty pointer.
InfoGrabberPtr CreateInfoGrabber(std::uint32_t type);

}  // namespace orvane
