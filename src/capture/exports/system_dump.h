#pragma once

#include "capture/environment/system_information.h"

// Writes the four system sections to the log: each as information lines, or as one error line if it was not
// read.
void DumpSystemSections(const SystemSections& sections, const SectionsRead& read);
