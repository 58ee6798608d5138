#include "documents/verify/verify.h"

#include "documents/case_documents.h"
#include "documents/finding_lines.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <set>
#include <string>
#include <vector>

namespace {

using case_documents::Read;
using case_documents::Replaced;
using case_documents::TextOf;
using documents::Finding;
using documents::Severity;
using finding_lines::Added;
using finding_lines::Lines;
using testing::IsEmpty;

std::vector<Finding> Of(const std::string& text) {
    return documents::Verify(Read(text));
}

struct Change {
    const char* machine;
    int format;
    const char* behind;  // the change is made behind this text
    const char* from;
    const char* to;
    std::vector<std::string> added;  // what is found more than in the unchanged document
};

// Each damage of a document and what must be said of it. Offsets and sizes are those of the machines.
const Change kChanges[] = {
    {"bios-laptop", 2, "", "<TotalVolumes>4", "<TotalVolumes>5", {"D001 error VolumeTable/TotalVolumes"}},
    {"bios-laptop", 2, "", "<size_idy>7", "<size_idy>6", {"D001 error DiskDrives/x0/size_idy"}},
    {"bios-laptop",
     3,
     "",
     "<NumberOfPartitions>",
     "<NumberOfPartitions>1",
     {"D001 error DeviceInfo/Disk1/NumberOfPartitions"}},
    {"bios-laptop",
     3,
     "",
     "<NumberOfMountPoints>1<",
     "<NumberOfMountPoints>2<",
     {"D001 error VolumeInfo/Volume/NumberOfMountPoints"}},
    {"bios-laptop", 2, "", "<interface>", "<size>5</size><interface>", {"D003 error DiskDrives/x0/size"}},
    {"bios-laptop", 2, "", "<interface>", "<bus>5</bus><interface>", {"D004 note DiskDrives/x0/bus"}},
    {"bios-laptop",
     2,
     "<volume1>",
     "<m_offsetPartition>525336576",
     "<m_offsetPartition>525336577",
     {"D005 error volume C:\\"}},
    {"bios-laptop",
     2,
     "<Drive1>",
     "<m_strDrive>C:\\",
     "<m_strDrive>X:\\",
     {"D006 error DriveLetterTable/Drive1"}},
    {"bios-laptop",
     2,
     "<Drive1>",
     "<m_guidVolume>generated 2",
     "<m_guidVolume>other",
     {"D006 error DriveLetterTable/Drive1"}},
    {"spanned-dynamic",
     3,
     "<Disk3>",
     "<DiskId>2",
     "<DiskId>1",
     {"D010 error disk 1", "D031 error volume S:\\",
      "D031 error volume \\\\?\\Volume{d7a0c413-6e2f-11e9-9a85-00155d01c204}\\"}},
    {"bios-laptop", 2, "", "<size>320072933376", "<size>0", {"D011 error disk 0"}},
    {"bios-laptop", 2, "<x0>", "<partition_style>0", "<partition_style>2", {"D014 error disk 0"}},
    {"spanned-dynamic",
     2,
     "<extent1>",
     "<m_dwDiskSignature>1552085157",
     "<m_dwDiskSignature>1552085158",
     {"D017 error volume S:\\"}},
    {"bios-laptop",
     2,
     "<y5>",
     "<size>57400098816",
     "<size>157400098816",
     {"D020 error disk 0, partition at 262671433728"}},
    {"bios-laptop",
     2,
     "<y0>",
     "<size>524288000",
     "<size>629145600",
     {"D022 error disk 0, partition at 525336576"}},
    {"bios-laptop",
     3,
     "<Partition3>",
     "<Length>162259795968",
     "<Length>262259795968",
     {"D020 error disk 0, extended partition at 157811736576"}},
    {"bios-laptop",
     3,
     "<Partition2>",
     "<Length>157286400000",
     "<Length>157287448576",
     {"D022 error disk 0, partition at 525336576"}},
    {"bios-laptop",
     2,
     "<y5>",
     "<size>57400098816",
     "<size>57400098817",
     {"D023 error disk 0, partition at 262671433728"}},
    {"bios-laptop",
     3,
     "<VolumeLabel>Documents",
     "<NumberOfDiskExtents>1",
     "<NumberOfDiskExtents>2",
     {"D001 error VolumeInfo/Volume/NumberOfDiskExtents"}},
    {"bios-laptop",
     3,
     "<VolumeLabel>Documents",
     "<DiskNumber>0",
     "<DiskNumber>6",
     {"D031 error volume D:\\"}},
    {"bios-laptop",
     2,
     "<volume2>",
     "<m_Size>104857600000",
     "<m_Size>204857600000",
     {"D034 error volume D:\\"}},
    {"bios-laptop",
     3,
     "<VolumeLabel>Documents",
     "<DiskOffset>157812785152",
     "<DiskOffset>157811736576",
     {"D032 error volume D:\\"}},
    {"bios-laptop",
     3,
     "<VolumeLabel>Documents",
     "<DiskOffset>157812785152",
     "<DiskOffset>525336576",
     {"D033 error volume D:\\"}},
    {"bios-laptop",
     3,
     "<VolumeLabel>Pictures",
     "<MountPoint1>F:\\",
     "<MountPoint1>D:\\",
     {"D037 error volume D:\\"}},
    {"bios-laptop", 3, "", "<BootVolume>True", "<BootVolume>False", {"D040 error machine"}},
    {"bios-laptop", 3, "", "<SystemVolume>True", "<SystemVolume>False", {"D041 error machine"}},
    {"bios-laptop", 2, "", "<m_guidBootVolume>generated 1", "<m_guidBootVolume>none", {"D040 error machine"}},
    {"bios-laptop",
     2,
     "",
     "<m_guidSystemVolume>generated 2",
     "<m_guidSystemVolume>generated 1",
     {"D042 error BootConfig/m_guidSystemVolume"}},
    {"bios-laptop", 2, "<volume2>", "<SystemVolume>0", "<SystemVolume>1", {"D043 note machine"}},
};

TEST(Verify, EachDamage_IsToldAndNothingElse) {
    for (const Change& change : kChanges) {
        const std::string text = TextOf(change.machine, change.format);
        const std::multiset<std::string> before = Lines(Of(text));
        const std::multiset<std::string> after =
            Lines(Of(Replaced(text, change.from, change.to, change.behind)));
        EXPECT_EQ(Added(before, after), std::multiset<std::string>(change.added.begin(), change.added.end()))
            << change.from << " becomes " << change.to;
    }
}

TEST(Verify, ElementsOutOfOrder_AreAnError) {
    std::string text = TextOf("bios-laptop", 2);
    text = Replaced(text, "<extent0>", "<extent1>");
    text = Replaced(text, "</extent0>", "</extent1>");
    EXPECT_EQ(Lines(Of(text)), (std::multiset<std::string>{"D002 error VolumeTable/volume0/extent1"}));
}

TEST(Verify, GoodDocuments_HaveNoErrors) {
    for (const char* const machine :
         {"bios-laptop", "large-4kn", "server-many-disks", "spanned-dynamic", "uefi-workstation"}) {
        EXPECT_FALSE(documents::HasErrors(Of(TextOf(machine, 2)))) << machine;
    }
    EXPECT_THAT(Of(TextOf("bios-laptop", 2)), IsEmpty());
}

TEST(Verify, GptDiskInFormatThree_IsAnErrorWhereAVolumeLies) {
    EXPECT_THAT(Lines(Of(TextOf("uefi-workstation", 3))), testing::Contains("D013 error disk 0"));
    const documents::Machine machine = [] {
        documents::Machine empty;
        empty.format = documents::Format::kThree;
        documents::Disk disk;
        disk.size = 1 << 30;
        disk.style = documents::Style::kGpt;
        empty.disks.push_back(disk);
        return empty;
    }();
    EXPECT_THAT(Lines(documents::Verify(machine)), testing::Contains("D013 note disk 0"));
}

TEST(Verify, PlaceholdersOfFormatOne_AreOneNote) {
    documents::Machine machine;
    machine.format = documents::Format::kOne;
    machine.placeholders = {1, 3, 4, 5, 9, 10};
    const std::vector<Finding> findings = documents::Verify(machine);
    const auto found = std::find_if(findings.begin(), findings.end(),
                                    [](const Finding& finding) { return finding.code == "D012"; });
    ASSERT_NE(found, findings.end());
    EXPECT_EQ(found->severity, Severity::kNote);
    EXPECT_THAT(found->text, testing::HasSubstr(": 1, 3 to 5, 9, 10."));
}

documents::Machine MachineWithGptPartitions(const std::string& one, const std::string& other) {
    documents::Machine machine;
    for (std::uint32_t number = 0; number < 2; ++number) {
        documents::Disk disk;
        disk.number = number;
        disk.size = 1 << 30;
        disk.style = documents::Style::kGpt;
        disk.id = one;
        documents::Partition partition;
        partition.place = {1 << 20, 1 << 20};
        partition.id = other;
        disk.partitions.emplace().push_back(partition);
        machine.disks.push_back(disk);
    }
    return machine;
}

TEST(Verify, ClonedDisks_HaveTheSameIds) {
    const auto lines = Lines(documents::Verify(MachineWithGptPartitions("{A}", "{B}")));
    EXPECT_THAT(lines,
                testing::IsSupersetOf({"D016 error disk 1", "D024 error disk 1, partition at 1048576"}));
}

TEST(Verify, TablesThatAnMbrCannotHold_AreErrors) {
    documents::Machine machine;
    documents::Disk disk;
    disk.size = 1 << 30;
    disk.style = documents::Style::kMbr;
    disk.extended = documents::Range{10 << 20, 10 << 20};
    disk.partitions.emplace();
    for (std::uint64_t index = 1; index <= 4; ++index) {
        documents::Partition partition;
        partition.place = {index << 20U, 1 << 20};
        disk.partitions->push_back(partition);
    }
    documents::Partition logical;
    logical.kind = documents::PartitionKind::kLogical;
    logical.place = {30 << 20, 0};
    disk.partitions->push_back(logical);
    machine.disks.push_back(disk);
    EXPECT_THAT(Lines(documents::Verify(machine)),
                testing::IsSupersetOf({"D021 error disk 0, partition at 31457280", "D025 error disk 0",
                                       "D026 error disk 0, partition at 31457280", "D015 note disk 0"}));
}

// The rows "| D001 | title |" of the page.
TEST(FindingCodes, Page_HasTheSameTable) {
    std::ifstream page(ORVANE_SOURCE_DIR "/docs/reasons.md");
    std::vector<std::string> rows;
    std::string line;
    while (std::getline(page, line)) {
        if (line.starts_with("| D")) {
            rows.push_back(line.substr(0, line.find('|', line.find('|', 2) + 1) + 1));
        }
    }
    std::vector<std::string> codes;
    for (const documents::FindingCode& code : documents::FindingCodes()) {
        codes.push_back("| " + std::string(code.code) + " | " + std::string(code.title) + " |");
    }
    EXPECT_EQ(rows, codes);
}

}  // namespace
