#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <variant>
#include <vector>

namespace host {

// What the program returns to its caller.
enum ExitCode : int {
    kExitDone = 0,
    kExitFailed = 1,    // nothing could be told or delivered, or something selected cannot be backed up
    kExitBadUsage = 2,  // arguments or a machine description that cannot be used
};

// The library's own.
inline constexpr std::uint32_t kDefaultFormat = 2;

// An argument that could be read and yet cannot be used. what() is UTF-8.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

struct VersionOptions {};

// What every command that looks at a machine takes.
struct MachineOptions {
    std::optional<std::filesystem::path> machine;  // a description; none: the system that the program runs on
    std::optional<std::filesystem::path> log;
    bool verbose = false;
};

struct CaptureOptions : MachineOptions {
    std::uint32_t format = kDefaultFormat;
    std::vector<std::wstring> volumes;            // volume GUID paths, as given
    std::optional<std::filesystem::path> output;  // none: standard output
    bool raw = false;
};

enum class DumpKind { kWmi, kDisks, kVolumes, kFirmware };

struct DumpOptions : MachineOptions {
    DumpKind kind = DumpKind::kWmi;
    std::optional<std::filesystem::path> output;  // none: standard output
};

struct CheckOptions : MachineOptions {
    std::vector<std::wstring> volumes;  // as given
    bool json = false;
};

// The arguments ask for nothing but a text: the help, or what is wrong with them.
struct Message {
    int exit_code = kExitDone;
    std::string text;  // UTF-8, ends with a line feed; for standard error when `exit_code` is not kExitDone
};

using Command = std::variant<VersionOptions, CaptureOptions, DumpOptions, CheckOptions, Message>;

// Reads the arguments, the program's name left out. Throws nothing of its own.
Command ParseArguments(const std::vector<std::wstring>& arguments);

}  // namespace host
