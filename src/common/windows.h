#pragma once

// Includes the platform's headers. Every file includes this header instead of <windows.h>, so that the
// version and configuration macros are the same everywhere.

#ifndef _WIN32_WINNT
#define _WIN32_WINNT 0x0602  // needed to declare GetFirmwareType, which is bound at run time
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif

#include <windows.h>
#include <winioctl.h>
