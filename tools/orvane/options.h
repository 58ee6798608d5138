#pragma once

#include "documents/commands/command.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <variant>
#include <vector>

namespace host {

// The exit codes of the program.
enum ExitCode : int {
    kExitDone = 0,
    kExitFailed = 1,    // no result, failed output, or a selected volume that cannot be backed up
    kExitBadUsage = 2,  // unusable arguments or machine description
    kExitUnproved = 3,  // a recording is written, but something in it is unexplained or unproved
};

// The library's default.
inline constexpr std::uint32_t kDefaultFormat = 2;

// An argument that was parsed but cannot be used. what() is UTF-8.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

struct VersionOptions {};

// The options of every command that describes a machine.
struct MachineOptions {
    std::optional<std::filesystem::path> machine;  // description; none: the system that this program runs on
    std::optional<std::filesystem::path> log;
    bool verbose = false;
};

struct CaptureOptions : MachineOptions {
    std::uint32_t format = kDefaultFormat;
    std::vector<std::wstring> volumes;            // volume GUID paths, as given
    std::optional<std::filesystem::path> output;  // none: standard output
    bool force = false;                           // an existing file is replaced
    bool raw = false;
};

enum class DumpKind { kWmi, kDisks, kVolumes, kFirmware };

struct DumpOptions : MachineOptions {
    DumpKind kind = DumpKind::kWmi;
    std::optional<std::filesystem::path> output;  // none: standard output
    bool force = false;                           // an existing file is replaced
};

struct CheckOptions : MachineOptions {
    std::vector<std::wstring> volumes;  // as given
    bool json = false;
};

struct RecordOptions {
    std::optional<std::filesystem::path> machine;  // none: the system that this program runs on
    std::filesystem::path output;
    std::optional<std::filesystem::path> observations;
    bool redact = false;                       // what tells about people and organisations is replaced
    std::optional<std::filesystem::path> map;  // the replacements; only with `redact`
    bool proof = true;                         // the library is run on the machine and on its description
    bool force = false;                        // existing files are replaced
};

struct ProveOptions {
    std::filesystem::path observations;
};

// The child process of a recording, which asks the questions.
struct AnswerOptions {
    std::optional<std::filesystem::path> machine;
};

// A command for documents, with its arguments.
struct DocumentOptions {
    documents::Command command;
};

// A text to print instead of a command: the help, or what is wrong with the arguments.
struct Message {
    int exit_code = kExitDone;
    std::string text;  // UTF-8, ends with a line feed; for standard error unless `exit_code` is kExitDone
};

using Command = std::variant<VersionOptions, CaptureOptions, DumpOptions, CheckOptions, RecordOptions,
                             ProveOptions, AnswerOptions, DocumentOptions, Message>;

// Parses the arguments, without the program name. Returns a Message, instead of throwing, if they are
// invalid.
Command ParseArguments(const std::vector<std::wstring>& arguments);

}  // namespace host
