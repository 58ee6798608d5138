#include "documents/plan/assumptions.h"

#include "documents/model/lookup.h"
#include "documents/verify/rules.h"

#include <algorithm>

namespace documents {

namespace {

void AddMbr(const Disk& disk, const Table& table, std::vector<std::string>& texts) {
    if (!disk.signature) {
        texts.emplace_back(
            "Signature unknown: no volume lies on the disk. The script has none; the tool makes one.");
    }
    if (!table.told_slots) {
        texts.emplace_back("Empty slots: the partitions take the first slots, in the order of the document.");
    }
    const bool extended = std::any_of(table.entries.begin(), table.entries.end(),
                                      [](const TableEntry& entry) { return entry.partition == nullptr; });
    if (!extended) {
        return;
    }
    if (table.guessed_extended) {
        texts.emplace_back(
            "Place of the extended partition: from the end of the partition before the first logical one to "
            "the end of the last logical one.");
    } else if (!disk.extended_entry) {
        texts.emplace_back("Place of the extended partition: it follows from the rows in it.");
    }
    if (!disk.extended_entry) {
        texts.emplace_back("Type of the extended partition: 0F.");
    }
    if (table.sorted_logicals) {
        texts.emplace_back(
            "Order of the logical partitions: that of their offsets. The tools cannot make that of the "
            "document.");
    }
    texts.emplace_back(
        "Places of the logical records: where the tool puts them, before each logical partition.");
}

void AddGpt(const Disk& disk, const Table& table, std::vector<std::string>& texts) {
    if (!disk.id) {
        texts.emplace_back("Id of the disk: unknown. The script has none; the tool makes one.");
    }
    std::vector<std::uint32_t> without_id;
    for (const TableEntry& entry : table.entries) {
        if (!entry.partition->id) {
            without_id.push_back(entry.number);
        }
    }
    if (!without_id.empty()) {
        texts.push_back("Ids of these entries: unknown. The script has none; the tool makes them. " +
                        ListOf(without_id) + ".");
    }
    texts.emplace_back(
        "GPT names and attributes: those that Windows gives the type; none for types of which they are not "
        "known.");
    const std::size_t others = table.entries.size() - table.told_numbers;
    texts.push_back("Entry order: " + std::to_string(table.told_numbers) +
                    " entries have the number that a volume tells, " + std::to_string(others) +
                    " the next free one in the order of their offsets. Unused entries come last.");
    const GptReserve reserve = ReserveOf(table, SectorSizeOf(disk));
    texts.push_back("Room of the table: " + std::to_string(table.length) + " entries, so that the first " +
                    std::to_string(reserve.first) + " and the last " + std::to_string(reserve.behind) +
                    " sectors are its own.");
}

}  // namespace

std::vector<std::string> AssumptionsOf(const Disk& disk, const Table& table) {
    std::vector<std::string> texts;
    if (!disk.sector_size) {
        texts.emplace_back("Sectors of 512 bytes.");
    }
    if (disk.style == Style::kGpt) {
        AddGpt(disk, table, texts);
    } else {
        AddMbr(disk, table, texts);
    }
    return texts;
}

}  // namespace documents
