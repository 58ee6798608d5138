#pragma once

#include "capture/environment/env_info.h"

#include <string>
#include <vector>

// Finds the system and the boot volume among the fixed volumes by the device names that WMI reports
// (`os.SystemDevice`, `os.BootDevice`) and marks them. Appends one row per volume to `drive_letters`. Fills
// `boot_config`, including the boot options. On failure logs one error line and returns false.
bool FindBootAndSystemVolumes(std::vector<::Volume>& volumes, std::vector<DriveLetterEntry>& drive_letters,
                              BootConfig& boot_config, const OSInfo& os);

// Reads the options that the running system was started with. Enables the backup and restore privileges of
// the process. On failure, including out of memory, logs one error line and returns false. Throws nothing.
bool GetBootOptions(std::wstring& options);

// Sorts the table by drive letter; volumes without a letter come first.
void SortVolumeTable(std::vector<::Volume>& volumes);
