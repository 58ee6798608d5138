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
#include <fstream>
#include <map>
#include <regex>

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
    std::set<std::string> wmi_methods;
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

void Ask(Asked& asked, const std::filesystem::path& folder, const Entry& entry) {
    const host::LibrarySession session(folder);
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
    asked.opened.insert(requests.opened.begin(), requests.opened.end());
    for (const machine::CallRecord& record : machine::Simulation::Current()->calls().records()) {
        if (record.family == machine::CallFamily::kCom) {
            asked.wmi_methods.insert(record.name);
        }
        if (record.name == "IWbemLocator::ConnectServer") {
            asked.wmi_namespaces.insert(record.object);
        }
    }
}

const Asked& AskedOnAllMachines() {
    static const Asked asked = [] {
        Asked all;
        for (const std::filesystem::path& folder : cases::FoldersOf(kRoot / "examples/machines")) {
            for (const Entry& entry : kEntries) {
                Ask(all, folder, entry);
            }
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

TEST(Requests, OpenedNames_AreDisksVolumesAndDevices) {
    const std::wregex known(
        LR"(\\\\\.\\PhysicalDrive\d+|\\\\\?\\Volume\{[0-9a-fA-F-]{36}\}\\?|\\\\\.\\[A-Z]:|)"
        LR"(\\\\\?\\GLOBALROOT\\Device\\[^\\]+)");
    for (const std::wstring& name : AskedOnAllMachines().opened) {
        EXPECT_TRUE(std::regex_match(name, known)) << machine::Narrow(name);
    }
}

TEST(Requests, WmiMethods_OnlyRead) {
    EXPECT_THAT(AskedOnAllMachines().wmi_methods,
                testing::ElementsAre("IClassFactory::CreateInstance", "IClientSecurity::SetBlanket",
                                     "IEnumWbemClassObject::Next", "IEnumWbemClassObject::Reset",
                                     "IWbemClassObject::Get", "IWbemLocator::ConnectServer",
                                     "IWbemServices::ExecQuery"));
    // Without a computer's name: the machine itself.
    EXPECT_THAT(AskedOnAllMachines().wmi_namespaces, testing::ElementsAre(L"root\\cimv2"));
}

}  // namespace
