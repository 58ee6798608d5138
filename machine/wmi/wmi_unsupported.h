#pragma once

#include "common/windows.h"

#include <ole2.h>
#include <wbemidl.h>

namespace machine {

// The result of WMI methods that the described machine does not support.
constexpr HRESULT kWmiNotSupported = static_cast<HRESULT>(0x8004100CU);  // WBEM_E_NOT_SUPPORTED

// Implements all IWbemServices methods except ExecQuery as unsupported.
class UnsupportedServices : public IWbemServices {
public:
    HRESULT STDMETHODCALLTYPE OpenNamespace(const BSTR, LONG, IWbemContext*, IWbemServices**,
                                            IWbemCallResult**) override {
        return kWmiNotSupported;
    }
    HRESULT STDMETHODCALLTYPE CancelAsyncCall(IWbemObjectSink*) override { return kWmiNotSupported; }
    HRESULT STDMETHODCALLTYPE QueryObjectSink(LONG, IWbemObjectSink**) override { return kWmiNotSupported; }
    HRESULT STDMETHODCALLTYPE GetObject(const BSTR, LONG, IWbemContext*, IWbemClassObject**,
                                        IWbemCallResult**) override {
        return kWmiNotSupported;
    }
    HRESULT STDMETHODCALLTYPE GetObjectAsync(const BSTR, LONG, IWbemContext*, IWbemObjectSink*) override {
        return kWmiNotSupported;
    }
    HRESULT STDMETHODCALLTYPE PutClass(IWbemClassObject*, LONG, IWbemContext*, IWbemCallResult**) override {
        return kWmiNotSupported;
    }
    HRESULT STDMETHODCALLTYPE PutClassAsync(IWbemClassObject*, LONG, IWbemContext*,
                                            IWbemObjectSink*) override {
        return kWmiNotSupported;
    }
    HRESULT STDMETHODCALLTYPE DeleteClass(const BSTR, LONG, IWbemContext*, IWbemCallResult**) override {
        return kWmiNotSupported;
    }
    HRESULT STDMETHODCALLTYPE DeleteClassAsync(const BSTR, LONG, IWbemContext*, IWbemObjectSink*) override {
        return kWmiNotSupported;
    }
    HRESULT STDMETHODCALLTYPE CreateClassEnum(const BSTR, LONG, IWbemContext*,
                                              IEnumWbemClassObject**) override {
        return kWmiNotSupported;
    }
    HRESULT STDMETHODCALLTYPE CreateClassEnumAsync(const BSTR, LONG, IWbemContext*,
                                                   IWbemObjectSink*) override {
        return kWmiNotSupported;
    }
    HRESULT STDMETHODCALLTYPE PutInstance(IWbemClassObject*, LONG, IWbemContext*,
                                          IWbemCallResult**) override {
        return kWmiNotSupported;
    }
    HRESULT STDMETHODCALLTYPE PutInstanceAsync(IWbemClassObject*, LONG, IWbemContext*,
                                               IWbemObjectSink*) override {
        return kWmiNotSupported;
    }
    HRESULT STDMETHODCALLTYPE DeleteInstance(const BSTR, LONG, IWbemContext*, IWbemCallResult**) override {
        return kWmiNotSupported;
    }
    HRESULT STDMETHODCALLTYPE DeleteInstanceAsync(const BSTR, LONG, IWbemContext*,
                                                  IWbemObjectSink*) override {
        return kWmiNotSupported;
    }
    HRESULT STDMETHODCALLTYPE CreateInstanceEnum(const BSTR, LONG, IWbemContext*,
                                                 IEnumWbemClassObject**) override {
        return kWmiNotSupported;
    }
    HRESULT STDMETHODCALLTYPE CreateInstanceEnumAsync(const BSTR, LONG, IWbemContext*,
                                                      IWbemObjectSink*) override {
        return kWmiNotSupported;
    }
    HRESULT STDMETHODCALLTYPE ExecQueryAsync(const BSTR, const BSTR, LONG, IWbemContext*,
                                             IWbemObjectSink*) override {
        return kWmiNotSupported;
    }
    HRESULT STDMETHODCALLTYPE ExecNotificationQuery(const BSTR, const BSTR, LONG, IWbemContext*,
                                                    IEnumWbemClassObject**) override {
        return kWmiNotSupported;
    }
    HRESULT STDMETHODCALLTYPE ExecNotificationQueryAsync(const BSTR, const BSTR, LONG, IWbemContext*,
                                                         IWbemObjectSink*) override {
        return kWmiNotSupported;
    }
    HRESULT STDMETHODCALLTYPE ExecMethod(const BSTR, const BSTR, LONG, IWbemContext*, IWbemClassObject*,
                                         IWbemClassObject**, IWbemCallResult**) override {
        return kWmiNotSupported;
    }
    HRESULT STDMETHODCALLTYPE ExecMethodAsync(const BSTR, const BSTR, LONG, IWbemContext*, IWbemClassObject*,
                                              IWbemObjectSink*) override {
        return kWmiNotSupported;
    }
};

// Implements all IWbemClassObject methods except those that read properties as unsupported.
class UnsupportedClassObject : public IWbemClassObject {
public:
    HRESULT STDMETHODCALLTYPE GetQualifierSet(IWbemQualifierSet**) override { return kWmiNotSupported; }
    HRESULT STDMETHODCALLTYPE Put(LPCWSTR, LONG, VARIANT*, CIMTYPE) override { return kWmiNotSupported; }
    HRESULT STDMETHODCALLTYPE Delete(LPCWSTR) override { return kWmiNotSupported; }
    HRESULT STDMETHODCALLTYPE GetPropertyQualifierSet(LPCWSTR, IWbemQualifierSet**) override {
        return kWmiNotSupported;
    }
    HRESULT STDMETHODCALLTYPE Clone(IWbemClassObject**) override { return kWmiNotSupported; }
    HRESULT STDMETHODCALLTYPE GetObjectText(LONG, BSTR*) override { return kWmiNotSupported; }
    HRESULT STDMETHODCALLTYPE SpawnDerivedClass(LONG, IWbemClassObject**) override {
        return kWmiNotSupported;
    }
    HRESULT STDMETHODCALLTYPE SpawnInstance(LONG, IWbemClassObject**) override { return kWmiNotSupported; }
    HRESULT STDMETHODCALLTYPE CompareTo(LONG, IWbemClassObject*) override { return kWmiNotSupported; }
    HRESULT STDMETHODCALLTYPE GetPropertyOrigin(LPCWSTR, BSTR*) override { return kWmiNotSupported; }
    HRESULT STDMETHODCALLTYPE InheritsFrom(LPCWSTR) override { return kWmiNotSupported; }
    HRESULT STDMETHODCALLTYPE GetMethod(LPCWSTR, LONG, IWbemClassObject**, IWbemClassObject**) override {
        return kWmiNotSupported;
    }
    HRESULT STDMETHODCALLTYPE PutMethod(LPCWSTR, LONG, IWbemClassObject*, IWbemClassObject*) override {
        return kWmiNotSupported;
    }
    HRESULT STDMETHODCALLTYPE DeleteMethod(LPCWSTR) override { return kWmiNotSupported; }
    HRESULT STDMETHODCALLTYPE BeginMethodEnumeration(LONG) override { return kWmiNotSupported; }
    HRESULT STDMETHODCALLTYPE NextMethod(LONG, BSTR*, IWbemClassObject**, IWbemClassObject**) override {
        return kWmiNotSupported;
    }
    HRESULT STDMETHODCALLTYPE EndMethodEnumeration() override { return kWmiNotSupported; }
    HRESULT STDMETHODCALLTYPE GetMethodQualifierSet(LPCWSTR, IWbemQualifierSet**) override {
        return kWmiNotSupported;
    }
    HRESULT STDMETHODCALLTYPE GetMethodOrigin(LPCWSTR, BSTR*) override { return kWmiNotSupported; }
};

}  // namespace machine
