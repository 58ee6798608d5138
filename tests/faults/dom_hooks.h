#pragma once

#include "common/windows.h"
#include "faults/meter.h"

#include <cstdint>

struct IUnknown;

namespace faults {

// The calls that the library makes to the XML component: counted, made to fail, and the references that it
// holds.
struct DomWatch {
    Meter calls;
    HRESULT code = E_FAIL;  // how a failing call fails
    std::int64_t references = 0;
};

DomWatch& Dom();

// Only calls out of this module are the library's: the component calls itself as well.
void WatchDocumentsOf(HMODULE module);

// Watches the object from now on when it is an XML document that the library has just made.
void WatchDocument(REFCLSID clsid, IUnknown* object);

}  // namespace faults
