#include "machine/description/description.h"

#include "machine/description/json_cursor.h"
#include "machine/description/parsing.h"
#include "machine/description/text.h"
#include "machine/description/wmi_defaults.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <system_error>
#include <utility>
#include <vector>

namespace machine {
namespace {

// Detects duplicate keys. nlohmann's parser silently keeps the last one, but in a hand-written file a
// duplicate is a mistake.
class DuplicateKeys {
public:
    bool operator()(int /*depth*/, nlohmann::json::parse_event_t event, nlohmann::json& parsed) {
        if (event == nlohmann::json::parse_event_t::object_start) {
            keys_.emplace_back();
        } else if (event == nlohmann::json::parse_event_t::object_end) {
            keys_.pop_back();
        } else if (event == nlohmann::json::parse_event_t::key) {
            const auto key = parsed.get<std::string>();
            if (!keys_.back().insert(key).second && first_.empty()) {
                first_ = key;
            }
        }
        return true;
    }

    const std::string& first() const noexcept { return first_; }

private:
    std::vector<std::set<std::string>> keys_;
    std::string first_;
};

nlohmann::json ParsedJson(const std::string& text, const std::string& file) {
    DuplicateKeys duplicates;
    nlohmann::json document;
    try {
        document = nlohmann::json::parse(text, std::ref(duplicates));
    } catch (const nlohmann::json::exception& error) {
        throw DescriptionError(file, "", error.what());
    }
    if (!duplicates.first().empty()) {
        throw DescriptionError(file, "", "the key \"" + duplicates.first() + "\" stands twice in one object");
    }
    return document;
}

// A machine that has disks, but no GPT disk, is assumed to have BIOS firmware.
Firmware DerivedFirmware(const std::vector<Disk>& disks) {
    Firmware firmware;
    const bool gpt = std::any_of(disks.begin(), disks.end(),
                                 [](const Disk& disk) { return disk.style == PARTITION_STYLE_GPT; });
    firmware.type = gpt || disks.empty() ? 2 : 1;
    return firmware;
}

std::vector<RegistryKey> UsualRegistry() {
    const std::wstring options = L" NOEXECUTE=OPTIN";
    RegistryValue value;
    value.name = L"SystemStartOptions";
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(options.c_str());
    value.data.assign(bytes, bytes + (options.size() + 1) * sizeof(wchar_t));
    return {{L"SYSTEM\\CurrentControlSet\\Control", {value}}};
}

Description Parsed(const JsonCursor& root, const std::filesystem::path& directory) {
    JsonObject object = root.Object();
    Description description;
    description.name = object.Has("name") ? object.Require("name").Utf8() : "";
    object.Text("comment", L"");
    if (const auto disks = object.Find("disks")) {
        description.disks = parsing::Disks(*disks, directory);
    }
    if (const auto volumes = object.Find("volumes")) {
        description.volumes = parsing::Volumes(*volumes, description.disks);
    }
    if (const auto devices = object.Find("dosDevices")) {
        description.dos_devices = parsing::DosDevices(*devices);
    }
    if (const auto directories = object.Find("directories")) {
        description.directories = parsing::Directories(*directories);
    }
    if (const auto drive = object.Find("currentDrive")) {
        description.current_drive = drive->Text();
        if (!DriveNumber(description.current_drive) || description.current_drive.size() != 3) {
            drive->Refuse("must be a drive root like \"C:\\\\\"");
        }
    }
    description.firmware = DerivedFirmware(description.disks);
    if (const auto firmware = object.Find("firmware")) {
        description.firmware = parsing::FirmwareOf(*firmware, description.firmware);
    }
    const auto registry = object.Find("registry");
    description.registry = registry ? parsing::Registry(*registry) : UsualRegistry();
    if (const auto missing = object.Find("missing")) {
        description.missing = parsing::Missing(*missing);
    }
    description.enumerator_refusal = object.Number32("enumeratorRefusal", 0);
    description.xml_component = object.Bool("xmlComponent", true);
    description.errors = parsing::ErrorsOf(object, CallScope::kMachine);
    AddDerivedWmi(description);
    if (const auto wmi = object.Find("wmi")) {
        parsing::Wmi(*wmi, description);
    }
    object.RefuseOthers();
    return description;
}

}  // namespace

std::optional<std::uint32_t> CallErrors::Find(const std::string& call) const {
    auto found = codes.find(call);
    if (found == codes.end()) {
        const std::size_t colon = call.find(':');
        const bool kind = colon != std::string::npos && call.compare(colon, 2, "::") != 0;
        found = kind ? codes.find(call.substr(0, colon)) : codes.end();
    }
    return found == codes.end() ? std::nullopt : std::optional(found->second);
}

DescriptionError::DescriptionError(std::string file, std::string path, std::string reason)
    : std::runtime_error(file + ": " + (path.empty() ? "/" : path) + ": " + reason),
      file_(std::move(file)),
      path_(std::move(path)),
      reason_(std::move(reason)) {}

Description LoadDescription(const std::filesystem::path& machine) {
    std::error_code ignored;
    const std::filesystem::path file =
        std::filesystem::is_directory(machine, ignored) ? machine / kFileInFolder : machine;
    const std::string name = Narrow(file.wstring());
    std::ifstream stream(file, std::ios::binary);
    if (!stream) {
        throw DescriptionError(name, "", "cannot be opened");
    }
    const std::string text{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    if (stream.bad()) {
        throw DescriptionError(name, "", "cannot be read");
    }
    return ParseDescription(text, name, file.parent_path());
}

Description ParseDescription(const std::string& json, const std::string& name,
                             const std::filesystem::path& directory) {
    const nlohmann::json document = ParsedJson(json, name);
    return Parsed(JsonCursor(document, name), directory);
}

}  // namespace machine
