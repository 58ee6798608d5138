#pragma once

namespace bmr_common {

// Initialises COM on the calling thread for the lifetime of the object, and COM security once per process.
// Uses a single-threaded apartment; accepts a thread that is already in another apartment.
class COMEnabler {
public:
    COMEnabler() = default;
    // Uninitialises COM after a successful InitializeCOM.
    ~COMEnabler();
    COMEnabler(const COMEnabler&) = delete;
    COMEnabler& operator=(const COMEnabler&) = delete;

    // Call only once. `caller` is the function name used in log lines. On failure logs one line at level 2.
    bool InitializeCOM(const wchar_t* caller);

private:
    bool initialized_ = false;
};

}  // namespace bmr_common
