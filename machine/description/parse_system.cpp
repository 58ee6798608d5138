#include "machine/description/parsing.h"
#include "machine/description/text.h"

#include <limits>
#include <string>
#include <utility>

namespace machine::parsing {
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

RegistryValue Value(const std::string& name, const JsonCursor& cursor) {
    RegistryValue value;
    value.name = Widen(name);
    if (!cursor.is_object() || cursor.is_utf16()) {
        value.type = cursor.is_array() ? REG_MULTI_SZ : cursor.is_text() ? REG_SZ : REG_DWORD;
        value.data = DataOf(cursor, value.type);
        return value;
    }
    JsonObject object = cursor.Object();
    value.type = NamedOrNumber(object.Require("type"), kValueTypes);
    const auto bytes = object.Find("bytes");
    value.data = bytes ? bytes->HexBytes() : DataOf(object.Require("value"), value.type);
    object.RefuseOthers();
    return value;
}

std::vector<DirectoryEntry> Entries(const JsonCursor& cursor, const std::wstring& directory) {
    const std::wstring usual = EqualNames(directory, L"\\GLOBAL??") ? L"SymbolicLink" : L"Device";
    std::vector<DirectoryEntry> entries;
    for (const JsonCursor& element : cursor.Elements()) {
        if (element.is_text()) {
            entries.push_back({element.Text(), usual});
            continue;
        }
        JsonObject object = element.Object();
        entries.push_back({object.Require("name").Text(), object.Text("type", usual)});
        object.RefuseOthers();
    }
    // Directory listings store string lengths in bytes as 16-bit numbers.
    constexpr std::size_t kLongest = std::numeric_limits<USHORT>::max() / sizeof(wchar_t) - 1;
    for (const DirectoryEntry& entry : entries) {
        if (entry.name.size() > kLongest || entry.type.size() > kLongest) {
            cursor.Refuse("has a name that is too long");
        }
    }
    return entries;
}

bool IsDerivedDirectory(const std::wstring& path) {
    return EqualNames(path, L"\\Device") || EqualNames(path, L"\\GLOBAL??");
}

// The code of a described error, or {"blocks": true} for a call that never returns.
std::uint32_t CodeOf(const JsonCursor& cursor, const std::string& call) {
    if (!cursor.is_object()) {
        const std::uint32_t code = cursor.Number32();
        if (code == 0) {
            cursor.Refuse("must not be 0, which is success");
        }
        return code;
    }
    JsonObject object = cursor.Object();
    if (!object.Require("blocks").Bool()) {
        object.Require("blocks").Refuse("must be true");
    }
    object.RefuseOthers();
    return BlockedCode(call);
}

}  // namespace

std::vector<DosDevice> DosDevices(const JsonCursor& cursor) {
    std::vector<DosDevice> devices;
    for (const auto& [name, target] : cursor.Object().Others()) {
        if (name.empty() || name.find('\\') != std::string::npos) {
            target.Refuse("must have a device name without a backslash");
        }
        if (target.is_text()) {
            devices.push_back({Widen(name), target.Text()});
            continue;
        }
        JsonObject object = target.Object();
        devices.push_back(
            {Widen(name), object.Require("target").Text(), ErrorsOf(object, CallScope::kDosDevice)});
        object.RefuseOthers();
    }
    return devices;
}

std::vector<ObjectDirectory> Directories(const JsonCursor& cursor) {
    std::vector<ObjectDirectory> directories;
    for (const auto& [path, value] : cursor.Object().Others()) {
        if (path.empty() || path.front() != '\\') {
            value.Refuse("must have a path that begins with a backslash");
        }
        JsonObject object = value.Object();
        ObjectDirectory directory;
        directory.path = Widen(path);
        if (const auto entries = object.Find("entries")) {
            directory.entries = Entries(*entries, directory.path);
        }
        directory.other_names = object.Number32("otherNames", 0);
        if (directory.other_names != 0 && (directory.entries || !IsDerivedDirectory(directory.path))) {
            object.Require("otherNames").Refuse("needs the derived entries of \\Device or \\GLOBAL??");
        }
        directory.errors = ErrorsOf(object, CallScope::kDirectory);
        object.RefuseOthers();
        directories.push_back(std::move(directory));
    }
    return directories;
}

std::vector<RegistryKey> Registry(const JsonCursor& cursor) {
    std::vector<RegistryKey> keys;
    for (const auto& [path, values] : cursor.Object().Others()) {
        RegistryKey key;
        key.path = Widen(path);
        if (key.path.empty() || key.path.front() == L'\\' || key.path.back() == L'\\') {
            values.Refuse("must have a path below HKEY_LOCAL_MACHINE without a backslash at its ends");
        }
        for (const auto& [name, value] : values.Object().Others()) {
            key.values.push_back(Value(name, value));
        }
        keys.push_back(std::move(key));
    }
    return keys;
}

Firmware FirmwareOf(const JsonCursor& cursor, Firmware otherwise) {
    Firmware firmware = otherwise;
    JsonObject object = cursor.Object();
    if (const auto type = object.Find("type")) {
        firmware.type = NamedOrNumber(*type, kFirmwareTypes);
    }
    firmware.variable_length = object.Number32("variableLength", 0);
    if (const auto error = object.Find("variableError")) {
        firmware.variable_error = error->Number32();
    }
    object.RefuseOthers();
    return firmware;
}

std::set<std::string> Missing(const JsonCursor& cursor) {
    std::set<std::string> functions;
    for (const JsonCursor& element : cursor.Elements()) {
        functions.insert(element.Utf8());
    }
    return functions;
}

CallErrors ErrorsOf(JsonObject& object, CallScope scope) {
    CallErrors errors;
    if (const auto cursor = object.Find("errors")) {
        for (const auto& [call, code] : cursor->Object().Others()) {
            if (!IsCallOf(scope, call)) {
                code.Refuse("is no call that can fail here");
            }
            errors.codes[call] = CodeOf(code, call);
        }
    }
    const std::vector<std::string> blocking = BlockingCalls(scope);
    if (!blocking.empty() && object.Bool("blocks", false)) {
        for (const std::string& call : blocking) {
            errors.codes.emplace(call, BlockedCode(call));
        }
    }
    return errors;
}

}  // namespace machine::parsing
