#pragma once

// Enables the privileges to back up and to restore in the process's token, as far as the process holds them.
// What becomes of it is not checked: the call that needs them will tell.
void EnableBackupPrivileges();
