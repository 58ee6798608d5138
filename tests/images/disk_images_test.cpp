// Reads disks partitioned by standard tools through the library, and compares them with what sfdisk reports
// for the same image.

#include "common/disk/disk_drive_manager_factory.h"
#include "common/platform/guid.h"
#include "machine/simulation/simulation.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>

namespace {

using nlohmann::json;

constexpr std::int64_t kSectorBytes = 512;

std::filesystem::path Folder() {
    return ORVANE_IMAGES_DIR;
}

// sfdisk's JSON of the image's table.
json TableOf(const std::string& name) {
    std::ifstream file(Folder() / (name + ".json"));
    return json::parse(file).at("partitiontable");
}

std::string Narrow(const std::wstring& text) {
    return {text.begin(), text.end()};
}

std::string Braced(const std::string& guid) {
    return "{" + guid + "}";
}

struct Entry {
    std::int64_t offset = 0;
    std::int64_t length = 0;
    std::string type;

    auto operator<=>(const Entry&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Entry& entry) {
    return out << entry.offset << '+' << entry.length << " type " << entry.type;
}

bool IsExtended(const json& partition) {
    const std::string type = partition.at("type");
    return type == "5" || type == "f";
}

Entry EntryOf(const json& partition) {
    return {partition.at("start").get<std::int64_t>() * kSectorBytes,
            partition.at("size").get<std::int64_t>() * kSectorBytes, partition.at("type").get<std::string>()};
}

std::string Hexadecimal(unsigned value) {
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "%x", value);
    return text.data();
}

// A machine with the image as its only disk, and the library's disk object on it.
class ImagedDisk {
public:
    explicit ImagedDisk(const std::string& name)
        : simulation_(machine::ParseDescription(
              R"({"disks": [{"index": 0, "image": ")" + name + R"(.img"}]})", name + ".test", Folder())),
          disk_(bmr_common::DiskDriveManagerFactory().CreateAndInitialize(0)) {}

    const bmr_common::DiskDriveManager& operator*() const { return *disk_; }
    const bmr_common::DiskDriveManager* operator->() const { return disk_.get(); }
    const DRIVE_LAYOUT_INFORMATION_EX& layout() const { return *disk_->GetPartitionLayoutExPtr(); }

private:
    machine::Simulation simulation_;
    bmr_common::DiskDriveManagerPtr disk_;
};

class MbrImage : public testing::TestWithParam<const char*> {};

TEST_P(MbrImage, Layout_HasWhatSfdiskSays) {
    const json table = TableOf(GetParam());
    const ImagedDisk disk(GetParam());
    ASSERT_EQ(disk->GetPartitionStyle(), bmr_common::kStyleMBR);
    EXPECT_EQ(
        disk->geometry().disk_size(),
        static_cast<std::int64_t>(std::filesystem::file_size(Folder() / (GetParam() + std::string(".img")))));
    EXPECT_EQ(disk.layout().Mbr.Signature, std::stoul(table.at("id").get<std::string>(), nullptr, 16));

    std::vector<Entry> expected;
    std::vector<Entry> containers;
    std::vector<std::int64_t> bootable;
    for (const json& partition : table.at("partitions")) {
        (IsExtended(partition) ? containers : expected).push_back(EntryOf(partition));
        if (partition.value("bootable", false)) {
            bootable.push_back(EntryOf(partition).offset);
        }
    }
    std::vector<Entry> found;
    std::vector<Entry> found_containers;
    std::vector<std::int64_t> found_bootable;
    for (DWORD i = 0; i < disk.layout().PartitionCount; ++i) {
        const PARTITION_INFORMATION_EX& partition = disk.layout().PartitionEntry[i];
        const Entry entry{partition.StartingOffset.QuadPart, partition.PartitionLength.QuadPart,
                          Hexadecimal(partition.Mbr.PartitionType)};
        if (partition.PartitionNumber != 0) {
            found.push_back(entry);
        } else if (i < 4 && partition.Mbr.PartitionType != 0) {
            found_containers.push_back(entry);
        }
        if (partition.Mbr.BootIndicator != 0) {
            found_bootable.push_back(entry.offset);
        }
    }
    EXPECT_EQ(found, expected);
    EXPECT_EQ(found_containers, containers);
    EXPECT_EQ(found_bootable, bootable);
    for (const Entry& entry : expected) {
        EXPECT_TRUE(disk->HasPartitionAtOffset(entry.offset)) << entry;
    }
}

INSTANTIATE_TEST_SUITE_P(Tools, MbrImage, testing::Values("mbr-four-primaries", "mbr-logicals"));

struct GptCase {
    const char* name;
    unsigned partitions;
};

std::ostream& operator<<(std::ostream& out, const GptCase& test_case) {
    return out << test_case.name;
}

class GptImage : public testing::TestWithParam<GptCase> {};

TEST_P(GptImage, Layout_HasWhatSfdiskSays) {
    const json table = TableOf(GetParam().name);
    const ImagedDisk disk(GetParam().name);
    ASSERT_EQ(disk->GetPartitionStyle(), bmr_common::kStyleGPT);
    EXPECT_EQ(Narrow(GuidText(disk->geometry().disk_id())), Braced(table.at("id")));
    EXPECT_EQ(Narrow(GuidText(disk.layout().Gpt.DiskId)), Braced(table.at("id")));
    ASSERT_EQ(table.at("partitions").size(), GetParam().partitions);
    ASSERT_EQ(disk.layout().PartitionCount, GetParam().partitions);
    for (DWORD i = 0; i < disk.layout().PartitionCount; ++i) {
        const PARTITION_INFORMATION_EX& partition = disk.layout().PartitionEntry[i];
        const json& expected = table.at("partitions").at(i);
        const Entry entry{partition.StartingOffset.QuadPart, partition.PartitionLength.QuadPart,
                          Narrow(GuidText(partition.Gpt.PartitionType))};
        Entry expected_entry = EntryOf(expected);
        expected_entry.type = Braced(expected_entry.type);
        EXPECT_EQ(entry, expected_entry) << i;
        EXPECT_EQ(Narrow(GuidText(partition.Gpt.PartitionId)), Braced(expected.at("uuid"))) << i;
        EXPECT_EQ(Narrow(partition.Gpt.Name), expected.at("name").get<std::string>()) << i;
        const std::map<std::string, std::uint64_t> attributes = {
            {"", 0}, {"RequiredPartition", 1}, {"GUID:63", 1ULL << 63}};
        EXPECT_EQ(partition.Gpt.Attributes, attributes.at(expected.value("attrs", ""))) << i;
    }
}

INSTANTIATE_TEST_SUITE_P(Tools, GptImage,
                         testing::Values(GptCase{"gpt-1", 1}, GptCase{"gpt-12", 12}, GptCase{"gpt-128", 128},
                                         GptCase{"gpt-damaged-primary", 3}));

}  // namespace
