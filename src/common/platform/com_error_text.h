#pragma once

#include "common/windows.h"

#include <string>

// What the platform's COM support says of a failed result: the system's message without its line end, else
// the number of an automation error, else the bare code.
std::wstring ComErrorText(HRESULT result);
