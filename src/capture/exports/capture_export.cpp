// The export CaptureSystemRestorePointInfo.

#include "capture/exports/orvane_main_exception.h"
#include "capture/exports/process_settings.h"
#include "capture/grabber/info_grabber_factory.h"
#include "common/logger/orvane_logger.h"
#include "common/platform/com_error_text.h"
#include "common/platform/critical_error_mode.h"
#include "orvane/orvane.h"

#include <comdef.h>

namespace {

// Any number except 1 and 3 means format 2: compatibility C118
std::uint32_t GrabberTypeOf(std::uint32_t format) {
    switch (format) {
        case 1:
            return orvane::kGrabberV1;
        case 3:
            return orvane::kGrabberV3;
        default:
            return orvane::kGrabberV2;
    }
}

std::uint32_t Capture(char* buffer, std::uint32_t buffer_size, std::uint32_t* required_size,
                      std::uint32_t& status) {
    const orvane::InfoGrabberPtr grabber = orvane::CreateInfoGrabber(GrabberTypeOf(gSaveXmlFormat));
    if (!grabber) {
        throw OrvaneMainException(L"Failed to obtain information grabber");
    }
    if (!grabber->ObtainInformation()) {
        throw OrvaneMainException(L"Failed to obtain EnvInfo");
    }
    if (!grabber->CanBackup(SelectedVolumes(), RequestedDisks(), false)) {
        // The wording is kept: compatibility C31
        throw OrvaneMainException(L"I cannot backup the needed information");
    }
    std::uint32_t size = 0;
    grabber->CaptureInfo(buffer_size, buffer, &size, &status);
    if (required_size != nullptr) {
        *required_size = size;
    }
    return status;
}

std::uint32_t FailureStatus(std::uint32_t status) {
    return status != ORVANE_SUCCESS ? status : ORVANE_FAILED;
}

// Always logs the line; without the error text if there is no memory for it.
void LogComError(HRESULT result) noexcept {
    constexpr const wchar_t* kLine = L"CaptureSystemRestorePointInfo COM Exception: %s";
    try {
        GetLogger().Write(kLogError, kLine, ComErrorText(result).c_str());
    } catch (...) {
        GetLogger().Write(kLogError, kLine, L"");
    }
}

// The exception boundary: turns every exception into a log line and a status.
std::uint32_t CaptureSafely(char* buffer, std::uint32_t buffer_size, std::uint32_t* required_size) {
    std::uint32_t status = ORVANE_SUCCESS;
    try {
        return Capture(buffer, buffer_size, required_size, status);
    } catch (const _com_error& error) {
        LogComError(error.Error());
        return ORVANE_FAILED;
    } catch (const OrvaneMainException& error) {
        GetLogger().Write(kLogError, L"CaptureSystemRestorePointInfo Env Exception: %s",
                          error.message().c_str());
        return FailureStatus(status);
    } catch (...) {
        // Catches a GrabberException too and loses its message: compatibility C38
        GetLogger().Write(kLogError, L"CaptureSystemRestorePointInfo Exception");
        return FailureStatus(status);
    }
}

}  // namespace

std::uint32_t CaptureSystemRestorePointInfo(char* buffer, std::uint32_t buffer_size,
                                            std::uint32_t* required_size) {
    const FailCriticalErrors mode;
    GetLogger().Write(kLogTrace, L"Entering CaptureSystemRestorePointInfo");
    GetLogger().Write(kLogTrace, L"CaptureSystemRestorePointInfo gSaveXmlFormat=%u", gSaveXmlFormat);
    const std::uint32_t status = CaptureSafely(buffer, buffer_size, required_size);
    GetLogger().Write(kLogTrace, L"Exiting CaptureSystemRestorePointInfo");
    return status;
}
