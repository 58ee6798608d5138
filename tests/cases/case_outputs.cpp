#include "cases/case_outputs.h"

#include "cases/case_folder.h"
#include "machine/recorder/prove/masks.h"
#include "machine/simulation/simulation.h"
#include "support/log_capture.h"
#include "tools/orvane/capture_command.h"
#include "tools/orvane/check_command.h"
#include "tools/orvane/indented_xml.h"
#include "tools/orvane/library_session.h"
#include "tools/orvane/text_encoding.h"

#include <algorithm>
#include <cstdint>
#include <functional>
#include <iterator>
#include <sstream>
#include <stdexcept>

namespace cases {

namespace {

using DumpExport = void (*)();

struct DumpKind {
    const char* name;
    DumpExport host::OrvaneLibrary::*call;
};

constexpr const char* kCheck = "check";
constexpr std::uint32_t kFormats[] = {1, 2, 3};
const DumpKind kDumps[] = {
    {"wmi", &host::OrvaneLibrary::WMIDumpInfo},
    {"disks", &host::OrvaneLibrary::DiskDumpInfo},
    {"volumes", &host::OrvaneLibrary::VolumeDumpInfo},
    {"firmware", &host::OrvaneLibrary::FirmwareDumpInfo},
};

std::string FormatName(std::uint32_t format) {
    return "format" + std::to_string(format);
}

// The text of a line, with a line feed as \n and any other control character as \x and two digits, so that
// the file shows it.
std::string Visible(const std::string& text) {
    constexpr const char* kDigits = "0123456789ABCDEF";
    std::string visible;
    for (const char character : text) {
        const auto code = static_cast<unsigned char>(character);
        if (character == '\n') {
            visible += "\\n";
        } else if (code < ' ') {
            visible += {'\\', 'x', kDigits[code >> 4], kDigits[code & 15]};
        } else {
            visible += character;
        }
    }
    return visible;
}

std::string LogText(const std::vector<support::LogLine>& lines, std::int32_t lowest_level) {
    std::string text;
    for (const support::LogLine& line : lines) {
        if (line.level < lowest_level) {
            continue;
        }
        text += std::to_string(line.level) + ' ' + Visible(host::FromLocale(line.text.c_str())) + '\n';
    }
    return text;
}

// Nothing that the library took from the simulated system may be left after a call.
void RequireNothingLeft() {
    const machine::Simulation& simulation = *machine::Simulation::Current();
    if (simulation.open_handles() != 0 || simulation.live_objects() != 0 ||
        simulation.stale_handle_uses() != 0) {
        throw std::runtime_error("the library left " + std::to_string(simulation.open_handles()) +
                                 " handles and " + std::to_string(simulation.live_objects()) +
                                 " objects, and used " + std::to_string(simulation.stale_handle_uses()) +
                                 " closed handles");
    }
}

Output Document(const std::filesystem::path& folder, std::uint32_t format) {
    const host::LibrarySession session(folder);
    const host::OrvaneLibrary& library = session.library();
    library.SetXmlFormat(format);
    // An empty list is an error for the library.
    if (const std::vector<std::wstring> volumes = SelectedVolumes(folder); !volumes.empty()) {
        const std::wstring list = host::MultiStringOf(volumes);
        library.SetupSelectedVolumesList(list.data(), list.size());
    }
    const support::LogCapture log(library.SetEventFunc);

    std::uint32_t status = ORVANE_SUCCESS;
    const auto document = host::FetchDocument([&](char* buffer, std::uint32_t size, std::uint32_t* needed) {
        status = library.CaptureSystemRestorePointInfo(buffer, size, needed);
        return status;
    });
    RequireNothingLeft();
    if (document) {
        return {FormatName(format) + ".xml", recorder::Masked(host::IndentXml(host::FromAnsi(*document)))};
    }
    // A reason may be a warning.
    const std::string reasons = LogText(log.all(), ORVANE_LEVEL_WARNING);
    if (status != ORVANE_FAILED || reasons.empty()) {
        throw std::runtime_error("the capture gave neither a document nor a reason, status " +
                                 std::to_string(status));
    }
    return {FormatName(format) + ".refused.txt", reasons};
}

Output Dump(const std::filesystem::path& folder, const DumpKind& kind) {
    const host::LibrarySession session(folder);
    const support::LogCapture log(session.library().SetEventFunc);
    (session.library().*kind.call)();
    RequireNothingLeft();
    return {std::string(kind.name) + ".txt", LogText(log.all(), ORVANE_LEVEL_INFORMATION)};
}

Output Check(const std::filesystem::path& folder) {
    host::CheckOptions options;
    options.machine = folder;
    options.volumes = SelectedVolumes(folder);
    options.json = true;
    std::ostringstream out;
    std::ostringstream errors;  // the dumps and the captures show the same errors
    host::Check(options, out, errors, false);
    return {"check.json", out.str()};
}

}  // namespace

const std::vector<std::string>& Subjects() {
    static const std::vector<std::string> subjects = [] {
        std::vector<std::string> names;
        std::transform(std::begin(kFormats), std::end(kFormats), std::back_inserter(names), FormatName);
        for (const DumpKind& kind : kDumps) {
            names.emplace_back(kind.name);
        }
        names.emplace_back(kCheck);
        return names;
    }();
    return subjects;
}

std::vector<std::string> FilesOf(const std::string& subject) {
    if (subject == kCheck) {
        return {"check.json"};
    }
    if (subject.starts_with("format")) {
        return {subject + ".xml", subject + ".refused.txt"};
    }
    return {subject + ".txt"};
}

Output MakeOutput(const std::filesystem::path& folder, const std::string& subject) {
    for (const std::uint32_t format : kFormats) {
        if (subject == FormatName(format)) {
            return Document(folder, format);
        }
    }
    for (const DumpKind& kind : kDumps) {
        if (subject == kind.name) {
            return Dump(folder, kind);
        }
    }
    if (subject != kCheck) {
        throw std::invalid_argument(subject + " is made of no machine");
    }
    return Check(folder);
}

}  // namespace cases
