#include "tools/orvane/program.h"

#include "machine/description.h"
#include "tools/orvane/capture_command.h"
#include "tools/orvane/options.h"
#include "tools/orvane/orvane_library.h"

#include <exception>

namespace host {

namespace {

int Execute(const Message& message, std::ostream& out, std::ostream& errors) {
    (message.exit_code == kExitDone ? out : errors) << message.text;
    return message.exit_code;
}

int Execute(const VersionOptions& /*options*/, std::ostream& out, std::ostream& /*errors*/) {
    const OrvaneLibrary library(LibraryPath());
    out << "Orvane.dll " << library.FileVersion() << ", interface version " << library.GetOrvaneVersion()
        << '\n';
    return kExitDone;
}

int Execute(const CaptureOptions& options, std::ostream& out, std::ostream& errors) {
    return Capture(options, out, errors);
}

}  // namespace

int Run(const std::vector<std::wstring>& arguments, std::ostream& out, std::ostream& errors) {
    try {
        return std::visit([&](const auto& command) { return Execute(command, out, errors); },
                          ParseArguments(arguments));
    } catch (const machine::DescriptionError& error) {
        errors << "orvane: " << error.what() << '\n';
        return kExitBadUsage;
    } catch (const UsageError& error) {
        errors << "orvane: " << error.what() << '\n';
        return kExitBadUsage;
    } catch (const std::exception& error) {
        errors << "orvane: " << error.what() << '\n';
        return kExitFailed;
    }
}

}  // namespace host
