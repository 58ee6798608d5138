#include "common/disk/partition_manager_gpt.h"
#include "common/platform/system_library.h"
#include "support/each_of.h"
#include "support/logger_capture.h"
#include "unit/common/disk/partition_entries.h"
#include "unit/common/disk/simulated_disks.h"

#include <gmock/gmock.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

namespace bmr_common {
namespace {

using simulated_disks::kMiB;
using support::Error;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kSetLayout = "DeviceIoControl:IOCTL_DISK_SET_DRIVE_LAYOUT_EX";
constexpr const char* kUpdate = "DeviceIoControl:IOCTL_DISK_UPDATE_PROPERTIES";
constexpr const char* kWriteFunction = "bmr_common::PartitionManager::WritePartitionTableToDisk";
constexpr std::uint32_t kAlignment = 1U << 20;
constexpr std::int64_t kDiskSize = 10LL << 30;

// During its lifetime, records the input of the control code that sets a layout.
class LayoutSpy {
public:
    LayoutSpy() : previous_(Kernel32DLL::Get().DeviceIoControl) {
        sent_.clear();
        real_ = previous_;
        Kernel32DLL::Get().DeviceIoControl = &Control;
    }
    ~LayoutSpy() { Kernel32DLL::Get().DeviceIoControl = previous_; }
    LayoutSpy(const LayoutSpy&) = delete;
    LayoutSpy& operator=(const LayoutSpy&) = delete;

    const std::vector<unsigned char>& sent() const { return sent_; }
    const DRIVE_LAYOUT_INFORMATION_EX& layout() const {
        return *reinterpret_cast<const DRIVE_LAYOUT_INFORMATION_EX*>(sent_.data());
    }

private:
    static BOOL WINAPI Control(HANDLE device, DWORD code, void* input, DWORD input_bytes, void* output,
                               DWORD output_bytes, DWORD* returned, OVERLAPPED* overlapped) {
        if (code == IOCTL_DISK_SET_DRIVE_LAYOUT_EX) {
            const auto* const bytes = static_cast<const unsigned char*>(input);
            sent_.assign(bytes, bytes + input_bytes);
        }
        return real_(device, code, input, input_bytes, output, output_bytes, returned, overlapped);
    }

    static inline decltype(Kernel32DLL::DeviceIoControl) real_ = nullptr;
    static inline std::vector<unsigned char> sent_;

    decltype(Kernel32DLL::DeviceIoControl) previous_;
};

// A manager with the table of disk 3. The log is cleared after the table was read.
class PartitionManagerWritingTest : public testing::Test {
protected:
    PartitionManagerWritingTest() {
        manager_.Initialize(machine_.Open());
        machine_.simulation().calls().Clear();
        log_.Clear();
    }

    bool Add(std::int64_t start, std::int64_t size) {
        std::int64_t used_start = 0;
        std::int64_t used_size = 0;
        return manager_.AddPartitionInMemory(start, size, size, kDiskSize, kAlignment, entries::kBasicData,
                                             &used_start, &used_size);
    }

    // The partition offsets in MiB that the manager holds. Its objects and its layout must agree.
    std::vector<std::uint64_t> StartsInMemory() const {
        std::vector<std::uint64_t> starts;
        std::vector<std::uint64_t> in_layout;
        for (const PartitionPtr& partition : manager_.partitions()) {
            starts.push_back(static_cast<std::uint64_t>(partition->starting_offset()) >> 20);
        }
        for (DWORD i = 0; i < manager_.layout()->PartitionCount; ++i) {
            const LARGE_INTEGER start = manager_.layout()->PartitionEntry[i].StartingOffset;
            in_layout.push_back(static_cast<std::uint64_t>(start.QuadPart) >> 20);
        }
        EXPECT_EQ(starts, in_layout);
        return starts;
    }

    std::vector<std::uint64_t> StartsOnDisk() {
        return support::EachOf(machine_.disk().partitions,
                               [](const machine::Partition& partition) { return partition.offset >> 20; });
    }

    support::LoggerCapture log_;
    simulated_disks::Machine machine_{simulated_disks::kGptDisk};
    PartitionManagerGPT manager_{3};
};

TEST_F(PartitionManagerWritingTest, Commit_Layout_IsSortedNumberedAndMarkedToBeRewritten) {
    ASSERT_TRUE(manager_.DeletePartitionFromMemory(101 * kMiB));
    ASSERT_TRUE(Add(103 * kMiB, 10 * kMiB));
    const LayoutSpy spy;

    ASSERT_TRUE(manager_.CommitPartitionTable());

    ASSERT_EQ(48U + 144U * 3U, spy.sent().size());
    const DRIVE_LAYOUT_INFORMATION_EX& layout = spy.layout();
    EXPECT_EQ(1U, layout.PartitionStyle);
    ASSERT_EQ(3U, layout.PartitionCount);
    const std::int64_t starts[] = {kMiB, 103 * kMiB, 117 * kMiB};
    for (DWORD i = 0; i < 3; ++i) {
        EXPECT_EQ(starts[i], layout.PartitionEntry[i].StartingOffset.QuadPart);
        EXPECT_EQ(i + 1, layout.PartitionEntry[i].PartitionNumber);
        EXPECT_EQ(TRUE, layout.PartitionEntry[i].RewritePartition);
    }
}

TEST_F(PartitionManagerWritingTest, Commit_Header_IsTheOneThatWasRead) {
    machine_.disk().max_partition_count = 256;
    PartitionManagerGPT manager(3);
    const UniqueFile drive = machine_.Open();
    manager.Initialize(drive);
    const LayoutSpy spy;

    ASSERT_TRUE(manager.CommitPartitionTable());

    const DRIVE_LAYOUT_INFORMATION_GPT& header = spy.layout().Gpt;
    EXPECT_TRUE(IsEqualGUID(machine_.disk().disk_id, header.DiskId));
    EXPECT_EQ(17408, header.StartingUsableOffset.QuadPart);
    EXPECT_EQ(10737383936, header.UsableLength.QuadPart);
    EXPECT_EQ(256U, header.MaxPartitionCount);
}

TEST_F(PartitionManagerWritingTest, Commit_FewPartitions_SendsAtLeast192Bytes) {
    const LayoutSpy spy;
    ASSERT_TRUE(manager_.DeletePartitionFromMemory(kMiB));
    ASSERT_TRUE(manager_.DeletePartitionFromMemory(101 * kMiB));
    ASSERT_TRUE(manager_.CommitPartitionTable());
    EXPECT_EQ(192U, spy.sent().size());

    ASSERT_TRUE(manager_.DeletePartitionFromMemory(117 * kMiB));
    ASSERT_TRUE(manager_.CommitPartitionTable());

    EXPECT_EQ(192U, spy.sent().size());
    EXPECT_EQ(0U, spy.layout().PartitionCount);
    EXPECT_EQ(std::vector<unsigned char>(144),
              std::vector<unsigned char>(spy.sent().begin() + 48, spy.sent().end()));
    EXPECT_THAT(StartsOnDisk(), IsEmpty());
}

TEST_F(PartitionManagerWritingTest, Commit_Done_ReplacesTheManagersLayout) {
    ASSERT_TRUE(manager_.DeletePartitionFromMemory(101 * kMiB));

    ASSERT_TRUE(manager_.CommitPartitionTable());

    ASSERT_EQ(2U, manager_.layout()->PartitionCount);
    EXPECT_EQ(117 * kMiB, manager_.layout()->PartitionEntry[1].StartingOffset.QuadPart);
}

TEST_F(PartitionManagerWritingTest, DeletePartitionsAndWrite_OneMissing_WritesNothing) {
    EXPECT_FALSE(manager_.DeletePartitionsAndWrite({117 * kMiB, 7}));

    EXPECT_EQ(0U, machine_.simulation().calls().size());
    EXPECT_EQ(2U, manager_.partitions().size());
}

// Each step of a write; the tests in tests/images compare what is then on the disk.
TEST_F(PartitionManagerWritingTest, StepRefused_LogsAndCloses) {
    const std::string function = kWriteFunction;
    struct Step {
        const char* call;
        DWORD error;
        std::vector<support::LogLine> lines;
    };
    const Step steps[] = {
        {"CreateFileW", ERROR_ACCESS_DENIED, {Error(function + " OpenPhysicalDrive disk 3 error=5")}},
        {kSetLayout,
         ERROR_WRITE_PROTECT,
         {Error("win::WinAPIWrapper::SetDriveLayoutEx IOCTL_DISK_SET_DRIVE_LAYOUT of disk 3 error=19")}},
        {kUpdate,
         ERROR_NOT_READY,
         {Error("win::WinAPIWrapper::UpdateDiskProperties IOCTL_DISK_UPDATE_PROPERTIES error=21"),
          Error(function + " IOCTL_DISK_UPDATE_PROPERTIES disk 3 error=21")}},
        {"FlushFileBuffers", ERROR_ACCESS_DENIED, {Error(function + " FlushFileBuffers error=5")}},
    };
    for (const Step& step : steps) {
        machine_.simulation().faults().Clear();
        machine_.simulation().faults().Fail(step.call, step.error);
        log_.Clear();
        EXPECT_FALSE(manager_.CommitPartitionTable()) << step.call;
        EXPECT_EQ(0U, machine_.simulation().open_handles()) << step.call;
        EXPECT_EQ(step.lines, log_.Messages());
    }
}

TEST_F(PartitionManagerWritingTest, WriteRefusedOnce_CommitAgain_WritesTheEdits) {
    machine_.simulation().faults().Fail(kSetLayout, ERROR_WRITE_PROTECT);
    EXPECT_FALSE(manager_.DeletePartitionsAndWrite({kMiB}));
    EXPECT_THAT(StartsInMemory(), ElementsAre(101, 117));
    EXPECT_THAT(StartsOnDisk(), ElementsAre(1, 101, 117));
    machine_.simulation().faults().Clear();

    EXPECT_TRUE(manager_.CommitPartitionTable());

    EXPECT_THAT(StartsOnDisk(), ElementsAre(101, 117));
}

TEST_F(PartitionManagerWritingTest, FunctionsMissing_AreFailuresLikeOthers) {
    const auto create = Kernel32DLL::Get().CreateFileW;
    Kernel32DLL::Get().CreateFileW = nullptr;

    EXPECT_FALSE(manager_.CommitPartitionTable());

    Kernel32DLL::Get().CreateFileW = create;
    EXPECT_THAT(log_.Messages(),
                ElementsAre(Error(std::string(kWriteFunction) + " OpenPhysicalDrive disk 3 error=127")));
}

TEST_F(PartitionManagerWritingTest, Commit_LayoutNeverRead_LogsAndWritesNothing) {
    PartitionManagerGPT manager(3);

    EXPECT_FALSE(manager.CommitPartitionTable());

    EXPECT_EQ(0U, machine_.simulation().calls().size());
    EXPECT_THAT(log_.Messages(), ElementsAre(Error("bmr_common::PartitionManagerGPT::CommitPartitionTable "
                                                   "no GPT layout of disk 3 to write")));
}

TEST_F(PartitionManagerWritingTest, Commit_LayoutOfAnotherStyle_LogsAndWritesNothing) {
    machine_.disk().style = PARTITION_STYLE_MBR;
    PartitionManagerGPT manager(3);
    manager.Initialize(machine_.Open());
    ASSERT_TRUE(manager.IsFailed(L"Verifying partition type"));
    machine_.simulation().calls().Clear();
    log_.Clear();

    EXPECT_FALSE(manager.CommitPartitionTable());

    EXPECT_EQ(0U, machine_.simulation().calls().size());
    EXPECT_THAT(log_.Messages(), ElementsAre(Error("bmr_common::PartitionManagerGPT::CommitPartitionTable "
                                                   "no GPT layout of disk 3 to write")));
}

TEST_F(PartitionManagerWritingTest, WritePartitionTableToDisk_LayoutCutShort_LogsAndWritesNothing) {
    win::ByteBuffer none;
    win::ByteBuffer header_cut(47);
    win::ByteBuffer one_entry_short(48 + 144);
    LayoutIn(one_entry_short)->PartitionCount = 2;
    for (win::ByteBuffer* const layout : {&none, &header_cut, &one_entry_short}) {
        log_.Clear();
        EXPECT_FALSE(manager_.WritePartitionTableToDisk(*layout));
        EXPECT_THAT(log_.Messages(),
                    ElementsAre(Error(std::string(kWriteFunction) + " the layout of disk 3 is not whole")));
    }
    EXPECT_EQ(0U, machine_.simulation().calls().size());
    EXPECT_THAT(StartsOnDisk(), ElementsAre(1, 101, 117));
}

}  // namespace
}  // namespace bmr_common
