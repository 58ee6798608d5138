#include "machine/description/tables.h"
#include "machine/description/text.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <limits>
#include <string>
#include <utility>

namespace machine::rows {
namespace {

constexpr NamedNumber kFirmwareTypes[] = {{"unknown", 0}, {"bios", 1}, {"uefi", 2}};

constexpr NamedNumber kValueTypes[] = {
    {"REG_NONE", REG_NONE},     {"REG_SZ", REG_SZ},       {"REG_EXPAND_SZ", REG_EXPAND_SZ},
    {"REG_BINARY", REG_BINARY}, {"REG_DWORD", REG_DWORD}, {"REG_MULTI_SZ", REG_MULTI_SZ},
    {"REG_QWORD", REG_QWORD},
};

void AppendBytes(Bytes& bytes, const void* data, std::size_t length) {
    const auto* first = static_cast<const std::uint8_t*>(data);
    bytes.insert(bytes.end(), first, first + length);
}

void AppendText(Bytes& bytes, const std::wstring& text) {
    AppendBytes(bytes, text.c_str(), (text.size() + 1) * sizeof(wchar_t));
}

Bytes DataOf(const JsonCursor& value, std::uint32_t type) {
    Bytes data;
    switch (type) {
        case REG_SZ:
        case REG_EXPAND_SZ:
            AppendText(data, value.Text());
            break;
        case REG_MULTI_SZ:
            for (const JsonCursor& element : value.Elements()) {
                AppendText(data, element.Text());
            }
            AppendText(data, L"");
            break;
        case REG_DWORD: {
            const std::uint32_t number = value.Number32();
            AppendBytes(data, &number, sizeof(number));
            break;
        }
        case REG_QWORD: {
            const std::uint64_t number = value.Number();
            AppendBytes(data, &number, sizeof(number));
            break;
        }
        default:
            data = value.HexBytes();
            break;
    }
    return data;
}

Json HexBytes(const Bytes& bytes) {
    std::string text;
    for (const std::uint8_t byte : bytes) {
        std::array<char, 4> digits{};
        std::snprintf(digits.data(), digits.size(), text.empty() ? "%02x" : " %02x", byte);
        text += digits.data();
    }
    return text;
}

RegistryValue ReadValue(const JsonCursor& cursor, const Place& place) {
    RegistryValue value;
    if (!cursor.is_object() || cursor.is_utf16()) {
        value.type = cursor.is_array() ? REG_MULTI_SZ : cursor.is_text() ? REG_SZ : REG_DWORD;
        value.data = DataOf(cursor, value.type);
        return value;
    }
    const JsonObject object = cursor.Object();
    value.type = Named(kValueTypes).read(object.Require("type"), place);
    const auto bytes = object.Find("bytes");
    value.data = bytes ? bytes->HexBytes() : DataOf(object.Require("value"), value.type);
    object.RefuseOthers();
    return value;
}

// Text, numbers and lists as such, if that gives the same data; else the bytes.
Json WriteValue(const RegistryValue& value, const Place& place) {
    std::vector<std::wstring> texts = TerminatedTexts(WideText(value.data));
    Bytes same;
    for (const std::wstring& text : texts) {
        AppendText(same, text);
    }
    if (value.type == REG_SZ && texts.size() == 1 && same == value.data) {
        return Text().write(texts.front(), place);
    }
    if (value.type == REG_MULTI_SZ && !texts.empty() && texts.back().empty() && same == value.data) {
        texts.pop_back();
        return List("", Text()).write(texts, place);
    }
    if (value.type == REG_DWORD && value.data.size() == sizeof(std::uint32_t)) {
        std::uint32_t number = 0;
        std::memcpy(&number, value.data.data(), sizeof(number));
        return number;
    }
    return {{"type", Named(kValueTypes).write(value.type, place)}, {"bytes", HexBytes(value.data)}};
}

// A key is described by its values.
Kind<RegistryKey> KeyKind() {
    const Kind<RegistryValue> value = {"", ReadValue, WriteValue};
    const auto values = Map<RegistryValue>(
        "", &RegistryValue::name, [](const std::string&) -> const char* { return nullptr; }, value);
    return {"",
            [values](const JsonCursor& cursor, const Place& place) {
                return RegistryKey{{}, values.read(cursor, place)};
            },
            [values](const RegistryKey& key, const Place& place) { return values.write(key.values, place); }};
}

bool IsDerivedDirectory(const std::wstring& path) {
    return EqualNames(path, L"\\Device") || EqualNames(path, L"\\GLOBAL??");
}

// Directory listings store string lengths in bytes as 16-bit numbers.
Kind<std::wstring> EntryText() {
    return Checked<std::wstring>("text", Text(), [](const std::wstring& text) {
        return text.size() > std::numeric_limits<USHORT>::max() / sizeof(wchar_t) - 1 ? "is too long"
                                                                                      : nullptr;
    });
}

const Table<DirectoryEntry>& EntryTable() {
    static const Table<DirectoryEntry> table = {
        {"name", &DirectoryEntry::name, EntryText(), Required{}, ""},
        {"type", &DirectoryEntry::type, EntryText(),
         Derived{"`SymbolicLink` in `\\GLOBAL??`, else `Device`",
                 [](const DirectoryEntry&, const Place& place) {
                     return std::wstring(EqualNames(Widen(place.key), L"\\GLOBAL??") ? L"SymbolicLink"
                                                                                     : L"Device");
                 }},
         ""},
    };
    return table;
}

}  // namespace

const Table<Firmware>& FirmwareTable() {
    static const Table<Firmware> table = {
        {"type", &Firmware::type, Named(kFirmwareTypes),
         Derived{"`bios` if the machine has disks and none is GPT, else `uefi`",
                 [](const Firmware&, const Place& place) {
                     const auto& disks = place.machine->disks;
                     const bool gpt = std::any_of(disks.begin(), disks.end(), [](const Disk& disk) {
                         return disk.style == PARTITION_STYLE_GPT;
                     });
                     return gpt || disks.empty() ? 2U : 1U;
                 }},
         ""},
        {"variableLength", &Firmware::variable_length, Number(),
         "reading a firmware variable succeeds with this length; 0: it fails"},
        Row<Firmware>("variableError", &Firmware::variable_error, Number(), "the error it fails with")
            .Otherwise("1 for BIOS; otherwise 998 if the buffer is null, else 203"),
    };
    return table;
}

const Table<ObjectDirectory>& DirectoryTable() {
    static const Table<ObjectDirectory> table =
        Joined({{Row<ObjectDirectory>(
                     "entries", &ObjectDirectory::entries,
                     List("list of names, or of objects with `name` and `type` (default `SymbolicLink` in "
                          "`\\GLOBAL??`, else `Device`)",
                          Object("", EntryTable(), Form::kShort)),
                     "")
                     .Otherwise("derived; for other paths the directory does not exist"),
                 Row<ObjectDirectory>(
                     "otherNames", &ObjectDirectory::other_names, Number(),
                     "how many names of other drivers to add to the derived entries of `\\Device` or "
                     "`\\GLOBAL??`. Every third is longer than 100 characters, and all entries are listed in "
                     "the order of a hash. In `\\GLOBAL??` they are DOS devices too")
                     .Unless([](const ObjectDirectory& directory, const Place& place) {
                         return directory.entries || !IsDerivedDirectory(Widen(place.key))
                                    ? "needs the derived entries of \\Device or \\GLOBAL??"
                                    : "";
                     })},
                ErrorRows<ObjectDirectory>(CallScope::kDirectory)});
    return table;
}

Kind<std::vector<DosDevice>> DosDevices() {
    static const Table<DosDevice> table = Joined({{{"target", &DosDevice::target, Text(), Required{}, ""}},
                                                  ErrorRows<DosDevice>(CallScope::kDosDevice)});
    return Map<DosDevice>(
        "object: DOS device name to target, or to an object with `target` and `errors`", &DosDevice::name,
        [](const std::string& name) {
            return name.empty() || name.find('\\') != std::string::npos
                       ? "must have a device name without a backslash"
                       : nullptr;
        },
        Object("", table, Form::kShort));
}

Kind<std::vector<ObjectDirectory>> Directories() {
    return Map<ObjectDirectory>(
        "object: path to [object directory](#object-directories)", &ObjectDirectory::path,
        [](const std::string& path) {
            return path.empty() || path.front() != '\\' ? "must have a path that begins with a backslash"
                                                        : nullptr;
        },
        Object("", DirectoryTable()));
}

Kind<std::vector<RegistryKey>> Registry() {
    return Map<RegistryKey>(
        "object: key to [values](#registry)", &RegistryKey::path,
        [](const std::string& path) {
            return path.empty() || path.front() == '\\' || path.back() == '\\'
                       ? "must have a path below HKEY_LOCAL_MACHINE without a backslash at its ends"
                       : nullptr;
        },
        KeyKind());
}

}  // namespace machine::rows
