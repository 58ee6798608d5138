#include "documents/report/disk_section.h"

#include "documents/report/disk_map.h"
#include "documents/report/page_template.h"
#include "documents/report/part_texts.h"
#include "documents/report/volume_section.h"
#include "documents/show/show.h"

#include <array>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace documents {

namespace {

const char* TableNameOf(Style style) {
    switch (style) {
        case Style::kMbr:
            return "MBR";
        case Style::kGpt:
            return "GPT";
        case Style::kRaw:
            return "none that Windows knows";
    }
    return "";
}

PageData FactsOf(const Disk& disk) {
    PageList facts;
    const auto add = [&](const char* name, const std::string& value) {
        PageData fact;
        fact["fact_name"] = name;
        fact["fact_value"] = value;
        facts.push_back(std::move(fact));
    };
    if (disk.size) {
        add("Bytes", std::to_string(*disk.size));
    }
    if (disk.style) {
        add("Partition table", TableNameOf(*disk.style));
    }
    if (disk.id) {
        add("Id", *disk.id);
    }
    if (disk.signature) {
        add("Signature", HexNumber(*disk.signature));
    }
    if (disk.dynamic) {
        add("Dynamic", *disk.dynamic ? "yes" : "no");
    }
    if (disk.interface_type) {
        add("Interface", *disk.interface_type);
    }
    if (disk.sector_size) {
        add("Bytes per sector", std::to_string(*disk.sector_size));
    }
    if (disk.geometry) {
        add("Geometry", std::to_string(disk.geometry->cylinders) + " cylinders, " +
                            std::to_string(disk.geometry->tracks_per_cylinder) + " tracks, " +
                            std::to_string(disk.geometry->sectors_per_track) + " sectors");
    }
    return facts;
}

// What the reader of the page would miss otherwise.
std::string NoteOf(const Disk& disk, bool has_parts) {
    if (!disk.size) {
        return "The disk could not be read when the document was made, or cannot be backed up.";
    }
    if (!disk.partitions && has_parts) {
        return "This format of the document leaves the partitions of the disk out; shown are the volumes on "
               "it.";
    }
    return disk.partitions ? "" : "The document does not say what is on the disk.";
}

void Fill(PageData& row, const DiskPart& part) {
    row["look"] = LookOf(part);
    row["part_title"] = TitleOf(part);
    const Partition* const partition = part.partition;
    if (part.extent) {
        row["part_label"] = TextOrNone(LabelOf(*part.extent->volume));
        row["part_marks"] = TextsOf(MarksOf(*part.extent->volume));
    } else {
        row["part_label"] = partition == nullptr ? PageData(false) : TextOrNone(partition->file_system);
        row["part_marks"] = PageData(false);
    }
    row["part_details"] = TextOrNone(DetailsOf(part));
    row["part_id"] = partition == nullptr ? PageData(false) : TextOrNone(partition->id);
    row["start"] = SizeText(part.place.start, false);
    row["start_bytes"] = std::to_string(part.place.start);
    row["size"] = SizeText(part.place.length, false);
    row["size_bytes"] = std::to_string(part.place.length);
}

class DiskTemplates {
public:
    void AppendTo(std::string& page, const Disk& disk, const std::vector<DiskPart>& parts) {
        std::string rows;
        PageData row;
        for (const DiskPart& part : parts) {
            Fill(row, part);
            part_.AppendTo(rows, row);
        }
        PageData data;
        data["disk_number"] = std::to_string(disk.number);
        data["disk_size"] = disk.size ? SizeText(*disk.size, false) : "of unknown size";
        data["disk_facts"] = FactsOf(disk);
        data["disk_note"] = TextOrNone(NoteOf(disk, !parts.empty()));
        data["maps"] = MapsOf(parts, piece_);
        data["has_parts"] = PageData(!parts.empty());
        data["parts"] = rows;
        disk_.AppendTo(page, data);
    }

private:
    PageTemplate disk_{kDiskTemplate};
    PageTemplate piece_{kPieceTemplate};
    PageTemplate part_{kPartTemplate};
};

}  // namespace

void AppendDisks(std::string& page, const Machine& machine, const MachineParts& parts) {
    DiskTemplates templates;
    for (const Disk& disk : machine.disks) {
        templates.AppendTo(page, disk, parts.Of(disk));
    }
}

}  // namespace documents
