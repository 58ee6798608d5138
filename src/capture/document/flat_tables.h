#pragma once

#include "capture/environment/env_info.h"
#include "common/record/rows.h"
#include "common/xml/ms_xml.h"

// Each function appends one section of formats 1 and 2 to `environment`, as one element. They throw
// _com_error.
void WriteDiskDrives(CMSXmlNode& environment, const std::vector<DiskRow>& disks);
void WriteVolumeTable(CMSXmlNode& environment, const std::vector<::Volume>& volumes);
void WriteDriveLetterTable(CMSXmlNode& environment, const std::vector<DriveLetterEntry>& drives);
void WriteBootConfig(CMSXmlNode& environment, const BootConfig& boot_config);
