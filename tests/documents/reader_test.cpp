#include "documents/reader/reader.h"

#include "documents/case_documents.h"
#include "documents/model/lookup.h"
#include "documents/reader/gaps.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <string>

namespace {

using case_documents::Read;
using case_documents::Refusal;
using case_documents::Replaced;
using case_documents::TextOf;
using documents::Machine;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Optional;
using testing::SizeIs;

// The values of machine.json of the laptop.
TEST(ReadDocument, FormatTwo_HasTheDisk) {
    const Machine machine = Read(TextOf("bios-laptop", 2));
    EXPECT_EQ(machine.format, documents::Format::kTwo);
    ASSERT_THAT(machine.disks, SizeIs(1));
    const documents::Disk& disk = machine.disks[0];
    EXPECT_THAT(disk.size, Optional(320072933376U));
    EXPECT_THAT(disk.sector_size, Optional(512U));
    EXPECT_EQ(disk.style, documents::Style::kMbr);
    EXPECT_THAT(disk.signature, Optional(2050773480U));
    EXPECT_EQ(disk.id, std::nullopt);
    EXPECT_THAT(disk.interface_type, Optional(std::string("IDE")));
    ASSERT_THAT(disk.partitions, Optional(SizeIs(4)));
    const documents::Partition& logical = disk.partitions->at(2);
    EXPECT_EQ(logical.place, (documents::Range{157812785152U, 104857600000U}));
    EXPECT_EQ(logical.kind, documents::PartitionKind::kLogical);
    EXPECT_EQ(logical.mbr_type, 7);
    EXPECT_EQ(logical.gpt_type, std::nullopt);
    ASSERT_THAT(disk.gaps, Optional(SizeIs(3)));
    EXPECT_TRUE(disk.gaps->at(0).in_extended);
    EXPECT_EQ(disk.gaps->at(2).place, (documents::Range{320071532544U, 1400832U}));
}

TEST(ReadDocument, FormatTwo_HasTheVolumes) {
    const Machine machine = Read(TextOf("bios-laptop", 2));
    ASSERT_THAT(machine.volumes, SizeIs(4));
    const documents::Volume& first = machine.volumes[0];
    EXPECT_THAT(first.letter, Optional(std::string()));
    EXPECT_EQ(first.mount_points, std::nullopt);
    EXPECT_THAT(first.label, Optional(std::string("System Reserved")));
    EXPECT_THAT(first.boot, Optional(true));
    EXPECT_THAT(first.system, Optional(false));
    EXPECT_THAT(first.used, Optional(32501760U));
    EXPECT_EQ(first.free, std::nullopt);
    ASSERT_THAT(first.extents, Optional(SizeIs(1)));
    EXPECT_EQ(first.extents->at(0).place, (documents::Range{1048576U, 524288000U}));
    // No label, and known to have none.
    EXPECT_THAT(machine.volumes[1].label, Optional(std::string()));
    EXPECT_THAT(machine.volumes[1].system, Optional(true));
}

TEST(ReadDocument, FormatOne_HasNoStyleOfItsOwn) {
    const std::string text = TextOf("bios-laptop", 1);
    EXPECT_EQ(Read(text).disks.at(0).style, documents::Style::kMbr);
    EXPECT_THAT(Read(text).disks.at(0).partitions->at(1).drive, Optional(std::string("C:\\")));
}

TEST(ReadDocument, Placeholder_IsNoDisk) {
    const Machine machine = Read(TextOf("server-many-disks", 2));
    EXPECT_THAT(machine.placeholders, ElementsAre(3, 4, 5, 6, 7, 8, 9));
    std::vector<std::uint32_t> numbers;
    for (const documents::Disk& disk : machine.disks) {
        numbers.push_back(disk.number);
    }
    EXPECT_THAT(numbers, ElementsAre(0, 1, 2, 10));
}

TEST(ReadDocument, SizeZero_IsADiskThatCouldNotBeRead) {
    const Machine machine =
        Read(Replaced(TextOf("bios-laptop", 2), "<size>320072933376</size>", "<size>0</size>"));
    EXPECT_EQ(machine.disks.at(0).size, std::nullopt);
    EXPECT_EQ(machine.disks.at(0).style, std::nullopt);
    EXPECT_EQ(machine.disks.at(0).partitions, std::nullopt);
}

TEST(ReadDocument, SignatureZeroAndZeroGuid_AreAbsent) {
    std::string text = TextOf("uefi-workstation", 2);
    text = Replaced(text, "{6F1F4A52-9C0D-4E1B-8A37-52D1B0C4E9A1}", "{00000000-0000-0000-0000-000000000000}");
    const Machine machine = Read(text);
    EXPECT_EQ(machine.disks.at(0).id, std::nullopt);
    EXPECT_EQ(machine.disks.at(0).signature, std::nullopt);
    EXPECT_EQ(machine.volumes.at(0).extents->at(0).signature, std::nullopt);
}

TEST(ReadDocument, GuidOfFormatThree_IsNotRead) {
    for (const documents::Disk& disk : Read(TextOf("uefi-workstation", 3)).disks) {
        EXPECT_EQ(disk.style, documents::Style::kGpt);
        EXPECT_EQ(disk.id, std::nullopt);
        EXPECT_EQ(disk.partitions, std::nullopt);
        EXPECT_EQ(disk.gaps, std::nullopt);
    }
}

TEST(ReadDocument, FormatThree_HasTheExtendedPartition) {
    const documents::Disk disk = Read(TextOf("bios-laptop", 3)).disks.at(0);
    ASSERT_TRUE(disk.extended);
    EXPECT_EQ(disk.extended->start, 157811736576U);
    ASSERT_TRUE(disk.extended_entry);
    EXPECT_EQ(disk.extended_entry->slot, 3U);
    EXPECT_EQ(disk.extended_entry->type, 0x0FU);
    EXPECT_EQ(disk.partitions->at(1).slot, 2U);
    EXPECT_FALSE(disk.partitions->at(2).slot);  // logical
    ASSERT_THAT(disk.partitions, Optional(SizeIs(4)));
    EXPECT_EQ(disk.partitions->at(3).kind, documents::PartitionKind::kLogical);
}

TEST(ReadDocument, EmptyFileSystem_LeavesLabelAndSerialUnknown) {
    const Machine machine = Read(TextOf("uefi-workstation", 2));
    const auto reserved = std::find_if(machine.volumes.begin(), machine.volumes.end(),
                                       [](const documents::Volume& volume) { return !volume.file_system; });
    ASSERT_NE(reserved, machine.volumes.end());
    EXPECT_EQ(reserved->label, std::nullopt);
    EXPECT_EQ(reserved->serial, std::nullopt);
    EXPECT_EQ(reserved->used, std::nullopt);
}

TEST(ReadDocument, Texts_KeepTheirBlanksAndCharacters) {
    const std::string text =
        Replaced(TextOf("bios-laptop", 2), "<Label>Documents</Label>", "<Label>  &lt;b&gt; &#xDC; </Label>");
    EXPECT_THAT(Read(text).volumes.at(2).label, Optional(std::string("  <b> \xC3\x9C ")));
    const std::string blank =
        Replaced(TextOf("bios-laptop", 2), "<Label>Documents</Label>", "<Label>  </Label>");
    EXPECT_THAT(Read(blank).volumes.at(2).label, Optional(std::string("  ")));
}

struct Bad {
    const char* from;
    const char* to;
    const char* refusal;
};

TEST(ReadDocument, BadValues_AreRefusedWithTheirPlace) {
    const Bad cases[] = {
        {"<size>320072933376</size>", "<size>99999999999999999999</size>",
         "DiskDrives/x0/size: \"99999999999999999999\" is out of range"},
        {"<size>320072933376</size>", "<size>many</size>", "DiskDrives/x0/size: \"many\" is not a number"},
        {"<size>320072933376</size>", "<size></size>", "DiskDrives/x0/size: \"\" is not a number"},
        {"<size>320072933376</size>", "", "DiskDrives/x0/size: the element is missing"},
        {"<mbr_partition_type>7<", "<mbr_partition_type>256<",
         "DiskDrives/x0/y0/mbr_partition_type: \"256\" is out of range"},
        {"<primary>1<", "<primary>yes<", "DiskDrives/x0/y0/primary: \"yes\" is neither 1 nor 0"},
        {"<parttype>Primary<", "<parttype>Secondary<",
         "DiskDrives/x0/y0/parttype: \"Secondary\" is no kind of row"},
        {"<partition_guid>{00000000-0000-0000-0000-000000000000}<", "<partition_guid>{0}<",
         "DiskDrives/x0/y0/partition_guid: \"{0}\" is not a GUID in braces"},
        {"<Version>5<", "<Version>6<", "Version: 6 is none of the versions 3, 5 and 7"},
        {"<Version>5</Version>", "", "Version: the element is missing"},
        {"<m_DiskNumber>0</m_DiskNumber>\n        <m_PartitionNumber>1<",
         "<m_DiskNumber>-1</m_DiskNumber>\n        <m_PartitionNumber>1<",
         "VolumeTable/volume0/m_DiskNumber: \"-1\" is not a number"},
        {"<m_DiskNumber>0</m_DiskNumber>\n          <", "<m_DiskNumber>9</m_DiskNumber>\n          <",
         "VolumeTable/volume0/extent0/m_DiskNumber: the document has no disk 9"},
    };
    for (const Bad& bad : cases) {
        EXPECT_EQ(Refusal(Replaced(TextOf("bios-laptop", 2), bad.from, bad.to)), bad.refusal);
    }
}

TEST(ReadDocument, OtherXml_IsNoDocument) {
    EXPECT_EQ(Refusal("<html/>"), "html: not an environment document: it is empty");
    EXPECT_EQ(Refusal("<html><b/></html>"), "html: not an environment document: root was expected here");
    EXPECT_EQ(Refusal("<root><x><y/></x></root>"),
              "x: not an environment document: BMREnvInfo was expected here");
    EXPECT_EQ(Refusal("<root><BMREnvInfo><Version>5</Version></BMREnvInfo></root>"),
              "BMREnvInfo: not an environment document: it has no sections");
}

TEST(ReadDocument, MissingSection_IsRefused) {
    const std::string text = TextOf("bios-laptop", 2);
    const std::size_t begin = text.find("<BootConfig>");
    const std::size_t end = text.find("</BootConfig>") + std::string("</BootConfig>").size();
    EXPECT_EQ(Refusal(text.substr(0, begin) + text.substr(end)), "BootConfig: the section is missing");
    const std::string section = text.substr(begin, end - begin);
    EXPECT_EQ(Refusal(Replaced(text, section, section + section)), "BootConfig: the section is there twice");
}

TEST(ReadDocument, TruncatedAnywhere_IsRefused) {
    const std::string text = TextOf("bios-laptop", 3);
    for (std::size_t length = 0; length + 10 < text.size(); length += 97) {
        EXPECT_NE(Refusal(text.substr(0, length)), "") << length;
    }
}

std::vector<documents::Partition> PartitionsAt(const std::vector<documents::Range>& places) {
    std::vector<documents::Partition> partitions(places.size());
    for (std::size_t index = 0; index < places.size(); ++index) {
        partitions[index].place = places[index];
    }
    return partitions;
}

std::vector<std::pair<std::uint64_t, std::uint64_t>> PlacesOf(const std::vector<documents::Gap>& gaps) {
    std::vector<std::pair<std::uint64_t, std::uint64_t>> places;
    for (const documents::Gap& gap : gaps) {
        places.emplace_back(gap.place.start, gap.place.length);
    }
    return places;
}

TEST(FreeOf, GapsOverPartitionsOfLaterSlots_AreCut) {
    // Slots in reversed order: the first gap covers the second partition, the last one the first partition.
    EXPECT_THAT(PlacesOf(documents::FreeOf({{{1, 99}, false}, {{51, 149}, false}},
                                           PartitionsAt({{100, 20}, {1, 50}}))),
                ElementsAre(std::pair(51, 49), std::pair(120, 80)));
}

TEST(FreeOf, OrdinaryGaps_Stay) {
    EXPECT_THAT(PlacesOf(documents::FreeOf({{{0, 10}, false}, {{20, 5}, true}}, PartitionsAt({{10, 10}}))),
                ElementsAre(std::pair(0, 10), std::pair(20, 5)));
    EXPECT_THAT(documents::FreeOf({{{5, 10}, false}}, PartitionsAt({{0, 100}})), IsEmpty());
}

TEST(Ranges, EndsOverTheLargestNumber_AreTheLargestNumber) {
    const std::uint64_t largest = UINT64_MAX;
    EXPECT_EQ(documents::EndOf({largest - 1, 5}), largest);
    EXPECT_FALSE(documents::Contains({0, 100}, {50, largest}));
    EXPECT_TRUE(documents::Overlap({largest - 10, 20}, {largest - 5, 1}));
}

TEST(ReadDocument, NumbersThatWmiDidNotGive_AreAbsent) {
    const std::string text = TextOf("bios-laptop", 2);
    const std::size_t begin = text.find("<MaxClockSpeed>");
    const std::string speed = text.substr(begin, text.find("</MaxClockSpeed>") - begin);
    const Machine machine = Read(Replaced(text, speed, "<MaxClockSpeed>0"));
    EXPECT_NE(documents::NumberFact(Read(text), "Processor", "MaxClockSpeed"), std::nullopt);
    EXPECT_EQ(documents::NumberFact(machine, "Processor", "MaxClockSpeed"), std::nullopt);
}

TEST(ReadDocument, ZeroThatSaysSomething_IsRead) {
    const std::string text = TextOf("bios-laptop", 2);
    const std::size_t begin = text.find("<CurrentTimeZone>");
    const std::string zone = text.substr(begin, text.find("</CurrentTimeZone>") - begin);
    const Machine machine = Read(Replaced(text, zone, "<CurrentTimeZone>0"));
    EXPECT_THAT(documents::NumberFact(machine, "ComputerSystem", "CurrentTimeZone"), Optional(0));
}

TEST(ReadDocument, MountPointsInAnyOrder_AreReadByTheirNumbers) {
    const std::string text = TextOf("bios-laptop", 3);
    const std::size_t begin = text.find("<MountPoint1>", text.find("<VolumeLabel>Documents"));
    const std::string first = text.substr(begin, text.find("</MountPoint1>", begin) + 14 - begin);
    const Machine machine = Read(Replaced(text, first,
                                          "<MountPoint3>D:\\c</MountPoint3><MountPoint5>D:\\e</MountPoint5>"
                                          "<MountPoint2>D:\\b</MountPoint2>" +
                                              first,
                                          "<VolumeLabel>Documents"));
    const auto volume = std::find_if(machine.volumes.begin(), machine.volumes.end(),
                                     [](const documents::Volume& each) { return each.label == "Documents"; });
    ASSERT_NE(volume, machine.volumes.end());
    EXPECT_THAT(volume->mount_points, Optional(ElementsAre("D:\\", "D:\\b", "D:\\c")));
    ASSERT_THAT(machine.form_faults, SizeIs(2));
    EXPECT_EQ(machine.form_faults[0].text, "the document says 1, and has 3");
    EXPECT_EQ(machine.form_faults[1].place, "VolumeInfo/Volume/MountPoint5");
}

}  // namespace
