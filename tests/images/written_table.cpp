#include "images/written_table.h"

#include "common/disk/disk_drive_manager_factory.h"
#include "common/platform/guid.h"
#include "support/text.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <objbase.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <map>
#include <stdexcept>

namespace written {
namespace {

using nlohmann::json;

const std::map<std::uint64_t, std::string> kAttributeTexts = {{0, ""},
                                                              {1, "RequiredPartition"},
                                                              {1ULL << 63, "GUID:63"},
                                                              {1ULL << 63 | 1, "RequiredPartition GUID:63"}};

std::string Plain(const GUID& guid) {
    const std::string braced = support::Utf8(GuidText(guid));
    return braced.substr(1, braced.size() - 2);
}

std::string Hexadecimal(const char* format, unsigned value) {
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), format, value);
    return text.data();
}

std::string NameOf(const PARTITION_INFORMATION_EX& entry) {
    std::wstring name(std::begin(entry.Gpt.Name), std::end(entry.Gpt.Name));
    name.resize(std::min(name.find(L'\0'), name.size()));
    return support::Utf8(name);
}

Partition GptPartition(const PARTITION_INFORMATION_EX& entry) {
    Partition partition;
    partition.number = entry.PartitionNumber;
    partition.type = Plain(entry.Gpt.PartitionType);
    partition.uuid = Plain(entry.Gpt.PartitionId);
    partition.name = NameOf(entry);
    partition.attributes = kAttributeTexts.at(entry.Gpt.Attributes);
    return partition;
}

// Groups of four entries follow the four primary entries; the first of each group is a logical partition.
// Tools number the logical partitions from 5.
Partition MbrPartition(const PARTITION_INFORMATION_EX& entry, unsigned position) {
    Partition partition;
    partition.number = position < 4 ? position + 1 : position / 4 + 4;
    partition.type = Hexadecimal("%x", entry.Mbr.PartitionType);
    partition.bootable = entry.Mbr.BootIndicator != 0;
    return partition;
}

bool IsMbrPartition(const PARTITION_INFORMATION_EX& entry, unsigned position) {
    return entry.Mbr.PartitionType != 0 && (position < 4 || position % 4 == 0);
}

Table TableOf(const DRIVE_LAYOUT_INFORMATION_EX& layout) {
    const bool gpt = layout.PartitionStyle == PARTITION_STYLE_GPT;
    Table table;
    table.label = gpt ? "gpt" : "dos";
    table.id = gpt ? Plain(layout.Gpt.DiskId) : Hexadecimal("0x%08x", layout.Mbr.Signature);
    if (gpt) {
        table.first_usable = layout.Gpt.StartingUsableOffset.QuadPart / kSector;
        table.last_usable = table.first_usable + layout.Gpt.UsableLength.QuadPart / kSector - 1;
    }
    for (DWORD i = 0; i < layout.PartitionCount; ++i) {
        const PARTITION_INFORMATION_EX& entry = layout.PartitionEntry[i];
        if (!gpt && !IsMbrPartition(entry, i)) {
            continue;
        }
        Partition partition = gpt ? GptPartition(entry) : MbrPartition(entry, i);
        partition.start = entry.StartingOffset.QuadPart / kSector;
        partition.size = entry.PartitionLength.QuadPart / kSector;
        table.partitions.push_back(partition);
    }
    return table;
}

json JsonOf(const Partition& partition) {
    json object = {{"number", partition.number},
                   {"start", partition.start},
                   {"size", partition.size},
                   {"type", partition.type}};
    const std::pair<const char*, const std::string*> texts[] = {
        {"uuid", &partition.uuid}, {"name", &partition.name}, {"attrs", &partition.attributes}};
    for (const auto& [key, text] : texts) {
        if (!text->empty()) {
            object[key] = *text;
        }
    }
    if (partition.bootable) {
        object["bootable"] = true;
    }
    return object;
}

json JsonOf(const Table& table) {
    if (table.label.empty()) {
        return nullptr;
    }
    json object = {{"label", table.label}, {"id", table.id}, {"partitions", json::array()}};
    if (table.label == "gpt") {
        object["firstlba"] = table.first_usable;
        object["lastlba"] = table.last_usable;
    }
    for (const Partition& partition : table.partitions) {
        object["partitions"].push_back(JsonOf(partition));
    }
    return object;
}

machine::Description Describe(const std::string& disks, const std::string& name) {
    return machine::ParseDescription(R"({"disks": [)" + disks + "]}", name + ".test", ORVANE_IMAGES_DIR);
}

}  // namespace

const Partition kGptSystem = {1,
                              2048,
                              2048,
                              kSystem,
                              "AAAAAAAA-0000-4000-8000-000000000002",
                              "EFI system partition",
                              "RequiredPartition"};
const Partition kGptReserved = {2, 4096, 2048, kReserved, "AAAAAAAA-0000-4000-8000-000000000004"};
const Partition kGptLongName = {3,
                                8192,
                                4096,
                                kBasicData,
                                "AAAAAAAA-0000-4000-8000-000000000005",
                                "123456789012345678901234567890123456",
                                "RequiredPartition GUID:63"};
const Partition kGptUmlauts = {4,
                               16384,
                               4096,
                               kBasicData,
                               "AAAAAAAA-0000-4000-8000-000000000001",
                               "Gr\xC3\xBC\xC3\x9F"
                               "e",
                               "GUID:63"};

std::ostream& operator<<(std::ostream& out, const Partition& partition) {
    return out << JsonOf(partition).dump();
}

std::ostream& operator<<(std::ostream& out, const Table& table) {
    return out << JsonOf(table).dump(2);
}

Table GptTable(std::vector<Partition> partitions) {
    return {"gpt", kGptId, std::move(partitions)};
}

Partition Numbered(unsigned number, Partition partition) {
    partition.number = number;
    return partition;
}

GUID Guid(const std::string& text) {
    GUID guid{};
    if (IIDFromString(support::WideFromUtf8("{" + text + "}").c_str(), &guid) != S_OK) {
        throw std::invalid_argument("no GUID: " + text);
    }
    return guid;
}

std::filesystem::path ImagePath(const std::string& name) {
    return std::filesystem::path(ORVANE_IMAGES_DIR) / (name + ".img");
}

Table ReadBack(const std::string& name) {
    const machine::Simulation simulation(Describe(R"({"index": 0, "image": ")" + name + R"(.img"})", name));
    const auto disk = bmr_common::DiskDriveManagerFactory().CreateAndInitialize(0);
    if (disk->GetPartitionStyle() == bmr_common::kStyleRAW) {
        return {};
    }
    return TableOf(*disk->GetPartitionLayoutExPtr());
}

void ExpectWritten(const std::string& name, const Table& table) {
    const std::string image = "written-" + name;
    EXPECT_EQ(table, ReadBack(image));
    std::ofstream(std::filesystem::path(ORVANE_IMAGES_DIR) / (image + ".meant.json"))
        << JsonOf(table).dump(2) << '\n';
}

Machine::Machine(const std::string& source, const std::string& name, const std::string& more)
    : simulation_(Describe(R"({"index": 0, "image": ")" + source + R"(.img", "writeTo": "written-)" + name +
                               R"(.img"})" + more,
                           name)) {
    std::filesystem::remove(ImagePath("written-" + name));
}

Machine::~Machine() {
    EXPECT_EQ(0U, simulation_.open_handles());
    EXPECT_EQ(0U, simulation_.stale_handle_uses());
}

void Read(bmr_common::PartitionManager& manager) {
    UniqueFile drive;
    DWORD error = 0;
    ASSERT_TRUE(win::WinAPIWrapper::OpenPhysicalDrive(0, 0, &drive, error)) << error;
    manager.Initialize(drive);
    ASSERT_NE(nullptr, manager.layout());
}

IssuedGuids::IssuedGuids(std::vector<std::string> guids) : import_("CoCreateGuid", &IssuedGuids::Issue) {
    left_ = std::move(guids);
}

IssuedGuids::~IssuedGuids() {
    EXPECT_TRUE(left_.empty()) << left_.size() << " GUIDs were not asked for";
}

HRESULT WINAPI IssuedGuids::Issue(GUID* guid) {
    if (left_.empty()) {
        ADD_FAILURE() << "one GUID too many was asked for";
        return E_FAIL;
    }
    *guid = Guid(left_.front());
    left_.erase(left_.begin());
    return S_OK;
}

}  // namespace written
