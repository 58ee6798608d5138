#include "documents/diff/machines.h"

#include <gtest/gtest.h>

namespace documents::diff {

namespace {

Partition& MbrPartition(Machine& machine) {
    return machine.disks[0].partitions->back();
}

Partition& GptPartition(Machine& machine) {
    return machine.disks[1].partitions->back();
}

const std::vector<Story> kStories = {
    {"resized",
     [](Machine& machine) { MbrPartition(machine).place.length = 70 * kGiB; },
     {"partition resized 0x00000A00@525336576"}},
    {"resized with its volume",
     [](Machine& machine) {
         MbrPartition(machine).place.length = 70 * kGiB;
         machine.volumes[1].size = 70 * kGiB;
         machine.volumes[1].extents->front().place.length = 70 * kGiB;
     },
     {"partition resized 0x00000A00@525336576", "volume resized \\\\?\\Volume{c}\\"}},
    {"retyped",
     [](Machine& machine) { MbrPartition(machine).mbr_type = std::uint8_t{0x27}; },
     {"partition retyped 0x00000A00@525336576"}},
    {"retyped, GPT",
     [](Machine& machine) { GptPartition(machine).gpt_type = kEfiSystem; },
     {"partition retyped {PART-B}"}},
    {"another one is active",
     [](Machine& machine) {
         machine.disks[0].partitions->front().active = false;
         MbrPartition(machine).active = true;
     },
     {"partition role 0x00000A00@1048576", "partition role 0x00000A00@525336576"}},
    {"logical",
     [](Machine& machine) { MbrPartition(machine).kind = PartitionKind::kLogical; },
     {"partition changed 0x00000A00@525336576"}},
    {"moved and resized, GPT",
     [](Machine& machine) {
         GptPartition(machine).place = {70 * kGiB, 50 * kGiB};
     },
     {"partition resized {PART-B}", "partition moved {PART-B}"}},
    // Nothing but the offset identifies an MBR partition.
    {"moved, MBR",
     [](Machine& machine) { MbrPartition(machine).place.start = 601 * kMiB; },
     {"partition removed 0x00000A00@525336576", "partition added 0x00000A00@630194176"}},
    {"replaced, GPT",
     [](Machine& machine) {
         GptPartition(machine).id = "{PART-C}";
         GptPartition(machine).place.length = kGiB;
     },
     {"partition replaced {PART-B}"}},
    {"removed",
     [](Machine& machine) { machine.disks[1].partitions->pop_back(); },
     {"partition removed {PART-B}"}},
    // Those behind it have another position then, which is not told.
    {"added at the beginning",
     [](Machine& machine) {
         Partition partition = GptPartition(machine);
         partition.place = {34 * 512, kMiB / 2};
         partition.id = "{PART-0}";
         std::vector<Partition>& all = *machine.disks[1].partitions;
         all.insert(all.begin(), partition);
     },
     {"partition added {PART-0}"}},
    {"exchanged their places",
     [](Machine& machine) { std::swap(machine.disks[1].partitions->front().id, GptPartition(machine).id); },
     {"partition resized {PART-A}", "partition moved {PART-A}", "partition resized {PART-B}",
      "partition moved {PART-B}"}},
};

TEST(PartitionChanges, Story_IsToldAndNothingElse) {
    for (const Story& story : kStories) {
        ExpectStory(story, TwoDisks());
    }
}

TEST(PartitionChanges, NumberOfTheSystem_CountsWithAllOnly) {
    Machine before = TwoDisks();
    MbrPartition(before).system_number = 2U;
    Machine after = before;
    MbrPartition(after).system_number = 3U;
    EXPECT_EQ(Tell(before, after), Told());
    EXPECT_EQ(Tell(before, after, true), Told({"partition renumbered 0x00000A00@525336576"}));
}

TEST(PartitionChanges, Gaps_AreNotCompared) {
    Machine before = TwoDisks();
    before.disks[0].gaps = {Gap{{81 * kGiB, kGiB}, false}};
    EXPECT_EQ(Tell(before, TwoDisks(), true), Told());
}

}  // namespace

}  // namespace documents::diff
