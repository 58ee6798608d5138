#pragma once

// Enables the backup and restore privileges in the process token, if the process holds them. Does not report
// failures: the call that needs the privileges will fail.
void EnableBackupPrivileges();
