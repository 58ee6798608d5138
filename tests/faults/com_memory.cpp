#include "faults/com_memory.h"

#include "common/windows.h"
#include "machine/simulation/redirect.h"

#include <objbase.h>

#include <stdexcept>

namespace faults {

namespace {

// Counts live blocks of COM's allocator.
class Spy : public IMallocSpy {
public:
    std::int64_t live() const { return live_; }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        if (!IsEqualIID(iid, IID_IUnknown) && !IsEqualIID(iid, IID_IMallocSpy)) {
            *object = nullptr;
            return E_NOINTERFACE;
        }
        *object = this;
        return S_OK;
    }
    // It is static and never destroyed by COM.
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }

    SIZE_T STDMETHODCALLTYPE PreAlloc(SIZE_T size) override { return size; }
    void* STDMETHODCALLTYPE PostAlloc(void* block) override {
        live_ += block != nullptr ? 1 : 0;
        return block;
    }
    void* STDMETHODCALLTYPE PreFree(void* block, BOOL /*spied*/) override {
        live_ -= block != nullptr ? 1 : 0;
        return block;
    }
    void STDMETHODCALLTYPE PostFree(BOOL /*spied*/) override {}
    SIZE_T STDMETHODCALLTYPE PreRealloc(void* block, SIZE_T size, void** out, BOOL /*spied*/) override {
        *out = block;
        was_null_ = block == nullptr;
        return size;
    }
    void* STDMETHODCALLTYPE PostRealloc(void* block, BOOL /*spied*/) override {
        live_ += was_null_ && block != nullptr ? 1 : 0;
        return block;
    }
    void* STDMETHODCALLTYPE PreGetSize(void* block, BOOL /*spied*/) override { return block; }
    SIZE_T STDMETHODCALLTYPE PostGetSize(SIZE_T size, BOOL /*spied*/) override { return size; }
    void* STDMETHODCALLTYPE PreDidAlloc(void* block, BOOL /*spied*/) override { return block; }
    int STDMETHODCALLTYPE PostDidAlloc(void* /*block*/, BOOL /*spied*/, int actual) override {
        return actual;
    }
    void STDMETHODCALLTYPE PreHeapMinimize() override {}
    void STDMETHODCALLTYPE PostHeapMinimize() override {}

private:
    std::int64_t live_ = 0;
    bool was_null_ = false;
};

Spy& Registered() {
    static Spy& registered = []() -> Spy& {
        static Spy spy;
        // Without this, cached BSTRs would look like leaks.
        const auto no_cache = machine::RealFunction<void(WINAPI*)()>(L"oleaut32.dll", "SetOaNoCache");
        if (no_cache == nullptr || FAILED(CoRegisterMallocSpy(&spy))) {
            throw std::runtime_error("COM's allocator cannot be watched");
        }
        no_cache();
        return spy;
    }();
    return registered;
}

}  // namespace

std::int64_t LiveComBlocks() {
    return Registered().live();
}

}  // namespace faults
