#pragma once

#include "capture/environment/env_info.h"

// The collectors of the system sections. Each reads all instances of its WMI class; the values of the last
// one are kept. On failure they log one error line and return false. COM must be
// initialised on the calling thread. They throw only when out of memory.
bool GetProcessorInfo(ProcessorInfo& processor);
bool GetOSInfo(OSInfo& os);
bool GetComputerSystem(ComputerSystemInfo& computer_system);
bool GetBootConfiguration(BootConfigurationInfo& boot_configuration);

// The sections that were read successfully.
struct SectionsRead {
    bool processor = false;
    bool boot_configuration = false;
    bool computer_system = false;
    bool os = false;

    bool all() const { return processor && boot_configuration && computer_system && os; }
};

// Initialises COM for the duration of the call and runs all four collectors in the order of the flat record,
// even if an earlier one fails. Returns false, without reading anything, if COM cannot be initialised.
bool CollectSystemSections(SystemSections& sections, SectionsRead& read);

// The same in the order of formats 2 and 3. Returns true if all four collectors succeeded.
bool GetWMIInfo(SystemSections& sections);
