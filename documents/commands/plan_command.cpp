#include "documents/commands/command.h"
#include "documents/commands/help_texts.h"
#include "documents/commands/inputs.h"
#include "documents/commands/output_file.h"
#include "documents/plan/plan.h"
#include "documents/text/utf8.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <limits>
#include <memory>

namespace documents {

namespace {

struct PlanArguments {
    std::string document;
    std::string folder;
    bool force = false;
    std::vector<std::uint32_t> disks;
    std::vector<std::string> targets;
    std::vector<std::string> target_sizes;
    std::vector<std::string> sector_sizes;
    ReadOptions reading;
};

std::optional<std::uint64_t> NumberOf(std::string_view text) {
    std::uint64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size() && !text.empty() ? std::optional(number)
                                                                                     : std::nullopt;
}

// The value of "N=VALUE"; the disk's number goes to `disk`.
std::string ValueFor(const std::string& option, const std::string& text, std::uint32_t& disk) {
    const std::size_t equals = text.find('=');
    const auto number = NumberOf(std::string_view(text).substr(0, equals));
    if (equals == std::string::npos || !number || *number > std::numeric_limits<std::uint32_t>::max()) {
        throw Trouble(option + " " + text + ": N=VALUE is needed, with the number of a disk");
    }
    disk = static_cast<std::uint32_t>(*number);
    return text.substr(equals + 1);
}

template <class Value>
void SetOnce(std::optional<Value>& member, Value value, const std::string& option, std::uint32_t disk) {
    if (member) {
        throw Trouble(option + " is given twice for disk " + std::to_string(disk));
    }
    member = std::move(value);
}

// "512110190592", "500 GB", "64MiB"
std::uint64_t SizeOf(const std::string& text) {
    struct Unit {
        std::string_view name;
        std::uint64_t bytes;
    };
    constexpr std::uint64_t kKb = 1000;
    constexpr Unit kUnits[] = {
        {"", 1},
        {"B", 1},
        {"KiB", std::uint64_t{1} << 10U},
        {"MiB", std::uint64_t{1} << 20U},
        {"GiB", std::uint64_t{1} << 30U},
        {"TiB", std::uint64_t{1} << 40U},
        {"KB", kKb},
        {"MB", kKb * kKb},
        {"GB", kKb * kKb * kKb},
        {"TB", kKb * kKb * kKb * kKb},
    };
    const std::size_t digits = std::min(text.find_first_not_of("0123456789"), text.size());
    std::string_view unit = std::string_view(text).substr(digits);
    unit.remove_prefix(std::min(unit.find_first_not_of(' '), unit.size()));
    const auto number = NumberOf(std::string_view(text).substr(0, digits));
    const auto* const found =
        std::find_if(std::begin(kUnits), std::end(kUnits), [&](const Unit& row) { return row.name == unit; });
    if (!number || found == std::end(kUnits) ||
        *number > std::numeric_limits<std::uint64_t>::max() / found->bytes) {
        throw Trouble(text +
                      " is no size: a number of bytes, or with one of the units KiB, MiB, GiB, TiB, KB, MB, "
                      "GB, TB");
    }
    return *number * found->bytes;
}

std::uint32_t SectorSizeFrom(const std::string& text) {
    const auto number = NumberOf(text);
    if (!number || (*number != 512 && *number != 1024 && *number != 2048 && *number != 4096)) {
        throw Trouble(text + " is no size of sectors: 512, 1024, 2048 or 4096");
    }
    return static_cast<std::uint32_t>(*number);
}

PlanRequest RequestOf(const PlanArguments& arguments) {
    PlanRequest request;
    request.disks.insert(arguments.disks.begin(), arguments.disks.end());
    std::uint32_t disk = 0;
    for (const std::string& text : arguments.targets) {
        const std::string path = ValueFor("--target", text, disk);
        SetOnce(request.targets[disk].path, path, "--target", disk);
    }
    for (const std::string& text : arguments.target_sizes) {
        const std::string size = ValueFor("--target-size", text, disk);
        SetOnce(request.targets[disk].size, SizeOf(size), "--target-size", disk);
        if (request.targets[disk].path) {
            throw Trouble("disk " + std::to_string(disk) +
                          " has a target with a size of its own and a --target-size");
        }
    }
    for (const std::string& text : arguments.sector_sizes) {
        const std::string size = ValueFor("--sector-size", text, disk);
        SetOnce(request.targets[disk].sector_size, SectorSizeFrom(size), "--sector-size", disk);
    }
    return request;
}

void Tell(const Terminal& terminal, const std::vector<Finding>& findings) {
    for (const Finding& finding : findings) {
        Complain(terminal, std::string(finding.code) + " " + std::string(NameOf(finding.severity)) + ": " +
                               finding.place + ": " + finding.text);
    }
}

std::string PathIn(const std::string& folder, const std::string& name) {
    const std::u8string path =
        (std::filesystem::path(std::u8string(folder.begin(), folder.end())) / name).generic_u8string();
    return {path.begin(), path.end()};
}

// A file that is there can be a target, also by another name.
void RequireNoTarget(const std::string& file, const TargetRequests& targets) {
    const Target written{file, {}, {}, true};
    for (const auto& [disk, target] : targets) {
        if (SameTarget(written, {target.path, {}, {}, true})) {
            throw Trouble(file + ": the file is the target of disk " + std::to_string(disk));
        }
    }
}

void Write(const PlanArguments& arguments, const TargetRequests& targets, const Plan& plan) {
    std::error_code error;
    const std::filesystem::path folder(std::u8string(arguments.folder.begin(), arguments.folder.end()));
    std::filesystem::create_directories(folder, error);
    if (!std::filesystem::is_directory(folder)) {
        throw Trouble(arguments.folder + ": the folder cannot be made");
    }
    for (const PlanFile& file : plan.files) {
        RequireNoTarget(PathIn(arguments.folder, file.name), targets);
        if (!arguments.force) {
            RequireFree(PathIn(arguments.folder, file.name));
        }
    }
    for (const PlanFile& file : plan.files) {
        WriteWholeFile(PathIn(arguments.folder, file.name), file.text, arguments.force);
    }
}

int MakePlan(const PlanArguments& arguments, const PlanRequest& request, const Machine& machine,
             const Terminal& terminal) {
    const Plan plan = PlanOf(machine, request);
    if (!plan.refusals.empty()) {
        Tell(terminal, plan.refusals);
        return kAnswer;
    }
    Write(arguments, request.targets, plan);
    Tell(terminal, plan.losses);
    std::string names;
    for (const PlanFile& file : plan.files) {
        names += Escaped(PathIn(arguments.folder, file.name)) + '\n';
    }
    Print(terminal, names);
    return HasErrors(plan.losses) ? kAnswer : kDone;
}

int RunPlan(const PlanArguments& arguments, const Terminal& terminal) {
    const PlanRequest request = RequestOf(arguments);
    return WithDocument(
        arguments.document, arguments.reading, terminal,
        [&](const Machine& machine) { return MakePlan(arguments, request, machine, terminal); },
        [](const Unreadable&) {});
}

}  // namespace

Command AddPlan(CLI::App& program) {
    const auto arguments = std::make_shared<PlanArguments>();
    CLI::App* const parser = program.add_subcommand("plan", kPlanHelp.description);
    parser->footer(kPlanHelp.footer);
    parser->add_option("DOC", arguments->document, "The document; - is standard input")
        ->type_name("")
        ->required();
    parser->add_option("--output", arguments->folder, "The folder for the scripts and plan.md")
        ->type_name("FOLDER")
        ->required();
    parser->add_flag("--force", arguments->force, "Replace files that are there already");
    parser->add_option("--disk", arguments->disks, "Only this disk; can be given again")
        ->type_name("N")
        ->expected(1)
        ->take_all();
    parser
        ->add_option("--target", arguments->targets,
                     "The target of a disk: an image or a device, which is only read")
        ->type_name("N=PATH")
        ->expected(1)
        ->take_all();
    parser->add_option("--target-size", arguments->target_sizes, "The size of a target that is not at hand")
        ->type_name("N=SIZE")
        ->expected(1)
        ->take_all();
    parser
        ->add_option(
            "--sector-size", arguments->sector_sizes,
            "The sectors of a target that is an image or not at hand; without it those of the document")
        ->type_name("N=BYTES")
        ->expected(1)
        ->take_all();
    AddCodePage(*parser, arguments->reading);
    return {parser, [arguments](const Terminal& terminal) { return RunPlan(*arguments, terminal); }};
}

}  // namespace documents
