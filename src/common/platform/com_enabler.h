#pragma once

namespace bmr_common {

// COM on the calling thread for the lifetime of the object; COM security once per process. Single-threaded
// apartment; a thread that already lives in another one is accepted.
class COMEnabler {
public:
    COMEnabler() = default;
    // Balances a successful InitializeCOM.
    ~COMEnabler();
    COMEnabler(const COMEnabler&) = delete;
    COMEnabler& operator=(const COMEnabler&) = delete;

    // To be called once. `caller` names the function in the messages. On failure logs one line at level 2.
    bool InitializeCOM(const wchar_t* caller);

private:
    bool initialized_ = false;
};

}  // namespace bmr_common
