#pragma once

#include "capture/environment/env_info.h"
#include "common/xml/ms_xml.h"

// Appends the versions and the system sections, the first part of both layouts, to `environment`. Throws
// _com_error.
void WriteSystemSections(CMSXmlNode& environment, const SystemSections& sections);
