#pragma once

#include "common/logger/orvane_logger.h"
#include "support/log_capture.h"

namespace support {

// A LogCapture of the library's own logger, for tests that link the library.
class LoggerCapture : public LogCapture {
public:
    LoggerCapture() : LogCapture([](Callback callback) { GetLogger().SetCallback(callback); }) {}
};

}  // namespace support
