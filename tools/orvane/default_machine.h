#pragma once

namespace host {

// The description of the machine that stands in for the live one, taken into the program when it was built.
extern const char* const kDefaultMachine;      // JSON
extern const char* const kDefaultMachineName;  // the file that it comes from

}  // namespace host
