#pragma once

#include "capture/environment/env_info.h"
#include "common/xml/ms_xml.h"

// Appends what both layouts begin with to `environment`: the versions and the system sections. Throws
// _com_error.
void WriteSystemSections(CMSXmlNode& environment, const SystemSections& sections);
