#include "machine/wmi/wmi_locator.h"

#include "machine/description/text.h"
#include "machine/wmi/wmi_services.h"

#include <algorithm>
#include <iterator>
#include <stdexcept>
#include <string>

namespace machine {
namespace {

constexpr std::uint32_t kInvalidParameter = 0x80041008;  // WBEM_E_INVALID_PARAMETER
constexpr std::uint32_t kInvalidNamespace = 0x8004100E;  // WBEM_E_INVALID_NAMESPACE

constexpr CLSID kAdministrativeLocator = {
    0xCB8555CC, 0x9128, 0x11D1, {0xAD, 0x9B, 0x00, 0xC0, 0x4F, 0xD8, 0xFD, 0xFF}};
constexpr CLSID kCommonLocator = {
    0x4590F811, 0x1D3A, 0x11D0, {0x89, 0x1F, 0x00, 0xAA, 0x00, 0x4B, 0x2E, 0x24}};

bool IsKnownNamespace(const std::wstring& name) {
    constexpr const wchar_t* kKnown[] = {L"root\\cimv2", L"\\\\.\\root\\cimv2", L"root/cimv2"};
    return std::any_of(std::begin(kKnown), std::end(kKnown),
                       [&](const wchar_t* known) { return EqualNames(name, known); });
}

// A static object, so reference counts have no effect.
class LocatorFactory final : public IClassFactory {
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        const bool known = IsEqualIID(iid, IID_IUnknown) || IsEqualIID(iid, IID_IClassFactory);
        *object = known ? static_cast<IClassFactory*>(this) : nullptr;
        return known ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL /*lock*/) override { return S_OK; }

    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** object) override {
        *object = nullptr;
        if (outer != nullptr) {
            return CLASS_E_NOAGGREGATION;
        }
        return PerformCom("IClassFactory::CreateInstance", L"IWbemLocator", nullptr, [&] {
            auto* locator = new WmiLocator;
            const HRESULT result = locator->QueryInterface(iid, object);
            locator->Release();
            return FAILED(result) ? Answer::Failure(static_cast<std::uint32_t>(result)) : Answer{};
        });
    }
};

DWORD Register(const CLSID& clsid) {
    static LocatorFactory factory;
    DWORD cookie = 0;
    const HRESULT result =
        CoRegisterClassObject(clsid, &factory, CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &cookie);
    if (FAILED(result)) {
        throw std::runtime_error("the WMI locator cannot be registered, error " +
                                 std::to_string(static_cast<std::uint32_t>(result)));
    }
    return cookie;
}

}  // namespace

WmiLocator::WmiLocator() : ComObject(IID_IWbemLocator) {}

HRESULT STDMETHODCALLTYPE WmiLocator::ConnectServer(const BSTR resource, const BSTR /*user*/,
                                                    const BSTR /*password*/, const BSTR /*locale*/,
                                                    LONG /*flags*/, const BSTR /*authority*/,
                                                    IWbemContext* /*context*/, IWbemServices** services) {
    if (services == nullptr || resource == nullptr) {
        return AsHresult(kInvalidParameter);
    }
    *services = nullptr;
    IWbemServices* made = nullptr;
    const HRESULT result = PerformCom("IWbemLocator::ConnectServer", resource, nullptr, [&] {
        if (!IsKnownNamespace(resource)) {
            return Answer::Failure(kInvalidNamespace);
        }
        made = new WmiServices;
        return Answer{};
    });
    if (FAILED(result) && made != nullptr) {
        made->Release();
        made = nullptr;
    }
    *services = made;
    return result;
}

WmiRegistration::WmiRegistration() : administrative_(Register(kAdministrativeLocator)) {
    try {
        common_ = Register(kCommonLocator);
    } catch (...) {
        CoRevokeClassObject(administrative_);
        throw;
    }
}

WmiRegistration::~WmiRegistration() {
    CoRevokeClassObject(common_);
    CoRevokeClassObject(administrative_);
}

}  // namespace machine
