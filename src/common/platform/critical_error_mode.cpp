#include "common/platform/critical_error_mode.h"

#include <utility>

namespace {

FailCriticalErrors* g_current = nullptr;

}  // namespace

FailCriticalErrors::FailCriticalErrors() : thread_(GetCurrentThreadId()), previous_(g_current) {
    Enter();
    g_current = this;
}

FailCriticalErrors::~FailCriticalErrors() {
    Leave();
    g_current = previous_;
}

void FailCriticalErrors::Enter() {
    host_mode_ = GetThreadErrorMode();
    SetThreadErrorMode(host_mode_ | SEM_FAILCRITICALERRORS, nullptr);
}

void FailCriticalErrors::Leave() const {
    SetThreadErrorMode(host_mode_, nullptr);
}

HostErrorMode::HostErrorMode() {
    if (g_current != nullptr && g_current->thread_ == GetCurrentThreadId()) {
        suspended_ = std::exchange(g_current, nullptr);
        suspended_->Leave();
    }
}

HostErrorMode::~HostErrorMode() {
    if (suspended_ != nullptr) {
        suspended_->Enter();
        g_current = suspended_;
    }
}
