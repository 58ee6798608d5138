#pragma once

// Gives back what the C++ runtime holds. Afterwards no code of the library may run any more.
void ReleaseRuntimeMemory();
