#pragma once

namespace support {

// For tests of things that happen once per process. Call it first in the test. It runs the same test alone in
// a new process, where it returns true. In the first process it returns false, after failing the test if the
// run in the new process failed:
//     if (!support::InOwnProcess()) { return; }
bool InOwnProcess();

}  // namespace support
