#pragma once

#include "common/windows.h"

// The thread's critical-error mode, in which the system asks the user to insert a disk when a query meets an
// empty drive. Used by one thread at a time.

// While it lives, such an error only fails the query. Restores the thread's mode at the end. Only one may
// exist at a time, except inside a HostErrorMode.
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

    DWORD host_mode_ = 0;
};

// While it lives, the thread has the mode that it had before the FailCriticalErrors. A mode that is
// set meanwhile is what that object restores. Does nothing outside such an object.
class HostErrorMode {
public:
    HostErrorMode();
    ~HostErrorMode();
    HostErrorMode(const HostErrorMode&) = delete;
    HostErrorMode& operator=(const HostErrorMode&) = delete;

private:
    FailCriticalErrors* suspended_;
};
