#pragma once

#include "common/logger/orvane_logger.h"
#include "support/log_capture.h"

namespace support {

// Captures the log of the library that is linked into the test program.
class LoggerCapture : public LogCapture {
public:
    LoggerCapture() : LogCapture([](Callback callback) { GetLogger().SetCallback(callback); }) {}
};

}  // namespace support
