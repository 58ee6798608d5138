#pragma once

#include "capture/environment/env_info.h"

// Fills the record through the flat enumerator. False after lines in the log,
// then with the record partly filled.
bool InitEnvInfo(EnvInfo& environment);
