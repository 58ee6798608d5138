#pragma once

// Makes the heap that all of the library's objects live in, which is the process's where the system has no
// memory for another one. To be called before the first of them is made.
void CreateLibraryHeap();

// From now on nothing is freed: the process ends. Another thread, ended in the middle of an allocation, may
// hold the heap for ever.
void LeaveMemoryToTheSystem();

// Gives back that heap and what the C++ runtime holds. Afterwards no code of the library may run any more.
void ReleaseMemory();
