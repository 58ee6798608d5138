#pragma once

namespace documents {

// The help text before and after the list of arguments.
struct HelpText {
    const char* description;
    const char* footer;
};

extern const HelpText kProgramHelp;  // of a program with these commands alone
extern const HelpText kShowHelp;
extern const HelpText kVerifyHelp;
extern const HelpText kReportHelp;
extern const HelpText kPlanHelp;
extern const HelpText kDiffHelp;

}  // namespace documents
