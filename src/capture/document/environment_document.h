#pragma once

#include "capture/environment/env_info_v3.h"
#include "common/xml/ms_xml.h"

// Both functions append the record to `root` as the element "BMREnvInfo". They throw _com_error.

// The layout of formats 1 and 2: flat tables of disks, volumes and drive letters.
void WriteEnvironment(CMSXmlNode& root, const EnvInfo& environment);

// The layout of format 3: the disk model writes the disk and volume sections.
void WriteEnvironment(CMSXmlNode& root, const EnvInfoV3& environment);
