#pragma once

#include "machine/description/description.h"
#include "machine/wmi/com_object.h"
#include "machine/wmi/wmi_unsupported.h"

#include <memory>
#include <string>

namespace machine {

// A copy of the class that a query found, shared by the enumerator and its objects. Later changes of the
// description do not affect it.
struct WmiResult {
    std::wstring class_name;
    WmiClass found;
};

// A read-only instance of a class.
class WmiInstanceObject final : public ComObject<UnsupportedClassObject> {
public:
    WmiInstanceObject(std::shared_ptr<const WmiResult> result, std::size_t position);

    HRESULT STDMETHODCALLTYPE Get(LPCWSTR name, LONG flags, VARIANT* value, CIMTYPE* type,
                                  LONG* flavor) override;
    HRESULT STDMETHODCALLTYPE GetNames(LPCWSTR qualifier, LONG flags, VARIANT* value,
                                       SAFEARRAY** names) override;
    HRESULT STDMETHODCALLTYPE BeginEnumeration(LONG flags) override;
    HRESULT STDMETHODCALLTYPE Next(LONG flags, BSTR* name, VARIANT* value, CIMTYPE* type,
                                   LONG* flavor) override;
    HRESULT STDMETHODCALLTYPE EndEnumeration() override;

private:
    const WmiInstance& instance() const { return result_->found.instances[position_]; }
    Answer Found(LPCWSTR name, LONG flags, VARIANT& variant, CIMTYPE& cim_type) const;

    std::shared_ptr<const WmiResult> result_;
    std::size_t position_;
    std::size_t next_property_ = 0;
};

// Converts a described value to a VARIANT, which the caller must clear. Throws std::bad_alloc.
VARIANT VariantOf(const WmiValue& value);

}  // namespace machine
