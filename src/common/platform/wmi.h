#pragma once

#include "common/platform/com_pointer.h"

#include <wbemcli.h>

#include <string>
#include <vector>

using WbemServicesPtr = ComPointer<IWbemServices, &IID_IWbemServices>;
using WbemEnumeratorPtr = ComPointer<IEnumWbemClassObject, &IID_IEnumWbemClassObject>;
using WbemLocatorPtr = ComPointer<IWbemLocator, &IID_IWbemLocator>;
using WbemObjectPtr = ComPointer<IWbemClassObject, &IID_IWbemClassObject>;

// One WQL query in "root\cimv2" and a forward cursor over its results. The constructor connects and runs the
// query. Requires a COMEnabler on the same thread for the whole lifetime. Nothing throws. Failures return
// false; a failed connection or query also logs one line at level 2.
class CWmi {
public:
    explicit CWmi(const wchar_t* query);
    virtual ~CWmi() = default;
    CWmi(const CWmi&) = delete;
    CWmi& operator=(const CWmi&) = delete;

    // Whether the constructor succeeded.
    bool initialized() const { return initialized_; }

    virtual bool FindFirstObject();
    virtual bool FindNextObject();

    // Read a property of the current object. Return true if the property could be read, even if its type does
    // not match: then a text or list is left unchanged and a number is set to 0. A list is appended to.
    virtual bool Get(const wchar_t* property, int& value);
    virtual bool Get(const wchar_t* property, std::wstring& value);
    virtual bool Get(const wchar_t* property, std::vector<std::wstring>& value);

    // Like Get for a number, but keeps only the low 16 bits of an unsigned 32-bit value, and leaves `value`
    // unchanged if the property cannot be read: compatibility C73
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

// How a visit of all objects of a query ended.
enum class WmiVisit { kNotConnected, kNoneFound, kStopped, kAllVisited };

// Queries and calls `visit(object)` for every object until it returns false. `object` is the cursor, a CWmi.
template <class Visit>
WmiVisit VisitWmiObjects(const wchar_t* query, Visit&& visit) {
    CWmi objects(query);
    if (!objects.initialized()) {
        return WmiVisit::kNotConnected;
    }
    if (!objects.FindFirstObject()) {
        return WmiVisit::kNoneFound;
    }
    do {
        if (!visit(objects)) {
            return WmiVisit::kStopped;
        }
    } while (objects.FindNextObject());
    return WmiVisit::kAllVisited;
}
