#pragma once

#include "common/platform/com_pointer.h"

#include <wbemcli.h>

#include <string>
#include <vector>

using WbemServicesPtr = ComPointer<IWbemServices, &IID_IWbemServices>;
using WbemEnumeratorPtr = ComPointer<IEnumWbemClassObject, &IID_IEnumWbemClassObject>;
using WbemLocatorPtr = ComPointer<IWbemLocator, &IID_IWbemLocator>;
using WbemObjectPtr = ComPointer<IWbemClassObject, &IID_IWbemClassObject>;

// One WQL query in "root\cimv2" and a forward cursor over its results. Connected and queried by the
// constructor. To be used while a COMEnabler of the same thread lives. Nothing throws; failures are false,
// and one level 2 line where the connection failed.
class CWmi {
public:
    explicit CWmi(const wchar_t* query);
    virtual ~CWmi() = default;
    CWmi(const CWmi&) = delete;
    CWmi& operator=(const CWmi&) = delete;

    // Whether the constructor reached its end.
    bool initialized() const { return initialized_; }

    virtual bool FindFirstObject();
    virtual bool FindNextObject();

    // A property of the current object. True whenever the property could be read at all: a value of another
    // type leaves the text or the list as it was and gives the number 0. The list is appended to.
    virtual bool Get(const wchar_t* property, int& value);
    virtual bool Get(const wchar_t* property, std::wstring& value);
    virtual bool Get(const wchar_t* property, std::vector<std::wstring>& value);

    // As the number above, but an unsigned 32-bit value gives its low 16 bits, and a property that cannot be
    // read leaves `value` as it was: compatibility C73
    bool GetLowInteger(const wchar_t* property, int& value);

private:
    HRESULT Connect();
    bool Fetch();
    bool ReadProperty(const wchar_t* property, _variant_t& value);

    WbemServicesPtr services_;
    WbemEnumeratorPtr enumerator_;
    WbemLocatorPtr locator_;
    WbemObjectPtr current_;
    bool initialized_ = false;
    unsigned fetched_ = 0;
};
