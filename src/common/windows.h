#pragma once

// The one door to the platform's headers: every file includes this instead of <windows.h>, so that the
// version and the trimming macros are the same everywhere.

#ifndef _WIN32_WINNT
#define _WIN32_WINNT 0x0602  // GetFirmwareType is declared from this version on; it is bound at run time
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif

#include <windows.h>
#include <winioctl.h>
