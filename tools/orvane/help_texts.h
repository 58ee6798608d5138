#pragma once

namespace host {

// The help text before and after the list of arguments.
struct HelpText {
    const char* description;
    const char* footer;
};

extern const HelpText kProgramHelp;
extern const HelpText kCaptureHelp;
extern const HelpText kDumpHelp;
extern const HelpText kCheckHelp;
extern const HelpText kRecordHelp;
extern const HelpText kProveHelp;

}  // namespace host
