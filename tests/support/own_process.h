#pragma once

namespace support {

// For tests of what happens once in a process. Called first thing in a test: runs this test again, alone in
// a process of its own, and returns true there. In the first process returns false, after failing the test
// if the other one failed it:
//     if (!support::InOwnProcess()) { return; }
bool InOwnProcess();

}  // namespace support
