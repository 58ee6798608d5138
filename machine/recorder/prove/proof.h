#pragma once

#include "machine/recorder/observe/observations.h"

#include <functional>
#include <string>
#include <vector>

// Compares what a recorded machine answered with what its description answers.
namespace recorder {

struct Finding {
    enum class Kind {
        kUnexplained,
        kExplained,  // by a call that did not answer
        kChanging,   // a value that changes by itself: free space, times, clock speed
    };
    Kind kind = Kind::kUnexplained;
    std::string text;  // UTF-8; names in it may have any characters
};

// The questions that the description answers otherwise, call by call: "IOCTL_DISK_GET_DRIVE_LAYOUT_EX on
// PhysicalDrive1, 512 bytes: error 122 here, success there". Both hold the same questions.
std::vector<Finding> CompareAnswers(const Observations& recorded, const Observations& described);

// The lines of an output of the library that differ; `subject` says which output it is. Documents are masked
// first (masks.h). `shown` makes of a line what the finding shows of it.
using ShownLine = std::function<std::string(const std::string& line)>;
std::vector<Finding> CompareOutputs(const std::string& subject, const std::string& recorded,
                                    const std::string& described, const ShownLine& shown = std::identity());

// "unexplained: TEXT", with the word for the kind, to be escaped where it is printed.
std::string LineOf(const Finding& finding);

}  // namespace recorder
