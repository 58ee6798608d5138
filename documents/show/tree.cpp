#include "documents/model/lookup.h"
#include "documents/show/partition_types.h"
#include "documents/show/show.h"
#include "documents/show/styled_line.h"
#include "documents/verify/rules.h"

#include <algorithm>
#include <array>
#include <variant>

namespace documents {

namespace {

constexpr std::string_view kBranch = "\xE2\x94\x9C\xE2\x94\x80 ";  // ├─
constexpr std::string_view kLast = "\xE2\x94\x94\xE2\x94\x80 ";    // └─
constexpr std::string_view kTrunk = "\xE2\x94\x82  ";              // │
constexpr std::string_view kNothing = "   ";

// What lies on a disk, by offset: a partition, a gap, or a volume's extent in none of them.
struct Item {
    std::uint64_t start = 0;
    std::variant<const Partition*, const Gap*, PlacedExtent> what;
    std::vector<PlacedExtent> volumes;
};

class Tree {
public:
    Tree(const Machine& machine, const TreeStyle& style)
        : machine_(machine), style_(style), extents_(machine) {}

    std::string Text() {
        AddMachine();
        for (const Disk& disk : machine_.disks) {
            AddDisk(disk);
        }
        AddPlaceholders();
        AddOtherVolumes();
        return std::move(text_);
    }

private:
    std::string Size(std::uint64_t bytes) const { return SizeText(bytes, style_.bytes); }

    void Put(const StyledLine& line) { text_ += line.Text(style_.colour, style_.width); }

    void AddMachine() {
        StyledLine line;
        line.AddItem(TextFact(machine_, "OS", "CSName").value_or("A machine without a name"), Colour::kBold);
        for (const auto& [section, name] : {std::pair("OS", "Name"), std::pair("OS", "Version")}) {
            if (const auto text = TextFact(machine_, section, name)) {
                line.AddItem(*text);
            }
        }
        const auto maker = TextFact(machine_, "ComputerSystem", "Manufacturer");
        const auto model = TextFact(machine_, "ComputerSystem", "Model");
        if (maker || model) {
            line.AddItem(maker.value_or("") + (maker && model ? " " : "") + model.value_or(""));
        }
        if (const auto memory = NumberFact(machine_, "ComputerSystem", "TotalPhysicalMemory");
            memory && *memory > 0) {
            line.AddItem(Size(static_cast<std::uint64_t>(*memory)) + " of memory");
        }
        line.AddItem("format " + std::to_string(static_cast<int>(machine_.format)), Colour::kDim);
        Put(line);
    }

    void AddDisk(const Disk& disk) {
        constexpr std::array<const char*, 3> kStyles = {"MBR", "GPT", "no known partition table"};
        StyledLine line;
        line.AddItem("Disk " + std::to_string(disk.number), Colour::kBold);
        line.AddItem(disk.size ? Size(*disk.size) : "of unknown size");
        if (disk.style) {
            line.AddItem(kStyles.at(static_cast<std::size_t>(*disk.style)));
        }
        if (disk.dynamic == true) {
            line.AddItem("dynamic");
        }
        if (disk.interface_type) {
            line.AddItem(*disk.interface_type);
        }
        if (disk.sector_size && *disk.sector_size != 512) {
            line.AddItem("sectors of " + std::to_string(*disk.sector_size) + " bytes");
        }
        if (disk.id) {
            line.AddItem("id " + *disk.id, Colour::kDim);
        } else if (disk.signature) {
            line.AddItem("signature " + SignatureText(*disk.signature), Colour::kDim);
        }
        Put(line);
        AddItems(ItemsOf(disk), !disk.partitions && disk.size && disk.style != Style::kRaw);
    }

    std::vector<Item> ItemsOf(const Disk& disk) const {
        std::vector<Item> items;
        for (const Partition* const partition : PartitionsByOffset(disk)) {
            items.push_back({partition->place.start, partition, {}});
        }
        const auto by_offset = [](const Item& one, const Item& other) { return one.start < other.start; };
        const std::size_t partitions = items.size();
        for (const PlacedExtent& placed : extents_.On(disk.number)) {
            // The partition that it begins in.
            const auto behind =
                std::upper_bound(items.begin(), items.begin() + static_cast<std::ptrdiff_t>(partitions),
                                 placed.extent->place.start,
                                 [](std::uint64_t start, const Item& item) { return start < item.start; });
            if (behind != items.begin()) {
                Item& item = *(behind - 1);
                const Range& place = std::get<const Partition*>(item.what)->place;
                if (placed.extent->place.start < EndOf(place)) {
                    item.volumes.push_back(placed);
                    continue;
                }
            }
            items.push_back({placed.extent->place.start, placed, {}});
        }
        if (disk.gaps) {
            for (const Gap& gap : *disk.gaps) {
                items.push_back({gap.place.start, &gap, {}});
            }
        }
        std::stable_sort(items.begin(), items.end(), by_offset);
        return items;
    }

    // `without_table`: the document leaves out the partitions.
    void AddItems(const std::vector<Item>& items, bool without_table) {
        if (without_table) {
            Put(StyledLine()
                    .Add(items.empty() ? kLast : kBranch)
                    .Add("its partitions are not in the document", Colour::kDim));
        }
        for (std::size_t index = 0; index < items.size(); ++index) {
            const bool last = index + 1 == items.size();
            AddItem(items[index], last ? kLast : kBranch, last ? kNothing : kTrunk);
        }
    }

    void AddItem(const Item& item, std::string_view branch, std::string_view trunk) {
        StyledLine line;
        line.Add(branch);
        if (const auto* const gap = std::get_if<const Gap*>(&item.what)) {
            line.AddItem(Size((*gap)->place.length), Colour::kDim);
            line.AddItem((*gap)->in_extended ? "free in the extended partition" : "unallocated",
                         Colour::kDim);
        } else if (const auto* const placed = std::get_if<PlacedExtent>(&item.what)) {
            DescribeVolume(line, *placed->volume);
            DescribeExtent(line, *placed);
        } else {
            DescribePartition(line, *std::get<const Partition*>(item.what));
        }
        Put(line);
        for (std::size_t index = 0; index < item.volumes.size(); ++index) {
            StyledLine volume;
            volume.Add(trunk).Add(index + 1 == item.volumes.size() ? kLast : kBranch);
            DescribeVolume(volume, *item.volumes[index].volume);
            DescribeExtent(volume, item.volumes[index]);
            Put(volume);
        }
    }

    void DescribePartition(StyledLine& line, const Partition& partition) const {
        line.AddItem(Size(partition.place.length));
        line.AddItem(TypeName(partition));
        if (partition.kind == PartitionKind::kLogical) {
            line.AddItem("logical");
        }
        if (partition.active == true) {
            line.AddItem("active");
        }
    }

    void DescribeVolume(StyledLine& line, const Volume& volume) const {
        line.AddItem(volume.letter && !volume.letter->empty() ? *volume.letter : "no letter", Colour::kBold);
        if (volume.label && !volume.label->empty()) {
            line.AddItem("\"" + *volume.label + "\"");
        }
        line.AddItem(volume.file_system.value_or("no known file system"));
        if (volume.size) {
            line.AddItem(Size(*volume.size));
        }
        if (volume.used) {
            line.AddItem(Size(*volume.used) + " used");
        }
        if (volume.boot == true) {
            line.AddItem("boot volume", Colour::kGreen);
        }
        if (volume.system == true) {
            line.AddItem("system volume", Colour::kGreen);
        }
        for (const std::string& path : volume.mount_points.value_or(std::vector<std::string>())) {
            if (path != volume.letter) {
                line.AddItem("at " + path);
            }
        }
    }

    // Which part of a volume that has several.
    void DescribeExtent(StyledLine& line, const PlacedExtent& placed) const {
        const std::size_t count = placed.volume->extents->size();
        if (count > 1) {
            line.AddItem("part " + std::to_string(placed.index + 1) + " of " + std::to_string(count) +
                         " with " + Size(placed.extent->place.length));
        }
    }

    void AddPlaceholders() {
        if (machine_.format == Format::kOne && !machine_.placeholders.empty()) {
            Put(StyledLine().Add(std::to_string(machine_.placeholders.size()) +
                                     " more disk numbers: no disk, or one that format 1 leaves out",
                                 Colour::kDim));
        }
    }

    bool IsShown(const Volume& volume) const {
        return volume.extents &&
               std::any_of(volume.extents->begin(), volume.extents->end(),
                           [&](const Extent& extent) { return FindDisk(machine_, extent.disk) != nullptr; });
    }

    void AddOtherVolumes() {
        std::vector<const Volume*> others;
        for (const Volume& volume : machine_.volumes) {
            if (!IsShown(volume)) {
                others.push_back(&volume);
            }
        }
        if (others.empty()) {
            return;
        }
        Put(StyledLine().Add("Volumes on none of these disks", Colour::kBold));
        for (const Volume* const volume : others) {
            StyledLine line;
            line.Add(volume == others.back() ? kLast : kBranch);
            DescribeVolume(line, *volume);
            if (volume->device) {
                line.AddItem(*volume->device, Colour::kDim);
            }
            Put(line);
        }
    }

    const Machine& machine_;
    const TreeStyle& style_;
    ExtentsByDisk extents_;
    std::string text_;
};

}  // namespace

std::string SizeText(std::uint64_t bytes, bool in_bytes) {
    constexpr std::array<const char*, 6> kUnits = {"KiB", "MiB", "GiB", "TiB", "PiB", "EiB"};
    constexpr std::uint64_t kStep = 1024;
    if (in_bytes || bytes < kStep) {
        return std::to_string(bytes) + " bytes";
    }
    std::size_t unit = 0;
    std::uint64_t divisor = kStep;
    while (unit + 1 < kUnits.size() && bytes / divisor >= kStep) {
        divisor *= kStep;
        ++unit;
    }
    // To one decimal.
    const std::uint64_t all_tenths = bytes / divisor * 10 + (bytes % divisor * 10 + divisor / 2) / divisor;
    const std::uint64_t tenths = all_tenths % 10;
    const std::string whole = std::to_string(all_tenths / 10);
    return whole + (tenths == 0 ? "" : "." + std::to_string(tenths)) + " " + kUnits.at(unit);
}

std::string TreeOf(const Machine& machine, const TreeStyle& style) {
    return Tree(machine, style).Text();
}

}  // namespace documents
