#include "documents/plan/script.h"

#include "documents/plan/gpt_names.h"
#include "documents/text/utf8.h"
#include "documents/verify/rules.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace documents {

namespace {

std::string Hex(std::uint32_t number) {
    std::array<char, 8> digits{};
    return {digits.data(), std::to_chars(digits.data(), digits.data() + digits.size(), number, 16).ptr};
}

std::string WithoutBraces(const std::string& guid) {
    return guid.size() > 2 ? guid.substr(1, guid.size() - 2) : guid;
}

std::string Introduction(const Machine& machine, const Disk& disk, const Target& target) {
    std::string text = "# The partition table of disk " + std::to_string(disk.number) + " of " +
                       Escaped(TextFact(machine, "OS", "CSName").value_or("a machine without a name")) +
                       ", from a captured document.\n";
    text += "# Disk: number " + std::to_string(disk.number) + ", size " +
            (disk.size ? std::to_string(*disk.size) + " bytes" : "unknown") + ", id " + DiskIdText(disk) +
            ", interface " + Escaped(disk.interface_type.value_or("unknown")) + ".\n";
    text += "# Target: " + Escaped(TextOf(target)) + ".\n";
    return text +
           "# Nothing runs by itself. plan.md tells how this script is given to sfdisk, which overwrites the "
           "target.\n";
}

std::string Header(const Disk& disk, const Table& table) {
    const std::uint32_t sector = SectorSizeOf(disk);
    const bool gpt = disk.style == Style::kGpt;
    std::string text = gpt ? "label: gpt\n" : "label: dos\n";
    if (gpt && disk.id) {
        text += "label-id: " + WithoutBraces(*disk.id) + "\n";
    } else if (!gpt && disk.signature) {
        text += "label-id: 0x" + Hex(*disk.signature) + "\n";
    }
    text += "unit: sectors\n";
    if (gpt) {
        text += "first-lba: " + std::to_string(ReserveOf(table, sector).first) + "\n";
        text += "table-length: " + std::to_string(table.length) + "\n";
    }
    return text + "sector-size: " + std::to_string(sector) + "\n";
}

// "7", "C12A7328-..."
std::string TypeOf(const Table& table, const TableEntry& entry) {
    if (entry.partition != nullptr && entry.partition->gpt_type) {
        return WithoutBraces(*entry.partition->gpt_type);
    }
    return Hex(entry.partition == nullptr ? table.extended_type : entry.partition->mbr_type.value_or(0));
}

std::string Line(const Disk& disk, const Table& table, const TableEntry& entry) {
    const std::uint32_t sector = SectorSizeOf(disk);
    std::string text = "disk" + std::to_string(disk.number) + "p" + std::to_string(entry.number) +
                       " : start=" + std::to_string(entry.place.start / sector) +
                       ", size=" + std::to_string(entry.place.length / sector) +
                       ", type=" + TypeOf(table, entry);
    if (entry.partition == nullptr) {
        return text + "\n";
    }
    const Partition& partition = *entry.partition;
    if (partition.id) {
        text += ", uuid=" + WithoutBraces(*partition.id);
    }
    if (const GptName name = GptNameOf(partition); !name.name.empty()) {
        text += ", name=\"" + std::string(name.name) + "\"";
        if (!name.attributes.empty()) {
            text += ", attrs=\"" + std::string(name.attributes) + "\"";
        }
    }
    if (partition.active == true) {
        text += ", bootable";
    }
    return text + "\n";
}

}  // namespace

std::string ScriptName(const Disk& disk) {
    return "disk" + std::to_string(disk.number) + ".sfdisk";
}

std::string DiskIdText(const Disk& disk) {
    if (disk.id) {
        return *disk.id;
    }
    return disk.signature ? SignatureText(*disk.signature) : "unknown";
}

std::string ScriptOf(const Machine& machine, const Disk& disk, const Table& table, const Target& target) {
    std::string text = Introduction(machine, disk, target) + Header(disk, table) + "\n";
    // The extended partition must be there before the logical ones.
    for (const TableEntry& entry : table.entries) {
        text += Line(disk, table, entry);
    }
    return text;
}

}  // namespace documents
