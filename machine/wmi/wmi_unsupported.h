#pragma once

#include "common/windows.h"

#include <ole2.h>
#include <wbemidl.h>

namespace machine {

// The result of WMI methods that the described machine does not support.
constexpr HRESULT kWmiNotSupported = static_cast<HRESULT>(0x8004100CU);  // WBEM_E_NOT_SUPPORTED

// Records a call of such a method, "INTERFACE::METHOD", and returns kWmiNotSupported.
HRESULT NotSupported(const char* interface_name, const char* method) noexcept;

// Implements all IWbemServices methods except ExecQuery as unsupported.
class UnsupportedServices : public IWbemServices {
public:
    HRESULT STDMETHODCALLTYPE OpenNamespace(const BSTR, LONG, IWbemContext*, IWbemServices**,
                                            IWbemCallResult**) override {
        return NotSupported("IWbemServices", __func__);
    }
    HRESULT STDMETHODCALLTYPE CancelAsyncCall(IWbemObjectSink*) override {
        return NotSupported("IWbemServices", __func__);
    }
    HRESULT STDMETHODCALLTYPE QueryObjectSink(LONG, IWbemObjectSink**) override {
        return NotSupported("IWbemServices", __func__);
    }
    HRESULT STDMETHODCALLTYPE GetObject(const BSTR, LONG, IWbemContext*, IWbemClassObject**,
                                        IWbemCallResult**) override {
        return NotSupported("IWbemServices", __func__);
    }
    HRESULT STDMETHODCALLTYPE GetObjectAsync(const BSTR, LONG, IWbemContext*, IWbemObjectSink*) override {
        return NotSupported("IWbemServices", __func__);
    }
    HRESULT STDMETHODCALLTYPE PutClass(IWbemClassObject*, LONG, IWbemContext*, IWbemCallResult**) override {
        return NotSupported("IWbemServices", __func__);
    }
    HRESULT STDMETHODCALLTYPE PutClassAsync(IWbemClassObject*, LONG, IWbemContext*,
                                            IWbemObjectSink*) override {
        return NotSupported("IWbemServices", __func__);
    }
    HRESULT STDMETHODCALLTYPE DeleteClass(const BSTR, LONG, IWbemContext*, IWbemCallResult**) override {
        return NotSupported("IWbemServices", __func__);
    }
    HRESULT STDMETHODCALLTYPE DeleteClassAsync(const BSTR, LONG, IWbemContext*, IWbemObjectSink*) override {
        return NotSupported("IWbemServices", __func__);
    }
    HRESULT STDMETHODCALLTYPE CreateClassEnum(const BSTR, LONG, IWbemContext*,
                                              IEnumWbemClassObject**) override {
        return NotSupported("IWbemServices", __func__);
    }
    HRESULT STDMETHODCALLTYPE CreateClassEnumAsync(const BSTR, LONG, IWbemContext*,
                                                   IWbemObjectSink*) override {
        return NotSupported("IWbemServices", __func__);
    }
    HRESULT STDMETHODCALLTYPE PutInstance(IWbemClassObject*, LONG, IWbemContext*,
                                          IWbemCallResult**) override {
        return NotSupported("IWbemServices", __func__);
    }
    HRESULT STDMETHODCALLTYPE PutInstanceAsync(IWbemClassObject*, LONG, IWbemContext*,
                                               IWbemObjectSink*) override {
        return NotSupported("IWbemServices", __func__);
    }
    HRESULT STDMETHODCALLTYPE DeleteInstance(const BSTR, LONG, IWbemContext*, IWbemCallResult**) override {
        return NotSupported("IWbemServices", __func__);
    }
    HRESULT STDMETHODCALLTYPE DeleteInstanceAsync(const BSTR, LONG, IWbemContext*,
                                                  IWbemObjectSink*) override {
        return NotSupported("IWbemServices", __func__);
    }
    HRESULT STDMETHODCALLTYPE CreateInstanceEnum(const BSTR, LONG, IWbemContext*,
                                                 IEnumWbemClassObject**) override {
        return NotSupported("IWbemServices", __func__);
    }
    HRESULT STDMETHODCALLTYPE CreateInstanceEnumAsync(const BSTR, LONG, IWbemContext*,
                                                      IWbemObjectSink*) override {
        return NotSupported("IWbemServices", __func__);
    }
    HRESULT STDMETHODCALLTYPE ExecQueryAsync(const BSTR, const BSTR, LONG, IWbemContext*,
                                             IWbemObjectSink*) override {
        return NotSupported("IWbemServices", __func__);
    }
    HRESULT STDMETHODCALLTYPE ExecNotificationQuery(const BSTR, const BSTR, LONG, IWbemContext*,
                                                    IEnumWbemClassObject**) override {
        return NotSupported("IWbemServices", __func__);
    }
    HRESULT STDMETHODCALLTYPE ExecNotificationQueryAsync(const BSTR, const BSTR, LONG, IWbemContext*,
                                                         IWbemObjectSink*) override {
        return NotSupported("IWbemServices", __func__);
    }
    HRESULT STDMETHODCALLTYPE ExecMethod(const BSTR, const BSTR, LONG, IWbemContext*, IWbemClassObject*,
                                         IWbemClassObject**, IWbemCallResult**) override {
        return NotSupported("IWbemServices", __func__);
    }
    HRESULT STDMETHODCALLTYPE ExecMethodAsync(const BSTR, const BSTR, LONG, IWbemContext*, IWbemClassObject*,
                                              IWbemObjectSink*) override {
        return NotSupported("IWbemServices", __func__);
    }
};

// Implements all IWbemClassObject methods except those that read properties as unsupported.
class UnsupportedClassObject : public IWbemClassObject {
public:
    HRESULT STDMETHODCALLTYPE GetQualifierSet(IWbemQualifierSet**) override {
        return NotSupported("IWbemClassObject", __func__);
    }
    HRESULT STDMETHODCALLTYPE Put(LPCWSTR, LONG, VARIANT*, CIMTYPE) override {
        return NotSupported("IWbemClassObject", __func__);
    }
    HRESULT STDMETHODCALLTYPE Delete(LPCWSTR) override { return NotSupported("IWbemClassObject", __func__); }
    HRESULT STDMETHODCALLTYPE GetPropertyQualifierSet(LPCWSTR, IWbemQualifierSet**) override {
        return NotSupported("IWbemClassObject", __func__);
    }
    HRESULT STDMETHODCALLTYPE Clone(IWbemClassObject**) override {
        return NotSupported("IWbemClassObject", __func__);
    }
    HRESULT STDMETHODCALLTYPE GetObjectText(LONG, BSTR*) override {
        return NotSupported("IWbemClassObject", __func__);
    }
    HRESULT STDMETHODCALLTYPE SpawnDerivedClass(LONG, IWbemClassObject**) override {
        return NotSupported("IWbemClassObject", __func__);
    }
    HRESULT STDMETHODCALLTYPE SpawnInstance(LONG, IWbemClassObject**) override {
        return NotSupported("IWbemClassObject", __func__);
    }
    HRESULT STDMETHODCALLTYPE CompareTo(LONG, IWbemClassObject*) override {
        return NotSupported("IWbemClassObject", __func__);
    }
    HRESULT STDMETHODCALLTYPE GetPropertyOrigin(LPCWSTR, BSTR*) override {
        return NotSupported("IWbemClassObject", __func__);
    }
    HRESULT STDMETHODCALLTYPE InheritsFrom(LPCWSTR) override {
        return NotSupported("IWbemClassObject", __func__);
    }
    HRESULT STDMETHODCALLTYPE GetMethod(LPCWSTR, LONG, IWbemClassObject**, IWbemClassObject**) override {
        return NotSupported("IWbemClassObject", __func__);
    }
    HRESULT STDMETHODCALLTYPE PutMethod(LPCWSTR, LONG, IWbemClassObject*, IWbemClassObject*) override {
        return NotSupported("IWbemClassObject", __func__);
    }
    HRESULT STDMETHODCALLTYPE DeleteMethod(LPCWSTR) override {
        return NotSupported("IWbemClassObject", __func__);
    }
    HRESULT STDMETHODCALLTYPE BeginMethodEnumeration(LONG) override {
        return NotSupported("IWbemClassObject", __func__);
    }
    HRESULT STDMETHODCALLTYPE NextMethod(LONG, BSTR*, IWbemClassObject**, IWbemClassObject**) override {
        return NotSupported("IWbemClassObject", __func__);
    }
    HRESULT STDMETHODCALLTYPE EndMethodEnumeration() override {
        return NotSupported("IWbemClassObject", __func__);
    }
    HRESULT STDMETHODCALLTYPE GetMethodQualifierSet(LPCWSTR, IWbemQualifierSet**) override {
        return NotSupported("IWbemClassObject", __func__);
    }
    HRESULT STDMETHODCALLTYPE GetMethodOrigin(LPCWSTR, BSTR*) override {
        return NotSupported("IWbemClassObject", __func__);
    }
};

}  // namespace machine
