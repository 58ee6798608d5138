#pragma once

#include "capture/environment/env_info.h"

#include <string>
#include <vector>

// Recognises the system and the boot volume among the fixed volumes by their device names (the management
// information's "system device" and "boot device"), marks them, appends a drive-letter row for every volume,
// and fills `boot_config`, the boot options included. False after one level 2 line.
bool FindBootAndSystemVolumes(std::vector<::Volume>& volumes, std::vector<DriveLetterEntry>& drive_letters,
                              BootConfig& boot_config, const OSInfo& os);

// Reads the options that the running system was started with. Enables the process's backup and restore
// privileges. False after one level 2 line; memory running out is such a failure, nothing is thrown.
bool GetBootOptions(std::wstring& options);

// Puts the table in order of the drive letters; volumes without one come first.
void SortVolumeTable(std::vector<::Volume>& volumes);
