#pragma once

#include "common/windows.h"

#include <string>

// A GUID in registry form: 38 characters, upper case, in braces.
std::wstring GuidText(const GUID& guid);

// Makes a new random GUID. On failure logs one line at level 2, leaves `guid` all zero and returns false.
bool CreateGuid(GUID& guid);
