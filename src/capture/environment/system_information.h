#pragma once

#include "capture/environment/env_info.h"

// The collectors of the system sections. Each reads every instance of its management class, so that the last
// one's values stand; returns non-zero when the section was read, 0 after one level 2 line. COM must be
// initialised on the calling thread. Only running out of memory throws.
int GetProcessorInfo(ProcessorInfo& processor);
int GetOSInfo(OSInfo& os);
int GetComputerSystem(ComputerSystemInfo& computer_system);
int GetBootConfiguration(BootConfigurationInfo& boot_configuration);

// Which sections could be read.
struct SectionsRead {
    bool processor = false;
    bool boot_configuration = false;
    bool computer_system = false;
    bool os = false;

    bool all() const { return processor && boot_configuration && computer_system && os; }
};

// Initialises COM for the length of the call and runs all four collectors in the order of the flat record,
// whatever the earlier ones returned. False, with nothing read, when COM could not be initialised.
bool CollectSystemSections(SystemSections& sections, SectionsRead& read);

// The same in the order of the disk model's grabbers. True when all four succeeded.
bool GetWMIInfo(SystemSections& sections);
