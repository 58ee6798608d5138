#pragma once

namespace host {

// The help's texts beside the lists of arguments.
struct HelpText {
    const char* description;
    const char* footer;
};

extern const HelpText kProgramHelp;
extern const HelpText kCaptureHelp;
extern const HelpText kDumpHelp;
extern const HelpText kCheckHelp;

}  // namespace host
