#pragma once

#include "common/windows.h"

#include <string>

// A GUID in registry format: 38 characters, upper case, in braces.
std::wstring GuidText(const GUID& guid);

// Creates a random GUID. On failure logs one line at level 2, sets `guid` to zero and returns false.
bool CreateGuid(GUID& guid);
