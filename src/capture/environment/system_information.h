#pragma once

#include "capture/environment/env_info.h"

// The collectors of the system sections. Each reads every instance of its management class, so that the last one's
// values stand; returns non-zero when the section was read, 0 after one level 2 line. COM must be initialised on the
// calling thread. Only running out of memory throws.
int GetProcessorInfo(ProcessorInfo& processor);
int GetOSInfo(OSInfo& os);
int GetComputerSystem(ComputerSystemInfo& computer_system);
int GetBootConfiguration(BootConfigurationInfo& boot_configuration);

// What the grabbers begin with: initialises COM for the length of the call and runs all four collectors, whatever
// the earlier ones returned. True when all four succeeded.
bool GetWMIInfo(SystemSections& sections);
