#include "capture/grabber/info_grabber_factory.h"

#include "capture/grabber/info_grabber_v1.h"
#include "capture/grabber/info_grabber_v2.h"
#include "capture/grabber/info_grabber_v3.h"
#include "common/logger/orvane_logger.h"

#include <boost/make_shared.hpp>

namespace orvane {

InfoGrabberPtr CreateInfoGrabber(std::uint32_t type) {
    switch (type) {
        case kGrabberV1:
            return boost::make_shared<InfoGrabberV1>(boost::make_shared<EnvInfo>());
        case kGrabberV2:
            return boost::make_shared<InfoGrabberV2>();
        case kGrabberV3:
            return boost::make_shared<InfoGrabberV3>();
        default:
            GetLogger().Write(kLogError, L"Invalid type of information grabber");
            return {};
    }
}

}  // namespace orvane
