#pragma once

#include "common/windows.h"
#include "faults/meter.h"

#include <cstdint>

struct IUnknown;

namespace faults {

// The library's calls to the XML component: counts them, makes them fail, and counts the references that the
// library holds.
struct DomWatch {
    Meter calls;
    HRESULT code = E_FAIL;  // result of a failing call
    std::int64_t references = 0;
};

DomWatch& Dom();

// Only calls from this module are counted, because the component also calls itself.
void WatchDocumentsOf(HMODULE module);

// Hooks the object if it is an XML document that the library has just created.
void WatchDocument(REFCLSID clsid, IUnknown* object);

}  // namespace faults
