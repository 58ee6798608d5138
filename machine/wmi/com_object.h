#pragma once

#include "common/windows.h"
#include "machine/simulation/call_frame.h"

#include <ole2.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <string>
#include <string_view>
#include <utility>

namespace machine {

constexpr HRESULT AsHresult(std::uint32_t code) {
    return static_cast<HRESULT>(code);
}

// Implements IUnknown for an object with one main interface. The pointer to that interface is also the
// object's IUnknown. The simulation that is current at construction counts the object as live until it is
// destroyed.
template <class Interface>
class ComObject : public Interface {
public:
    ComObject(const ComObject&) = delete;
    ComObject& operator=(const ComObject&) = delete;

    ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }

    ULONG STDMETHODCALLTYPE Release() override {
        const ULONG left = --references_;
        if (left == 0) {
            delete this;
        }
        return left;
    }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        if (object == nullptr) {
            return E_POINTER;
        }
        *object = Offer(iid);
        if (*object == nullptr) {
            return E_NOINTERFACE;
        }
        AddRef();
        return S_OK;
    }

protected:
    explicit ComObject(const IID& iid)
        : iid_(iid),
          live_(Simulation::Current() != nullptr ? Simulation::Current()->object_count()
                                                 : std::make_shared<std::size_t>(0)) {
        ++*live_;
    }
    virtual ~ComObject() { --*live_; }

    // Returns the interface with this IID without adding a reference; null if there is none.
    virtual void* Offer(REFIID iid) {
        return IsEqualIID(iid, IID_IUnknown) || IsEqualIID(iid, iid_) ? static_cast<Interface*>(this)
                                                                      : nullptr;
    }

private:
    IID iid_;
    ULONG references_ = 1;
    std::shared_ptr<std::size_t> live_;
};

// Runs a method's body. Returns E_OUTOFMEMORY if it throws std::bad_alloc.
template <class Body>
HRESULT GuardedCom(const Body& body) noexcept {
    try {
        return body();
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    }
}

// Performs one WMI call on the current simulation. Returns RPC_E_DISCONNECTED if there is none. A body that
// succeeds may set Answer::error to a success code, which the call then returns.
inline HRESULT PerformCom(const char* name, std::wstring_view object, const CallErrors* errors,
                          const AnswerBody& body) noexcept {
    return Simulated(
        Simulation::Current(), name, HRESULT{E_OUTOFMEMORY}, [] { return AsHresult(0x80010108); },
        [&](CallFrame& frame) { return AsHresult(frame.Perform(std::wstring(object), errors, body).error); });
}

}  // namespace machine
