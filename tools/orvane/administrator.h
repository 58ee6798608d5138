#pragma once

namespace host {

// Whether this process has administrator's rights now; false for an administrator's process without
// elevation.
bool RunsAsAdministrator();

}  // namespace host
