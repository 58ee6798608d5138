#pragma once

#include "common/windows.h"

#include <oleauto.h>

#include <memory>

struct BstrDeleter {
    void operator()(wchar_t* text) const { SysFreeString(text); }
};

// Sole ownership of a BSTR. Unlike the compiler's own wrapper it needs no memory to take one over.
using UniqueBstr = std::unique_ptr<wchar_t, BstrDeleter>;
