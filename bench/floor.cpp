// Compares captures with their floor, the minimum cost: the same system calls, WMI calls and document nodes,
// without the disk model, the checks and the log.

#include "bench/call_tape.h"
#include "bench/captures.h"
#include "bench/document_floor.h"
#include "bench/machines.h"
#include "bench/scratch_copy.h"
#include "bench/sections.h"
#include "bench/timing.h"
#include "bench/wmi_script.h"
#include "machine/session/session.h"
#include "machine/simulation/redirect.h"
#include "support/xml_tree.h"

#include <array>
#include <cwchar>
#include <optional>

namespace bench {

namespace {

// Reads the start options as formats 1 and 2 do.
void ReadStartOptions() {
    HANDLE token = nullptr;
    OpenProcessToken(GetCurrentProcess(), TOKEN_ADJUST_PRIVILEGES | TOKEN_QUERY, &token);
    for (const wchar_t* const name : {L"SeBackupPrivilege", L"SeRestorePrivilege"}) {
        TOKEN_PRIVILEGES privileges{};
        privileges.PrivilegeCount = 1;
        privileges.Privileges[0].Attributes = SE_PRIVILEGE_ENABLED;
        LookupPrivilegeValueW(nullptr, name, &privileges.Privileges[0].Luid);
        AdjustTokenPrivileges(token, FALSE, &privileges, 0, nullptr, nullptr);
    }
    CloseHandle(token);
    HKEY key = nullptr;
    RegOpenKeyExW(HKEY_LOCAL_MACHINE, L"SYSTEM\\CurrentControlSet\\Control", 0, KEY_READ, &key);
    static std::array<wchar_t, 16383> name;
    static std::array<BYTE, 16383> data;
    name[0] = L'\0';
    LSTATUS status = ERROR_SUCCESS;
    for (DWORD i = 0; status == ERROR_SUCCESS && std::wcscmp(name.data(), L"SystemStartOptions") != 0; ++i) {
        auto name_size = static_cast<DWORD>(name.size());
        auto data_size = static_cast<DWORD>(data.size());
        status = RegEnumValueW(key, i, name.data(), &name_size, nullptr, nullptr, data.data(), &data_size);
    }
    RegCloseKey(key);
}

// The platform's part of one capture.
class Floor {
public:
    // Records a capture with a copy of the library that is used for nothing else.
    Floor(machine::Simulation& simulation, std::uint32_t format) : format_(format) {
        const ScratchCopy copy;
        const host::OrvaneLibrary recorded(copy.file());
        RecordCallsOf(recorded.module(), tape_);
        Captures captures(recorded, format);
        tape_.Clear();
        simulation.calls().SetKept(true);
        simulation.calls().Clear();
        captures.Run();
        wmi_.emplace(simulation.calls().records());
        simulation.calls().SetKept(false);
        simulation.calls().Clear();
        document_.emplace(XmlTree::Of(captures.Document()));
    }

    // In the order of a capture, because a call is faster if its data was used shortly before.
    void Run() {
        wmi_->Play();
        tape_.Play();
        if (format_ != 3) {
            ReadStartOptions();
        }
        document_->Build();
    }

    std::size_t calls() const { return tape_.size(); }

private:
    std::uint32_t format_;
    CallTape tape_;
    std::optional<WmiScript> wmi_;
    std::optional<DocumentFloor> document_;
};

void MeasureFormat(const host::OrvaneLibrary& library, machine::Simulation& simulation,
                   const std::string& name, std::uint32_t format, std::size_t rounds, Report& report) {
    constexpr double kGoalWithout = 1.15;
    constexpr double kGoalWith = 1.30;
    Floor floor(simulation, format);
    Captures captures(library, format);
    const auto run_floor = [&] { floor.Run(); };
    const auto capture = [&] { captures.Run(); };
    const std::string row = name + ", format " + std::to_string(format);
    library.SetEventFunc(nullptr);
    report.Ratio(row + ", without a callback", RatioOf(capture, run_floor, rounds), kGoalWithout);
    library.SetEventFunc(&IgnoreLog);
    report.Ratio(row + ", with a callback", RatioOf(capture, run_floor, rounds), kGoalWith);
    library.SetEventFunc(nullptr);
}

machine::Description Example(const char* name) {
    return machine::LoadDescription(std::string(ORVANE_SOURCE_DIR "/examples/machines/") + name);
}

}  // namespace

void MeasureFloor(const host::OrvaneLibrary& library, std::size_t effort, Report& report) {
    report.Section("A capture, in times of its floor");
    {
        machine::Session session(Example("bios-laptop"));
        session.simulation().calls().SetKept(false);
        MeasureFormat(library, session.simulation(), "laptop", 1, 500 * effort, report);
    }
    {
        machine::Session session(Example("uefi-workstation"));
        session.simulation().calls().SetKept(false);
        for (const std::uint32_t format : {2U, 3U}) {
            MeasureFormat(library, session.simulation(), "workstation", format, 500 * effort, report);
        }
    }
    machine::Session session(MachineOf({16, 200, 1, 0}));
    session.simulation().calls().SetKept(false);
    for (const std::uint32_t format : {2U, 3U}) {
        MeasureFormat(library, session.simulation(), "16 disks, 200 volumes", format, 50 * effort, report);
    }
}

}  // namespace bench
