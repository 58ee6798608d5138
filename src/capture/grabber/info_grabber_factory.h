#pragma once

#include "capture/grabber/info_grabber.h"

namespace orvane {

// The types of grabbers.
enum GrabberType : std::uint32_t {
    kGrabberV1 = 0,
    kGrabberV2 = 1,
    kGrabberV3 = 2,
};

// A new grabber of that type, which has collected nothing yet; empty, after a level 2 line, for any other
// type.
InfoGrabberPtr CreateInfoGrabber(std::uint32_t type);

}  // namespace orvane
