#pragma once

#include "common/windows.h"

#include <comdef.h>

// Shared ownership of a COM interface.
template <class Interface, const IID* kIid>
using ComPointer = _com_ptr_t<_com_IIID<Interface, kIid>>;

using UnknownPtr = ComPointer<IUnknown, &IID_IUnknown>;
