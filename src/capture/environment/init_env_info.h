#pragma once

#include "capture/environment/env_info.h"

// Fills the record with the flat enumerator. On failure logs the reason and returns false; the record is then
// partly filled.
bool InitEnvInfo(EnvInfo& environment);
