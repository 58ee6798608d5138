#pragma once

#include "support/log_capture.h"

#include <string>
#include <utility>

// Log lines to compare with.
namespace expected {

inline support::LogLine Info(std::string text) {
    return {support::kHostInformation, std::move(text)};
}
inline support::LogLine Error(std::string text) {
    return {support::kHostError, std::move(text)};
}

}  // namespace expected
