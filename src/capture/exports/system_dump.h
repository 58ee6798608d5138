#pragma once

#include "capture/environment/system_information.h"

// Writes the four system sections into the log, each as its lines at level 4 or, where it was not read, as
// one line at level 2.
void DumpSystemSections(const SystemSections& sections, const SectionsRead& read);
