#pragma once

#include "capture/environment/env_info.h"

// Fills the record through the flat enumerator. Non-zero on success; on failure 0, after lines in the log,
// with the record partly filled.
int InitEnvInfo(EnvInfo& environment);
