#include "common/platform/critical_error_mode.h"

#include <utility>

namespace {

FailCriticalErrors* g_current = nullptr;

}  // namespace

FailCriticalErrors::FailCriticalErrors() {
    Enter();
    g_current = this;
}

FailCriticalErrors::~FailCriticalErrors() {
    Leave();
    g_current = nullptr;
}

void FailCriticalErrors::Enter() {
    host_mode_ = GetThreadErrorMode();
    SetThreadErrorMode(host_mode_ | SEM_FAILCRITICALERRORS, nullptr);
}

void FailCriticalErrors::Leave() const {
    SetThreadErrorMode(host_mode_, nullptr);
}

HostErrorMode::HostErrorMode() : suspended_(std::exchange(g_current, nullptr)) {
    if (suspended_ != nullptr) {
        suspended_->Leave();
    }
}

HostErrorMode::~HostErrorMode() {
    if (suspended_ != nullptr) {
        suspended_->Enter();
    }
    g_current = suspended_;
}
