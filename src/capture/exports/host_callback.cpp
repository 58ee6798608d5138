#include "capture/exports/host_callback.h"

#include "common/logger/orvane_logger.h"
#include "common/platform/critical_error_mode.h"

namespace {

OrvaneEventCallback g_host_callback = nullptr;

void CallHost(std::int32_t level, const char* text) {
    const OrvaneEventCallback callback = g_host_callback;
    if (callback != nullptr) {
        const HostErrorMode mode;
        callback(level, text);
    }
}

}  // namespace

void UseHostCallback(OrvaneEventCallback callback) {
    g_host_callback = callback;
    GetLogger().SetCallback(callback != nullptr ? &CallHost : nullptr);
}
