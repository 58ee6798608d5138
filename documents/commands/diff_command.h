#pragma once

#include "documents/commands/command.h"
#include "documents/model/machine.h"

#include <functional>
#include <optional>
#include <string>

namespace CLI {
class Option;
}  // namespace CLI

namespace documents {

// Captures the machine now, in this format. None: it failed, and standard error has the reasons.
using CaptureNow = std::function<std::optional<std::string>(Format format, const Terminal& terminal)>;

// Adds the arguments of the capture to those of the command; they need the option `live`.
using AddCapture = std::function<CaptureNow(CLI::App& parser, CLI::Option& live)>;

// `capture` is empty in a program that cannot capture: the command then has no --live.
Command AddDiff(CLI::App& program, const AddCapture& capture);

}  // namespace documents
