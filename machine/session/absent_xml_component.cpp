#include "machine/session/absent_xml_component.h"

#include <objbase.h>

#include <cstdint>
#include <stdexcept>
#include <string>

namespace machine {
namespace {

constexpr CLSID kDomDocument30 = {
    0xF5078F32, 0xC551, 0x11D3, {0x89, 0xB9, 0x00, 0x00, 0xF8, 0x1F, 0xE2, 0x21}};

// Makes nothing. A static object, so reference counts have no effect.
class EmptyFactory final : public IClassFactory {
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        const bool known = IsEqualIID(iid, IID_IUnknown) || IsEqualIID(iid, IID_IClassFactory);
        *object = known ? static_cast<IClassFactory*>(this) : nullptr;
        return known ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL /*lock*/) override { return S_OK; }

    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* /*outer*/, REFIID /*iid*/, void** object) override {
        *object = nullptr;
        return REGDB_E_CLASSNOTREG;
    }
};

}  // namespace

AbsentXmlComponent::AbsentXmlComponent() {
    static EmptyFactory factory;
    const HRESULT result =
        CoRegisterClassObject(kDomDocument30, &factory, CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &cookie_);
    if (FAILED(result)) {
        throw std::runtime_error("the XML component cannot be hidden, error " +
                                 std::to_string(static_cast<std::uint32_t>(result)));
    }
}

AbsentXmlComponent::~AbsentXmlComponent() {
    CoRevokeClassObject(cookie_);
}

}  // namespace machine
