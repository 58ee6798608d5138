#include "machine/description/tables.h"
#include "machine/description/text.h"

#include <set>
#include <string>

namespace machine::rows {
namespace {

constexpr NamedNumber kRecordings[] = {{"none", 0}, {"plain", 1}, {"redacted", 2}};

Kind<std::wstring> DriveRoot() {
    return Checked<std::wstring>("text", Text(), [](const std::wstring& drive) {
        return !DriveNumber(drive) || drive.size() != 3 ? "must be a drive root like \"C:\\\\\"" : nullptr;
    });
}

std::vector<RegistryKey> UsualRegistry(const Description&, const Place&) {
    const std::wstring options = L" NOEXECUTE=OPTIN";
    RegistryValue value;
    value.name = L"SystemStartOptions";
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(options.c_str());
    value.data.assign(bytes, bytes + (options.size() + 1) * sizeof(wchar_t));
    return {{L"SYSTEM\\CurrentControlSet\\Control", {value}}};
}

Firmware UsualFirmware(const Description&, const Place& place) {
    Firmware firmware;
    for (const Row<Firmware>& row : FirmwareTable()) {
        if (row.fill) {
            row.fill(firmware, place);
        }
    }
    return firmware;
}

}  // namespace

const Table<Description>& MachineTable() {
    static const Table<Description> table = Joined(
        {{{"name", &Description::name, Utf8(), ""},
          {"comment", "text", "none", "ignored",
           [](Description&, const JsonCursor& cursor, Place&) { static_cast<void>(cursor.Text()); },
           [](const Description&, const Place&) { return std::nullopt; }},
          {"recording", &Description::recording, Named(kRecordings),
           "ignored; `orvane record` writes `plain`, or `redacted` if it replaced what tells about people"},
          {"disks", &Description::disks, Disks(), ""},
          {"volumes", &Description::volumes, Volumes(), ""},
          {"dosDevices", &Description::dos_devices, DosDevices(),
           "in addition to the names of disks and volumes, or with other targets"},
          Row<Description>("dosNames", &Description::dos_names,
                           ListOf<std::vector<std::wstring>>("list of text", Text()),
                           "what QueryDosDeviceW lists, in this order")
              .Otherwise("the names of `\\GLOBAL??`"),
          Row<Description>("directories", &Description::directories, Directories(), "").Otherwise("derived"),
          {"currentDrive", &Description::current_drive, DriveRoot(),
           "the drive root for paths without a volume; Windows is assumed to be installed there"},
          {"firmware", &Description::firmware, Object("[firmware](#firmware)", FirmwareTable()),
           Derived{"derived", UsualFirmware}, ""},
          {"registry", &Description::registry, Registry(), Derived{"the usual start options", UsualRegistry},
           ""},
          {"missing", &Description::missing, ListOf<std::set<std::string>>("list of valid text", Utf8()),
           "functions that kernel32 and ntdll do not export"},
          {"enumeratorRefusal", &Description::enumerator_refusal, Number(),
           "the HRESULT with which Next and Skip of a WMI enumerator fail until its own security is set; 0: "
           "they do "
           "not"},
          {"xmlComponent", &Description::xml_component, Flag(),
           "false: the XML component is not registered; creating its document fails with "
           "REGDB_E_CLASSNOTREG"},
          WmiRow()},
         ErrorRows<Description>(CallScope::kMachine)});
    return table;
}

}  // namespace machine::rows
