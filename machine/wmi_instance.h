#pragma once

#include "machine/com_object.h"
#include "machine/description.h"
#include "machine/wmi_unsupported.h"

#include <memory>
#include <string>

namespace machine {

// What a query found: kept by the enumerator and its objects, whatever becomes of the description meanwhile.
struct WmiResult {
    std::wstring class_name;
    WmiClass found;
};

// One instance of a class, for reading.
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

// The variant of a described value; the caller clears it. Throws std::bad_alloc.
VARIANT VariantOf(const WmiValue& value);

}  // namespace machine
