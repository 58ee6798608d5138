#pragma once

#include "capture/environment/env_info.h"
#include "common/xml/ms_xml.h"

// Write the record as the element "BMREnvInfo" under `root`. They throw _com_error.

// The layout of formats 1 and 2: flat tables of disks, volumes and drive letters.
void WriteEnvironment(CMSXmlNode& root, const EnvInfo& environment);

// The layout of format 3: the disk and volume sections are the disk model's own fragments.
void WriteEnvironment(CMSXmlNode& root, const EnvInfoV3& environment);
