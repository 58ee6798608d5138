#pragma once

#include "orvane/orvane.h"

// Makes the logger call the host's callback, in the host's own critical-error mode. Null restores the
// debugger output.
void UseHostCallback(OrvaneEventCallback callback);
