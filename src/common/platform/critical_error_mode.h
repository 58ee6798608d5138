#pragma once

#include "common/windows.h"

// The thread's critical-error mode, in which the system asks the user to insert a disk when a query meets an
// empty drive. Used by one thread at a time.

// For its lifetime, such an error only fails the query. Restores the thread's mode at the end.
class FailCriticalErrors {
public:
    FailCriticalErrors();
    ~FailCriticalErrors();
    FailCriticalErrors(const FailCriticalErrors&) = delete;
    FailCriticalErrors& operator=(const FailCriticalErrors&) = delete;

private:
    friend class HostErrorMode;

    void Enter();
    void Leave() const;

    DWORD thread_;
    FailCriticalErrors* previous_;
    DWORD host_mode_ = 0;
};

// For its lifetime, the thread has the mode that it had before the FailCriticalErrors. That object then
// restores whatever mode is set in between. Does nothing outside such an object, or on another thread than
// its.
class HostErrorMode {
public:
    HostErrorMode();
    ~HostErrorMode();
    HostErrorMode(const HostErrorMode&) = delete;
    HostErrorMode& operator=(const HostErrorMode&) = delete;

private:
    FailCriticalErrors* suspended_ = nullptr;
};
