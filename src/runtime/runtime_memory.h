#pragma once

// Makes the heap that all of the library's objects live in; to be called before the first of them is made.
// False when the system has no memory for it.
bool CreateLibraryHeap();

// Gives back that heap and what the C++ runtime holds. Afterwards no code of the library may run any more.
void ReleaseMemory();
