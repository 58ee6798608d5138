#include "documents/show/show.h"
#include "documents/verify/rules.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>

namespace documents {

namespace {

using Json = nlohmann::ordered_json;

// Adds a member, unless there is no value.
template <class Value>
void Add(Json& object, const char* name, const std::optional<Value>& value) {
    if (value) {
        object[name] = *value;
    }
}

constexpr std::array<const char*, 3> kStyles = {"MBR", "GPT", "RAW"};

Json ObjectOf(const Partition& partition) {
    Json object = {{"start", partition.place.start},
                   {"size", partition.place.length},
                   {"kind", partition.kind == PartitionKind::kLogical ? "logical" : "primary"}};
    Add(object, "number", partition.row_number);
    Add(object, "systemNumber", partition.system_number);
    Add(object, "type", partition.mbr_type);
    Add(object, "typeGuid", partition.gpt_type);
    Add(object, "id", partition.id);
    Add(object, "active", partition.active);
    Add(object, "drive", partition.drive);
    Add(object, "fileSystem", partition.file_system);
    Add(object, "volume", partition.volume);
    return object;
}

Json ObjectOf(const Gap& gap) {
    return {{"start", gap.place.start}, {"size", gap.place.length}, {"inExtended", gap.in_extended}};
}

Json ObjectOf(const Extent& extent) {
    Json object = {{"disk", extent.disk}, {"start", extent.place.start}, {"size", extent.place.length}};
    Add(object, "systemNumber", extent.partition_number);
    return object;
}

Json ObjectOf(const Disk& disk);
Json ObjectOf(const Volume& volume);
Json ObjectOf(const Finding& finding);

template <class Rows>
Json ArrayOf(const Rows& rows) {
    Json array = Json::array();
    for (const auto& row : rows) {
        array.push_back(ObjectOf(row));
    }
    return array;
}

template <class Rows>
void AddRows(Json& object, const char* name, const std::optional<Rows>& rows) {
    if (rows) {
        object[name] = ArrayOf(*rows);
    }
}

Json ObjectOf(const Disk& disk) {
    Json object = {{"number", disk.number}};
    Add(object, "size", disk.size);
    Add(object, "sectorSize", disk.sector_size);
    if (disk.style) {
        object["style"] = kStyles.at(static_cast<std::size_t>(*disk.style));
    }
    Add(object, "id", disk.id);
    Add(object, "signature", disk.signature);
    Add(object, "interface", disk.interface_type);
    Add(object, "dynamic", disk.dynamic);
    if (disk.geometry) {
        object["geometry"] = {{"cylinders", disk.geometry->cylinders},
                              {"tracksPerCylinder", disk.geometry->tracks_per_cylinder},
                              {"sectorsPerTrack", disk.geometry->sectors_per_track},
                              {"mediaType", disk.geometry->media_type}};
    }
    if (disk.extended) {
        object["extended"] = {{"start", disk.extended->start}, {"size", disk.extended->length}};
    }
    AddRows(object, "partitions", disk.partitions);
    AddRows(object, "gaps", disk.gaps);
    return object;
}

Json ObjectOf(const Volume& volume) {
    Json object = Json::object();
    Add(object, "path", volume.path);
    Add(object, "device", volume.device);
    Add(object, "letter", volume.letter);
    Add(object, "mountPoints", volume.mount_points);
    Add(object, "size", volume.size);
    Add(object, "fileSystem", volume.file_system);
    Add(object, "label", volume.label);
    Add(object, "serial", volume.serial);
    Add(object, "flags", volume.flags);
    Add(object, "blockSize", volume.block_size);
    Add(object, "used", volume.used);
    Add(object, "free", volume.free);
    Add(object, "system", volume.system);
    Add(object, "boot", volume.boot);
    Add(object, "dynamic", volume.dynamic);
    AddRows(object, "extents", volume.extents);
    return object;
}

// "CSName" becomes "csName", "m_strBootFolder" becomes "bootFolder", "product_type" becomes "productType".
std::string NameOf(std::string_view element) {
    for (const std::string_view prefix : {"m_str", "m_"}) {
        if (element.starts_with(prefix)) {
            element.remove_prefix(prefix.size());
        }
    }
    const auto is_upper = [](char c) { return c >= 'A' && c <= 'Z'; };
    std::string name;
    bool lower = true;  // in the capitals at the beginning, of which the last begins the next word
    for (std::size_t at = 0; at < element.size(); ++at) {
        const char c = element[at];
        const bool next_is_lower = at + 1 < element.size() && !is_upper(element[at + 1]);
        lower = lower && is_upper(c) && !(at > 0 && next_is_lower);
        if (c == '_') {
            continue;
        }
        const bool begins_word = at > 0 && element[at - 1] == '_';
        name += lower ? static_cast<char>(c - 'A' + 'a') : begins_word ? static_cast<char>(c - 'a' + 'A') : c;
    }
    return name;
}

std::string SectionName(std::string_view section) {
    return section == "OS" ? "operatingSystem" : section == "BootConfig" ? "start" : NameOf(section);
}

Json SystemOf(const Machine& machine) {
    Json system = Json::object();
    for (const Fact& fact : machine.facts) {
        Json& section = system[SectionName(fact.section)];
        std::visit([&](const auto& value) { section[NameOf(fact.name)] = value; }, fact.value);
    }
    system["computerSystem"]["startupOptions"] = machine.startup_options;
    return system;
}

Json ObjectOf(const Finding& finding) {
    return {{"code", finding.code},
            {"severity", documents::NameOf(finding.severity)},
            {"place", finding.place},
            {"text", finding.text}};
}

}  // namespace

Json JsonOf(const std::vector<Finding>& findings) {
    return ArrayOf(findings);
}

Json JsonOf(const std::string& file, const Machine& machine) {
    return {{"file", file},
            {"format", static_cast<int>(machine.format)},
            {"libraryVersion", machine.library_version},
            {"system", SystemOf(machine)},
            {"disks", ArrayOf(machine.disks)},
            {"placeholders", machine.placeholders},
            {"volumes", ArrayOf(machine.volumes)}};
}

Json JsonOf(const std::string& file, const std::string& place, const std::string& reason) {
    return {{"file", file}, {"error", {{"place", place}, {"reason", reason}}}};
}

}  // namespace documents
