#pragma once

#include "common/windows.h"

#include <string>

// The error text of a failed HRESULT, as the platform's COM support forms it: the system's message without
// the line break at its end, otherwise the number of an automation error, otherwise the code.
std::wstring ComErrorText(HRESULT result);
