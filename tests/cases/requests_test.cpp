// What the library asks of the system on the machines of examples/machines: all that SECURITY.md says, and
// nothing else.

#include "cases/case_folder.h"
#include "machine/description/text.h"
#include "machine/simulation/redirect.h"
#include "machine/simulation/simulation.h"
#include "support/request_watch.h"
#include "support/security_page.h"
#include "tools/orvane/capture_command.h"
#include "tools/orvane/library_session.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace {

using support::SecurityPage;
using testing::IsEmpty;
using testing::IsSubsetOf;

const std::filesystem::path kRoot = ORVANE_SOURCE_DIR;

struct Entry {
    const char* name;
    std::uint32_t format;  // 0: a dump
    void (*host::OrvaneLibrary::*dump)();
};

const Entry kEntries[] = {
    {"capture1", 1, nullptr},
    {"capture2", 2, nullptr},
    {"capture3", 3, nullptr},
    {"wmi", 0, &host::OrvaneLibrary::WMIDumpInfo},
    {"disks", 0, &host::OrvaneLibrary::DiskDumpInfo},
    {"volumes", 0, &host::OrvaneLibrary::VolumeDumpInfo},
    {"firmware", 0, &host::OrvaneLibrary::FirmwareDumpInfo},
};

// What all machines together asked, by entry point.
struct Asked {
    std::map<std::string, std::set<std::string>, std::less<>> kinds;
    std::set<std::wstring> opened;
    std::set<std::wstring> unknown;  // opened, and not a disk or a volume that the machine reports
    std::set<std::string> readings;  // in the words of support/security_page.h
    std::set<std::wstring> wmi_namespaces;
};

void Capture(const host::OrvaneLibrary& library, const std::filesystem::path& folder, std::uint32_t format) {
    library.SetXmlFormat(format);
    if (const std::vector<std::wstring> volumes = cases::SelectedVolumes(folder); !volumes.empty()) {
        const std::wstring list = host::MultiStringOf(volumes);
        library.SetupSelectedVolumesList(list.data(), list.size());
    }
    std::uint32_t needed = 0;
    library.CaptureSystemRestorePointInfo(nullptr, 0, &needed);
    std::string buffer(needed, '\0');
    library.CaptureSystemRestorePointInfo(buffer.data(), needed, &needed);
}

// The volumes of a machine by all names that can be opened.
std::set<std::wstring> VolumeNames(const machine::Description& machine) {
    std::set<std::wstring> names;
    for (const machine::Volume& volume : machine.volumes) {
        names.insert({L"\\\\?\\Volume" + volume.guid, L"\\\\?\\GLOBALROOT" + volume.device});
        for (const machine::VolumeAlias& alias : volume.aliases) {
            names.insert(L"\\\\?\\Volume" + alias.guid);
        }
        for (const std::wstring& mount_point : volume.mount_points) {
            names.insert(L"\\\\.\\" + mount_point.substr(0, mount_point.size() - 1));
        }
    }
    return names;
}

void NoteOpened(Asked& asked, const std::set<std::wstring>& opened) {
    asked.opened.insert(opened.begin(), opened.end());
    const std::set<std::wstring> volumes = VolumeNames(machine::Simulation::Current()->machine());
    for (std::wstring name : opened) {
        name.resize(name.size() - (name.ends_with(L'\\') ? 1 : 0));
        if (!name.starts_with(L"\\\\.\\PhysicalDrive") && !volumes.contains(name)) {
            asked.unknown.insert(name);
        }
    }
}

void NoteReadings(Asked& asked, const machine::CallLog& calls) {
    asked.readings.merge(support::ReadingsOf(calls.names()));
    for (const char* const call : {"ZwOpenDirectoryObject", "IWbemServices::ExecQuery"}) {
        for (const std::wstring& directory_or_class : calls.ObjectsOf(call)) {
            asked.readings.insert(machine::Narrow(directory_or_class));
        }
    }
    for (const std::wstring& name_space : calls.ObjectsOf("IWbemLocator::ConnectServer")) {
        asked.wmi_namespaces.insert(name_space);
    }
}

// `missing`: a function that the system does not have.
void Ask(Asked& asked, const std::filesystem::path& folder, const Entry& entry,
         const char* missing = nullptr) {
    const host::LibrarySession session(folder);
    machine::Simulation& simulation = *machine::Simulation::Current();
    if (missing != nullptr) {
        simulation.description().missing.insert(missing);
    }
    const host::OrvaneLibrary& library = session.library();
    support::WatchRequests(library.module());
    support::RequestsOfLibrary().Clear();
    if (entry.format != 0) {
        Capture(library, folder, entry.format);
    } else {
        (library.*entry.dump)();
    }
    const support::Requests& requests = support::RequestsOfLibrary();
    asked.kinds[entry.name].insert(requests.kinds.begin(), requests.kinds.end());
    NoteOpened(asked, requests.opened);
    NoteReadings(asked, simulation.calls());
}

const Asked& AskedOnAllMachines() {
    static const Asked asked = [] {
        Asked all;
        for (const std::filesystem::path& folder : cases::FoldersOf(kRoot / "examples/machines")) {
            for (const Entry& entry : kEntries) {
                Ask(all, folder, entry);
            }
        }
        // Windows 7 has another function instead.
        for (const Entry& entry : kEntries) {
            Ask(all, kRoot / "examples/machines/bios-laptop", entry, "GetFirmwareType");
        }
        return all;
    }();
    return asked;
}

std::set<std::string> FunctionsIn(const std::filesystem::path& file) {
    std::set<std::string> names;
    std::ifstream stream(file);
    for (std::string line; std::getline(stream, line);) {
        if (!line.empty() && !line.starts_with('#')) {
            names.insert(line.substr(line.find(' ') + 1));
        }
    }
    return names;
}

TEST(Requests, OfEveryEntryPoint_AreThoseOfSecurityMd) {
    const SecurityPage page = SecurityPage::Read(kRoot / "SECURITY.md");
    EXPECT_EQ(page.requests.size(), std::size(kEntries));
    for (const Entry& entry : kEntries) {
        SCOPED_TRACE(entry.name);
        EXPECT_EQ(AskedOnAllMachines().kinds.at(entry.name), page.requests.at(entry.name));
    }
}

TEST(Requests, OfTheSettings_AreNone) {
    const host::LibrarySession session(kRoot / "examples/machines/bios-laptop");
    const host::OrvaneLibrary& library = session.library();
    support::WatchRequests(library.module());
    support::RequestsOfLibrary().Clear();
    library.GetOrvaneVersion();
    library.SetXmlFormat(3);
    library.SetEventFunc(nullptr);
    library.SetupSelectedVolumesList(nullptr, 0);
    EXPECT_THAT(support::RequestsOfLibrary().kinds, IsEmpty());
    EXPECT_EQ(machine::Simulation::Current()->calls().size(), 0U);
}

TEST(Requests, FunctionsThatNoExportReaches_AreThoseOfSecurityMd) {
    const std::set<std::string> named = SecurityPage::Read(kRoot / "SECURITY.md").never_reached;
    const std::vector<std::string>& watched = support::ChangingFunctions();
    EXPECT_EQ(named, std::set<std::string>(watched.begin(), watched.end()));

    std::set<std::string> held = FunctionsIn(kRoot / "src/capture/exports/imported-functions.txt");
    held.merge(FunctionsIn(kRoot / "src/capture/exports/bound-functions.txt"));
    EXPECT_THAT(watched, IsSubsetOf(held));
}

TEST(Requests, OfChangingFunctions_AreNotedAndNotCarriedOut) {
    const host::LibrarySession session(kRoot / "examples/machines/bios-laptop");
    const HMODULE library = session.library().module();
    support::WatchRequests(library);
    support::RequestsOfLibrary().Clear();
    const auto unused = reinterpret_cast<FARPROC>(reinterpret_cast<void (*)()>(&FunctionsIn));
    const FARPROC look_up = machine::RedirectImport(library, "GetProcAddress", unused);
    for (const std::string& name : support::ChangingFunctions()) {
        FARPROC called = machine::RedirectImport(library, name.c_str(), unused);
        if (called == nullptr) {
            called = reinterpret_cast<decltype(&::GetProcAddress)>(reinterpret_cast<void (*)()>(look_up))(
                GetModuleHandleW(L"kernel32.dll"), name.c_str());
        }
        EXPECT_EQ(called(), 0) << name;
        EXPECT_TRUE(support::RequestsOfLibrary().kinds.contains(name)) << name;
    }
}

TEST(Requests, Readings_AreThoseOfSecurityMd) {
    EXPECT_EQ(AskedOnAllMachines().readings, SecurityPage::Read(kRoot / "SECURITY.md").readings);
}

TEST(Requests, OpenedNames_AreDisksVolumesAndDevices) {
    for (const std::wstring& name : AskedOnAllMachines().opened) {
        EXPECT_TRUE(support::IsDiskOrVolume(name)) << machine::Narrow(name);
    }
    for (const wchar_t* const other :
         {L"", L"C:\\pagefile.sys", L"\\\\.\\C:\\pagefile.sys", L"\\\\.\\PhysicalDrive", L"\\\\server\\share",
          L"\\\\.\\pipe\\x", L"CONOUT$"}) {
        EXPECT_FALSE(support::IsDiskOrVolume(other)) << machine::Narrow(other);
    }
}

TEST(Requests, OpenedVolumes_AreThoseOfTheMachine) {
    EXPECT_THAT(AskedOnAllMachines().unknown, IsEmpty());
}

// Without a computer's name: the machine itself.
TEST(Requests, WmiNamespace_IsOfThisMachine) {
    EXPECT_THAT(AskedOnAllMachines().wmi_namespaces, testing::ElementsAre(L"root\\cimv2"));
}

}  // namespace
