#include "documents/report/summary.h"

#include "documents/report/part_texts.h"
#include "documents/show/show.h"

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace documents {

namespace {

std::string Joined(const std::vector<std::optional<std::string>>& texts) {
    std::string joined;
    for (const std::optional<std::string>& text : texts) {
        if (text && !text->empty()) {
            joined += (joined.empty() ? "" : ", ") + *text;
        }
    }
    return joined;
}

std::string Counted(std::uint64_t count, const char* one, const char* several) {
    return std::to_string(count) + ' ' + (count == 1 ? one : several);
}

class Summary {
public:
    // Leaves out what has no value.
    void Add(const char* name, std::vector<std::string> values) {
        std::erase(values, "");
        if (values.empty()) {
            return;
        }
        PageData row;
        row["summary_name"] = name;
        row["summary_values"] = TextsOf(values);
        rows_.push_back(std::move(row));
    }

    PageList Take() { return std::move(rows_); }

private:
    PageList rows_;
};

// "C: (disk 0, partition 2)".
std::string DescriptionOf(const Volume& volume, const MachineParts& parts) {
    std::string text = TitleOf(volume);
    if (!volume.extents || volume.extents->empty()) {
        return text;
    }
    const char* separator = " (";
    for (const Extent& extent : *volume.extents) {
        text += separator + parts.PlaceNameOf(extent);
        separator = "; ";
    }
    return text + ')';
}

std::vector<std::string> VolumesWith(const Machine& machine, const MachineParts& parts,
                                     std::optional<bool> Volume::*role) {
    std::vector<std::string> found;
    for (const Volume& volume : machine.volumes) {
        if ((volume.*role).value_or(false)) {
            found.push_back(DescriptionOf(volume, parts));
        }
    }
    if (found.empty()) {
        found.emplace_back("not in the document");
    }
    return found;
}

std::string StorageOf(const Machine& machine) {
    std::uint64_t bytes = 0;
    std::uint64_t unknown = 0;
    for (const Disk& disk : machine.disks) {
        bytes += disk.size.value_or(0);
        unknown += disk.size ? 0 : 1;
    }
    std::string text = Counted(machine.disks.size(), "disk", "disks") + " with " + SizeText(bytes, false);
    if (unknown > 0) {
        text += ", the size of " + std::to_string(unknown) + " unknown";
    }
    return text + "; " + Counted(machine.volumes.size(), "volume", "volumes");
}

std::string ProcessorsOf(const Machine& machine) {
    const auto count = NumberFact(machine, "ComputerSystem", "NumberOfProcessors");
    const auto speed = NumberFact(machine, "Processor", "MaxClockSpeed");
    std::string text = count && *count > 0
                           ? Counted(static_cast<std::uint64_t>(*count), "processor", "processors")
                           : std::string();
    if (!text.empty() && speed && *speed > 0) {
        text += ", " + std::to_string(*speed) + " MHz";
    }
    return text;
}

std::string MemoryOf(const Machine& machine) {
    const auto bytes = NumberFact(machine, "ComputerSystem", "TotalPhysicalMemory");
    return bytes && *bytes > 0 ? SizeText(static_cast<std::uint64_t>(*bytes), false) + " of memory"
                               : std::string();
}

std::string ValueOf(const Fact& fact) {
    const auto* const text = std::get_if<std::string>(&fact.value);
    return text != nullptr ? *text : std::to_string(std::get<std::int64_t>(fact.value));
}

PageData FactRow(const std::string& name, const std::string& value) {
    PageData row;
    row["fact_name"] = name;
    row["fact_value"] = value;
    return row;
}

}  // namespace

std::string ComputerOf(const Machine& machine) {
    return TextFact(machine, "OS", "CSName").value_or("A machine without a name");
}

std::string WindowsOf(const Machine& machine) {
    std::string text = Joined({TextFact(machine, "OS", "Name"), TextFact(machine, "OS", "CSDVersion")});
    const auto version = TextFact(machine, "OS", "Version");
    return version ? Joined({text, "version " + *version}) : text;
}

PageData SummaryOf(const Machine& machine, const MachineParts& parts, const std::string& document) {
    Summary summary;
    summary.Add("Windows is on", VolumesWith(machine, parts, &Volume::system));
    summary.Add("Starts from", VolumesWith(machine, parts, &Volume::boot));
    summary.Add("Storage", {StorageOf(machine)});
    summary.Add("Computer", {Joined({TextFact(machine, "ComputerSystem", "Manufacturer"),
                                     TextFact(machine, "ComputerSystem", "Model")}),
                             Joined({ProcessorsOf(machine), MemoryOf(machine)})});
    summary.Add("Domain", {TextFact(machine, "ComputerSystem", "Domain").value_or("")});
    summary.Add("Document", {document + ", format " + std::to_string(static_cast<int>(machine.format)),
                             machine.library_version.empty() ? "" : "library " + machine.library_version});
    return summary.Take();
}

PageData FactSectionsOf(const Machine& machine) {
    std::vector<std::pair<std::string, PageList>> sections;
    const auto rows_of = [&](const std::string& name) -> PageList& {
        for (auto& section : sections) {
            if (section.first == name) {
                return section.second;
            }
        }
        return sections.emplace_back(name, PageList()).second;
    };
    for (const Fact& fact : machine.facts) {
        rows_of(std::string(fact.section)).push_back(FactRow(std::string(fact.name), ValueOf(fact)));
    }
    for (const std::string& option : machine.startup_options) {
        rows_of("ComputerSystem").push_back(FactRow("SystemStartupOptions", option));
    }
    PageList data;
    for (auto& [name, rows] : sections) {
        PageData section;
        section["fact_section"] = name;
        section["fact_rows"] = rows;
        data.push_back(std::move(section));
    }
    return data;
}

}  // namespace documents
