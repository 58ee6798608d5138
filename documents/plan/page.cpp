#include "documents/plan/page.h"

#include "documents/plan/assumptions.h"
#include "documents/plan/gpt_names.h"
#include "documents/plan/script.h"
#include "documents/show/partition_types.h"
#include "documents/show/show.h"
#include "documents/text/utf8.h"

#include <algorithm>

namespace documents {

namespace {

std::string Row(const std::vector<std::string>& cells) {
    std::string text = "|";
    for (const std::string& cell : cells) {
        text += " " + MarkdownOf(cell) + " |";
    }
    return text + "\n";
}

std::string Heading(const std::vector<std::string>& cells) {
    std::string text = Row(cells) + "|";
    for (std::size_t cell = 0; cell < cells.size(); ++cell) {
        text += " --- |";
    }
    return text + "\n";
}

std::string BothSizes(std::uint64_t bytes) {
    return std::to_string(bytes) + " bytes (" + SizeText(bytes, false) + ")";
}

std::string NameOf(const Volume& volume) {
    return PlaceOf(volume).substr(std::string_view("volume ").size());
}

// The number of the entry that the place is inside of.
std::string EntryOf(const Table& table, const Range& place) {
    const auto found = std::find_if(table.entries.begin(), table.entries.end(), [&](const TableEntry& entry) {
        return entry.partition != nullptr && Contains(entry.place, place);
    });
    return found == table.entries.end() ? "none" : std::to_string(found->number);
}

class Page {
public:
    explicit Page(const Subject& subject) : subject_(subject) {}

    std::string Text(const std::vector<DiskPlan>& plans, const std::vector<Finding>& losses) {
        AddIntroduction();
        for (const DiskPlan& plan : plans) {
            AddDisk(plan);
        }
        AddLosses(losses);
        return std::move(text_);
    }

private:
    void AddIntroduction() {
        const Machine& machine = subject_.machine;
        text_ += "# Plan for " +
                 MarkdownOf(TextFact(machine, "OS", "CSName").value_or("a machine without a name")) + "\n\n";
        text_ +=
            "How the partition tables of this machine are made again, from a captured document of format " +
            std::to_string(static_cast<int>(machine.format)) +
            ". Nothing has been written to a disk, and nothing runs by itself. A script overwrites the table "
            "of "
            "the disk that it is given to.\n";
    }

    void AddDisk(const DiskPlan& plan) {
        const Disk& disk = *plan.disk;
        text_ += "\n## Disk " + std::to_string(disk.number) + "\n\n";
        AddFacts(plan);
        if (plan.obstacle) {
            text_ += "\nNo script: " + std::string(plan.obstacle->code) + ", " +
                     MarkdownOf(plan.obstacle->text) + "\n";
        } else {
            AddUse(plan);
            AddEntries(plan);
        }
        AddVolumes(plan);
        if (!plan.obstacle) {
            text_ += "\nNot in the document, and assumed:\n\n";
            for (const std::string& assumption : AssumptionsOf(disk, plan.table)) {
                text_ += "- " + assumption + "\n";
            }
        }
    }

    void AddFacts(const DiskPlan& plan) {
        const Disk& disk = *plan.disk;
        text_ += Heading({"", ""});
        text_ += Row({"Size", disk.size ? BothSizes(*disk.size) : "unknown"});
        text_ += Row({"Id", DiskIdText(disk)});
        text_ += Row({"Interface", disk.interface_type.value_or("unknown")});
        text_ += Row({"Sectors", std::to_string(SectorSizeOf(disk)) + " bytes"});
        text_ += Row({"Target", TextOf(plan.target)});
        if (disk.size && plan.target.size && *plan.target.size > *disk.size) {
            text_ +=
                Row({"Left over on the target", BothSizes(*plan.target.size - *disk.size) + " at its end"});
        } else if (disk.size && plan.target.size && *plan.target.size < *disk.size) {
            text_ += Row({"Less than the disk",
                          BothSizes(*disk.size - *plan.target.size) + " at its end, behind the partitions"});
        }
    }

    void AddUse(const DiskPlan& plan) {
        const std::string script = ScriptName(*plan.disk);
        const std::uint32_t sector = SectorSizeOf(*plan.disk);
        text_ += "\nScript: " + script + ". ";
        if (sector == 512) {
            text_ += "`sfdisk TARGET < " + script + "` makes the table.\n";
        } else {
            text_ += "`sfdisk TARGET < " + script + "` makes the table on a disk with sectors of " +
                     std::to_string(sector) + " bytes; on an image the command I of `fdisk -b " +
                     std::to_string(sector) + " TARGET` reads the script.\n";
        }
    }

    void AddEntries(const DiskPlan& plan) {
        const bool gpt = plan.disk->style == Style::kGpt;
        text_ += "\n" + (gpt ? Heading({"Entry", "Start", "Size", "Type", "Id", "Name", "Attributes"})
                             : Heading({"Entry", "Start", "Size", "Type", "Active", "Kind"}));
        for (const TableEntry& entry : plan.table.entries) {
            const Partition* const partition = entry.partition;
            std::vector<std::string> cells = {std::to_string(entry.number), std::to_string(entry.place.start),
                                              BothSizes(entry.place.length)};
            if (partition == nullptr) {
                cells.insert(cells.end(), {plan.table.extended_type == kUsualExtendedType ? "extended (0F)"
                                                                                          : "extended (05)",
                                           "no", "extended"});
            } else if (gpt) {
                const GptName name = GptNameOf(*partition);
                cells.insert(cells.end(), {TypeName(*partition), partition->id.value_or("unknown"),
                                           std::string(name.name), std::string(name.attributes)});
            } else {
                cells.insert(cells.end(),
                             {TypeName(*partition), partition->active == true ? "yes" : "no",
                              partition->kind == PartitionKind::kLogical ? "logical" : "primary"});
            }
            text_ += Row(cells);
        }
    }

    void AddVolumes(const DiskPlan& plan) {
        const std::vector<PlacedExtent>& extents = subject_.extents.On(plan.disk->number);
        if (extents.empty()) {
            return;
        }
        text_ += "\n" + Heading({"Volume", "File system", "Label", "Size", "Cluster", "Entry", "Belongs at",
                                 "Length there"});
        for (const PlacedExtent& placed : extents) {
            const Volume& volume = *placed.volume;
            text_ +=
                Row({NameOf(volume), volume.file_system.value_or("unknown"), volume.label.value_or("unknown"),
                     volume.size ? BothSizes(*volume.size) : "unknown",
                     volume.block_size ? std::to_string(*volume.block_size) : "unknown",
                     EntryOf(plan.table, placed.extent->place), std::to_string(placed.extent->place.start),
                     BothSizes(placed.extent->place.length)});
        }
    }

    void AddLosses(const std::vector<Finding>& losses) {
        text_ += "\n## What cannot be made again\n\n";
        for (const Finding& loss : losses) {
            text_ += "- " + std::string(loss.code) + " " + std::string(documents::NameOf(loss.severity)) +
                     ": " + MarkdownOf(loss.place + ": " + loss.text) + "\n";
        }
        text_ += "- The contents of the volumes: they come from the backup.\n";
    }

    const Subject& subject_;
    std::string text_;
};

}  // namespace

std::string PageOf(const Subject& subject, const std::vector<DiskPlan>& plans,
                   const std::vector<Finding>& losses) {
    return Page(subject).Text(plans, losses);
}

std::string MarkdownOf(std::string_view text) {
    constexpr std::string_view kSpecial = "\\`*_{}[]<>|#&~";
    std::string shown;
    for (const char character : Escaped(text)) {
        if (kSpecial.find(character) != std::string_view::npos) {
            shown += '\\';
        }
        shown += character;
    }
    return shown;
}

}  // namespace documents
