#include "machine/page/format_page.h"

#include "machine/description/control_codes.h"
#include "machine/description/tables.h"

#include <array>
#include <cstdio>
#include <stdexcept>
#include <string>
#include <utility>

namespace machine_test {
namespace {

template <class Owner>
std::string Lines(const machine::rows::Table<Owner>& table) {
    std::string lines = "| key | value | default | meaning |\n|---|---|---|---|\n";
    for (const machine::rows::Row<Owner>& row : table) {
        lines += "| `" + row.key + "` | " + row.kind + " | " + row.otherwise + " | " + row.meaning;
        lines += row.meaning.empty() ? "|\n" : " |\n";
    }
    return lines;
}

// The names of the calls that `chosen` accepts.
template <class Chosen>
std::string Names(Chosen&& chosen) {
    std::string names;
    for (const machine::NamedCall& call : machine::NamedCalls()) {
        if (chosen(call)) {
            names += (names.empty() ? "" : ", ") + std::string(call.name);
        }
    }
    return names;
}

// The calls that can be described to fail, by the object.
std::string CallLines() {
    const std::pair<const char*, machine::CallScope> objects[] = {
        {"disks", machine::CallScope::kDisk},
        {"volumes", machine::CallScope::kVolume},
        {"`dosDevices`", machine::CallScope::kDosDevice},
        {"directories", machine::CallScope::kDirectory},
        {"WMI classes", machine::CallScope::kWmiClass},
    };
    std::string lines = "| object | calls | those that `blocks` beside `errors` stops |\n|---|---|---|\n";
    for (const auto& [object, scope] : objects) {
        const auto scopes = static_cast<unsigned>(scope);
        const auto of = [scopes](const machine::NamedCall& call) { return (call.scopes & scopes) != 0; };
        const std::string stopped =
            Names([&](const machine::NamedCall& call) { return of(call) && call.blocks; });
        lines += std::string("| ") + object + " | " + Names(of) + " | " + stopped;
        lines += stopped.empty() ? "|\n" : " |\n";
    }
    return lines + "| the machine | all of these, and " +
           Names([](const machine::NamedCall& call) { return call.scopes == 0; }) + " ||\n";
}

std::string ControlLines() {
    std::string lines = "| device control | code |\n|---|---|\n";
    for (const machine::NamedCode& control : machine::NamedCodes()) {
        std::array<char, 12> code{};
        std::snprintf(code.data(), code.size(), "0x%08lX", control.code);
        lines += "| " + std::string(control.name) + " | " + code.data() + " |\n";
    }
    return lines;
}

std::string LinesOf(const std::string& name) {
    const struct {
        const char* name;
        std::string lines;
    } tables[] = {
        {"machine", Lines(machine::rows::MachineTable())},
        {"disk", Lines(machine::rows::DiskTable())},
        {"detection", Lines(machine::rows::DetectionTable())},
        {"geometry", Lines(machine::rows::GeometryTable())},
        {"super floppy", Lines(machine::rows::SuperFloppyTable())},
        {"partition", Lines(machine::rows::PartitionTable())},
        {"mbr partition", Lines(machine::rows::MbrTable())},
        {"gpt partition", Lines(machine::rows::GptTable())},
        {"volume", Lines(machine::rows::VolumeTable())},
        {"directory", Lines(machine::rows::DirectoryTable())},
        {"firmware", Lines(machine::rows::FirmwareTable())},
        {"calls", CallLines()},
        {"device controls", ControlLines()},
    };
    for (const auto& table : tables) {
        if (name == table.name) {
            return table.lines;
        }
    }
    throw std::invalid_argument("no rows are named \"" + name + "\"");
}

}  // namespace

std::string WithTables(const std::string& page) {
    const std::string begin = "<!-- rows: ";
    const std::string begin_end = " -->\n";
    const std::string end = "<!-- end -->\n";
    std::string result;
    std::size_t position = 0;
    for (std::size_t at = 0; (at = page.find(begin, position)) != std::string::npos;) {
        const std::size_t name = at + begin.size();
        const std::size_t table = page.find(begin_end, name);
        const std::size_t table_end = page.find(end, name);
        if (table == std::string::npos || table_end == std::string::npos || table > table_end) {
            throw std::invalid_argument("a table has no end");
        }
        result += page.substr(position, table + begin_end.size() - position);
        result += LinesOf(page.substr(name, table - name));
        position = table_end;
    }
    return result + page.substr(position);
}

}  // namespace machine_test
