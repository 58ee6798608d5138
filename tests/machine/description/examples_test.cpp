#include "machine/description/partition_table.h"
#include "machine/description/text.h"
#include "machine/description/wmi_defaults.h"
#include "machine/test_machine.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace machine_test {
namespace {

std::vector<std::filesystem::path> ExampleFolders() {
    std::vector<std::filesystem::path> folders;
    for (const auto& entry : std::filesystem::directory_iterator(ORVANE_SOURCE_DIR "/examples/machines")) {
        if (entry.is_directory()) {
            folders.push_back(entry.path());
        }
    }
    return folders;
}

bool IsUsed(const machine::Partition& partition) {
    return partition.number != 0;
}

bool IsDynamic(const machine::Disk& disk) {
    static const GUID ldm_data = *machine::ParseGuid("{af9b60a0-1431-4f62-bc68-3311714a69ad}");
    return std::any_of(disk.partitions.begin(), disk.partitions.end(),
                       [](const machine::Partition& partition) {
                           return partition.mbr_type == 0x42 || IsEqualGUID(partition.gpt_type, ldm_data);
                       });
}

const machine::Disk* FindDisk(const machine::Description& description, std::uint32_t index) {
    for (const machine::Disk& disk : description.disks) {
        if (disk.index == index) {
            return &disk;
        }
    }
    return nullptr;
}

// A disk or volume of which a condition below does not hold on the real machine either.
struct Exception {
    std::string test;
    std::wstring object;  // the index of a disk, or the device of a volume
};

// The lines of exceptions.txt: the condition, the object, and in words the reason.
std::vector<Exception> ExceptionsOf(const std::filesystem::path& folder) {
    std::vector<Exception> exceptions;
    std::ifstream file(folder / "exceptions.txt");
    for (std::string line; std::getline(file, line);) {
        std::istringstream words(line);
        std::string test;
        std::string object;
        std::string reason;
        words >> test >> object >> reason;
        EXPECT_FALSE(reason.empty()) << folder << ": no reason: " << line;
        exceptions.push_back({test, machine::Widen(object)});
    }
    return exceptions;
}

// Conditions that every real machine fulfils, but for the exceptions.
class Example : public testing::TestWithParam<std::filesystem::path> {
protected:
    bool Excepted(const std::wstring& object) const {
        const std::string test = testing::UnitTest::GetInstance()->current_test_info()->name();
        return std::any_of(exceptions_.begin(), exceptions_.end(), [&](const Exception& row) {
            return test.starts_with(row.test + '/') && object == row.object;
        });
    }
    bool Excepted(const machine::Disk& disk) const { return Excepted(std::to_wstring(disk.index)); }
    bool Excepted(const machine::Volume& volume) const { return Excepted(volume.device); }

    const machine::Description description_ = machine::LoadDescription(GetParam());
    const std::vector<Exception> exceptions_ = ExceptionsOf(GetParam());
};

TEST_P(Example, Partitions_LieInsideTheDiskOnSectorBounds) {
    for (const machine::Disk& disk : description_.disks) {
        EXPECT_EQ(disk.size % disk.bytes_per_sector, 0u);
        EXPECT_TRUE(disk.cylinders != 0 || Excepted(disk));
        for (const machine::Partition& partition : disk.partitions) {
            EXPECT_EQ(partition.offset % disk.bytes_per_sector, 0u);
            EXPECT_EQ(partition.length % disk.bytes_per_sector, 0u);
            EXPECT_LE(partition.offset + partition.length, disk.size);
            if (disk.style == PARTITION_STYLE_GPT) {
                EXPECT_GE(partition.offset, disk.starting_usable_offset);
                EXPECT_LE(partition.offset + partition.length,
                          disk.starting_usable_offset + disk.usable_length);
            }
        }
    }
}

TEST_P(Example, Partitions_DoNotOverlap) {
    for (const machine::Disk& disk : description_.disks) {
        std::vector<machine::Partition> used;
        std::copy_if(disk.partitions.begin(), disk.partitions.end(), std::back_inserter(used), IsUsed);
        std::sort(used.begin(), used.end(),
                  [](const auto& left, const auto& right) { return left.offset < right.offset; });
        for (std::size_t i = 1; i < used.size(); ++i) {
            EXPECT_LE(used[i - 1].offset + used[i - 1].length, used[i].offset);
        }
    }
}

TEST_P(Example, LogicalPartitions_LieBehindTheirRecordInTheContainer) {
    for (const machine::Disk& disk : description_.disks) {
        const auto container =
            std::find_if(disk.partitions.begin(), disk.partitions.end(),
                         [](const auto& partition) { return machine::IsContainerType(partition.mbr_type); });
        for (std::size_t group = 4; group < disk.partitions.size() && disk.style == PARTITION_STYLE_MBR;
             group += 4) {
            ASSERT_NE(container, disk.partitions.end());
            const machine::Partition& logical = disk.partitions[group];
            EXPECT_GT(logical.offset, container->offset);
            EXPECT_LE(logical.offset + logical.length, container->offset + container->length);
            EXPECT_GT(logical.hidden_sectors, 0u);
        }
    }
}

TEST_P(Example, Identifiers_AreUnique) {
    std::set<std::string> ids;
    for (const machine::Disk& disk : description_.disks) {
        if (disk.style == PARTITION_STYLE_RAW || disk.blank) {
            continue;  // without a table, there is no id
        }
        EXPECT_TRUE(ids.insert(disk.style == PARTITION_STYLE_GPT ? machine::GuidText(disk.disk_id)
                                                                 : std::to_string(disk.signature))
                        .second ||
                    Excepted(disk));
        for (const machine::Partition& partition : disk.partitions) {
            if (partition.style == PARTITION_STYLE_GPT) {
                EXPECT_TRUE(ids.insert(machine::GuidText(partition.id)).second);
            }
        }
    }
    std::set<std::uint32_t> serials;
    for (const machine::Volume& volume : description_.volumes) {
        if (volume.serial != 0) {
            EXPECT_TRUE(serials.insert(volume.serial).second || Excepted(volume));
        }
    }
}

TEST_P(Example, Volumes_LieOnOnePartitionOrOnDynamicDisks) {
    for (const machine::Volume& volume : description_.volumes) {
        if (Excepted(volume)) {
            continue;
        }
        if (!volume.extents) {
            EXPECT_NE(volume.drive_type, std::uint32_t{DRIVE_FIXED});
            continue;
        }
        std::uint64_t length = 0;
        for (const machine::Extent& extent : *volume.extents) {
            const machine::Disk* disk = FindDisk(description_, extent.disk);
            ASSERT_NE(disk, nullptr);
            EXPECT_LE(extent.offset + extent.length, disk->size);
            length += extent.length;
            const auto partition =
                std::find_if(disk->partitions.begin(), disk->partitions.end(), [&](const auto& own) {
                    return own.number != 0 && own.offset == extent.offset && own.length == extent.length;
                });
            EXPECT_TRUE(partition != disk->partitions.end() || IsDynamic(*disk));
        }
        EXPECT_EQ(volume.length, length);
    }
}

TEST_P(Example, ExtentsOfVolumes_DoNotOverlap) {
    std::vector<machine::Extent> extents;
    for (const machine::Volume& volume : description_.volumes) {
        if (Excepted(volume)) {
            continue;
        }
        const auto own = volume.extents.value_or(std::vector<machine::Extent>{});
        extents.insert(extents.end(), own.begin(), own.end());
    }
    std::sort(extents.begin(), extents.end(), [](const auto& left, const auto& right) {
        return std::pair(left.disk, left.offset) < std::pair(right.disk, right.offset);
    });
    for (std::size_t i = 1; i < extents.size(); ++i) {
        if (extents[i - 1].disk == extents[i].disk) {
            EXPECT_LE(extents[i - 1].offset + extents[i - 1].length, extents[i].offset);
        }
    }
}

TEST_P(Example, Space_FitsTheVolume) {
    for (const machine::Volume& volume : description_.volumes) {
        const std::uint64_t cluster = std::uint64_t{volume.sectors_per_cluster} * volume.bytes_per_sector;
        EXPECT_LE(volume.total_clusters * cluster, volume.length);
        EXPECT_LE(volume.free_clusters, volume.total_clusters);
        EXPECT_EQ(volume.total_bytes, volume.total_clusters * cluster);
        EXPECT_EQ(volume.free_bytes, volume.free_clusters * cluster);
        EXPECT_EQ(volume.sectors_per_cluster == 0, volume.file_system.empty());
    }
}

TEST_P(Example, SystemDevice_IsTheVolumeOfTheCurrentDrive) {
    const auto& system = description_.wmi.at(machine::WmiClassKey(L"Win32_OperatingSystem")).instances.at(0);
    const auto volume =
        std::find_if(description_.volumes.begin(), description_.volumes.end(), [&](const auto& own) {
            return std::count(own.mount_points.begin(), own.mount_points.end(), description_.current_drive) !=
                   0;
        });
    ASSERT_NE(volume, description_.volumes.end());
    EXPECT_EQ(machine::FindProperty(system, L"SystemDevice")->value.text, volume->device);
}

TEST_P(Example, EveryVolumeOnOnePartition_KnowsItsPartition) {
    for (const machine::Volume& volume : description_.volumes) {
        if (volume.extents && volume.extents->size() == 1 && !Excepted(volume) &&
            !IsDynamic(*FindDisk(description_, volume.extents->front().disk))) {
            ASSERT_TRUE(volume.partition.has_value());
            EXPECT_EQ(volume.partition->length, volume.length);
        }
    }
}

TEST_P(Example, Exceptions_NameWhatIsThere) {
    for (const Exception& row : exceptions_) {
        const bool disk =
            std::any_of(description_.disks.begin(), description_.disks.end(),
                        [&](const auto& own) { return std::to_wstring(own.index) == row.object; });
        const bool volume = std::any_of(description_.volumes.begin(), description_.volumes.end(),
                                        [&](const auto& own) { return own.device == row.object; });
        EXPECT_TRUE(disk || volume) << row.test;
    }
}

INSTANTIATE_TEST_SUITE_P(Machines, Example, testing::ValuesIn(ExampleFolders()),
                         [](const testing::TestParamInfo<std::filesystem::path>& example) {
                             std::string name = example.param.filename().string();
                             std::replace(name.begin(), name.end(), '-', '_');
                             return name;
                         });

// The JSON blocks of the README are whole machines, and must load like the files.
TEST(Examples, Readme_ShowsMachinesThatLoad) {
    std::ifstream stream(ORVANE_SOURCE_DIR "/examples/machines/README.md", std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    std::size_t blocks = 0;
    const std::string fence = "```";
    for (std::size_t start = text.find("```json"); start != std::string::npos;
         start = text.find("```json", start)) {
        start = text.find('\n', start);
        const std::size_t end = text.find(fence, start);
        EXPECT_NO_THROW(Parse(text.substr(start, end - start)));
        start = end + fence.size();
        ++blocks;
    }
    EXPECT_EQ(blocks, 2u);
}

}  // namespace
}  // namespace machine_test
