// The queries of one physical drive: length, layout, and whether it is a GPT disk.

#include "common/enumdisk/enum_disk.h"
#include "support/allocation_failure.h"
#include "support/stub.h"
#include "unit/common/enumdisk/enum_machine.h"
#include "unit/common/enumdisk/layout_bytes.h"

#include <cstring>

namespace {

using support::Error;
using support::Trace;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

class DriveQueries : public enum_machine::EnumMachine {
protected:
    DriveQueries() { Use(enum_machine::kMbrAndGpt); }

    bool Layout(bool extended, std::uint32_t number = 0) {
        return EnumDisk::GetDriveLayout(number, extended, layout_, error_);
    }

    std::int64_t length_ = 77;
    DWORD error_ = 77;
    win::ByteBuffer layout_;
    std::vector<DWORD> offered_;
};

TEST_F(DriveQueries, LengthOpen_IsForReadingAndWritingSharedForBoth) {
    std::vector<std::vector<DWORD>> opened;
    const auto open = Kernel32DLL::Get().CreateFileW;
    const support::Stub stub(Kernel32DLL::Get().CreateFileW,
                             [&](LPCWSTR path, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security,
                                 DWORD disposition, DWORD flags, HANDLE model) -> HANDLE {
                                 opened.push_back({access, share, disposition});
                                 return open(path, access, share, security, disposition, flags, model);
                             });
    EXPECT_TRUE(EnumDisk::GetDiskLength(0, kLogError, length_, error_));
    EXPECT_THAT(opened, ElementsAre(ElementsAre(GENERIC_READ | GENERIC_WRITE,
                                                FILE_SHARE_READ | FILE_SHARE_WRITE, OPEN_EXISTING)));
}

TEST_F(DriveQueries, LengthFails_IsLoggedAtTheCallersLevel) {
    faults().Fail(enum_machine::kLength, 21);
    EXPECT_FALSE(EnumDisk::GetDiskLength(0, kLogError, length_, error_));
    EXPECT_EQ(error_, 21U);
    EXPECT_EQ(length_, 77);
    EXPECT_FALSE(EnumDisk::GetDiskLength(0, kLogTrace, length_, error_));
    const std::string text = "Get length of drive \\\\.\\PhysicalDrive0 failed error=21";
    EXPECT_EQ(log_.Count(support::kHostError, text), 1U) << log_;
    EXPECT_EQ(log_.Count(support::kHostTrace, text), 1U) << log_;
}

TEST_F(DriveQueries, LengthOpenFails_IsLoggedAtTheCallersLevel) {
    faults().Fail("CreateFileW", 5);
    EXPECT_FALSE(EnumDisk::GetDiskLength(0, kLogError, length_, error_));
    EXPECT_EQ(error_, 5U);
    EXPECT_FALSE(EnumDisk::GetDiskLength(0, kLogTrace, length_, error_));
    EXPECT_EQ(log_.Count(support::kHostTrace, "DriveName: \\\\.\\PhysicalDrive0"), 0U) << log_;
    const std::string text = "GetDiskLength:Opening the drive \\\\.\\PhysicalDrive0 failed error=5";
    EXPECT_EQ(log_.Count(support::kHostError, text), 1U) << log_;
    EXPECT_EQ(log_.Count(support::kHostTrace, text), 1U) << log_;
}

TEST_F(DriveQueries, LengthThatIsNoWholeAnswer_Fails) {
    faults().Alter(enum_machine::kLength, [](machine::Answer& answer) { answer.returned = 4; });
    EXPECT_FALSE(EnumDisk::GetDiskLength(0, kLogError, length_, error_));
    EXPECT_NE(error_, 0U);
    EXPECT_EQ(length_, 77);
}

TEST_F(DriveQueries, LengthBelowZero_Fails) {
    faults().Alter(enum_machine::kLength, [](machine::Answer& answer) { answer.bytes.assign(8, 0xFF); });
    EXPECT_FALSE(EnumDisk::GetDiskLength(0, kLogError, length_, error_));
    EXPECT_EQ(length_, 77);
}

TEST_F(DriveQueries, LayoutBuffer_BeginsAtItsSizeAndDoublesOnError122) {
    for (const auto& [extended, first] : {std::pair{true, DWORD{768}}, std::pair{false, DWORD{168}}}) {
        offered_.clear();
        const support::Stub stub(Kernel32DLL::Get().DeviceIoControl,
                                 [this](HANDLE, DWORD, void*, DWORD, void* output, DWORD size,
                                        DWORD* returned, OVERLAPPED*) -> BOOL {
                                     offered_.push_back(size);
                                     if (offered_.size() < 5) {
                                         SetLastError(ERROR_INSUFFICIENT_BUFFER);
                                         return FALSE;
                                     }
                                     std::memset(output, 0, size);
                                     *returned = 48;
                                     return TRUE;
                                 });
        EXPECT_TRUE(Layout(extended));
        EXPECT_THAT(offered_, ElementsAre(first, first * 2, first * 4, first * 8, first * 16));
    }
    EXPECT_THAT(log_.Messages(), IsEmpty());
}

TEST_F(DriveQueries, LayoutThatNeverFits_FailsInTheEnd) {
    faults().Fail(enum_machine::kLayoutEx, ERROR_INSUFFICIENT_BUFFER);
    EXPECT_FALSE(Layout(true));
    EXPECT_EQ(error_, DWORD{ERROR_INSUFFICIENT_BUFFER});
    EXPECT_LT(simulation().calls().Count(enum_machine::kLayoutEx), 40U);
}

TEST_F(DriveQueries, LayoutFails_IsLoggedWithTheErrorInBothBases) {
    // Error 14 is also what a failed allocation is reported as. That one logs no line; a system error does.
    for (const auto& [error, told] : {std::pair{170U, "error=170 0xaa"}, std::pair{14U, "error=14 0xe"}}) {
        log_.Clear();
        faults().Clear();
        faults().Fail(enum_machine::kLayoutEx, error);
        EXPECT_FALSE(Layout(true));
        EXPECT_EQ(error_, error);
        EXPECT_THAT(
            log_.all(),
            Contains(Error(std::string("Get drive layout of drive \\\\.\\PhysicalDrive0 failed ") + told)));
        EXPECT_EQ(log_.Told().back(), Trace("Leaving GetDriveLayout"));
    }
}

TEST_F(DriveQueries, LayoutOpenFails_IsLoggedWithTheErrorInBothBases) {
    EXPECT_FALSE(Layout(true, 7));
    EXPECT_EQ(error_, DWORD{ERROR_FILE_NOT_FOUND});
    EXPECT_THAT(
        log_.all(),
        Contains(Error("GetDriveLayout: Opening the drive \\\\.\\PhysicalDrive7 failed error=2 0x2")));
    EXPECT_EQ(log_.Told().back(), Trace("Leaving GetDriveLayout"));
}

TEST_F(DriveQueries, LayoutWithoutMemory_IsError14) {
    faults().Fail(enum_machine::kLayoutEx, ERROR_INSUFFICIENT_BUFFER);
    const support::AllocationFailure failing(100'000);
    EXPECT_FALSE(Layout(true));
    EXPECT_EQ(error_, 14U);
    EXPECT_GT(failing.hits(), 0U);
    EXPECT_EQ(log_.Count(support::kHostError), 0U) << log_;
    EXPECT_EQ(log_.Told().back(), Trace("Leaving GetDriveLayout"));
}

TEST_F(DriveQueries, LayoutThatCountsMoreThanItHolds_Fails) {
    for (const bool extended : {true, false}) {
        faults().Clear();
        faults().Alter("DeviceIoControl", [extended](machine::Answer& answer) {
            layout_bytes::SetCount(answer.bytes, extended, 5);
        });
        EXPECT_FALSE(Layout(extended));
        EXPECT_NE(error_, 0U);
        EXPECT_TRUE(layout_.empty());
    }
}

TEST_F(DriveQueries, LayoutThatClaimsMoreThanTheBuffer_Fails) {
    faults().Alter(enum_machine::kLayoutEx, [](machine::Answer& answer) { answer.returned = 100'000; });
    EXPECT_FALSE(Layout(true));
    EXPECT_NE(error_, 0U);
}

TEST_F(DriveQueries, LayoutShorterThanItsHeader_Fails) {
    faults().Alter(enum_machine::kLayoutEx, [](machine::Answer& answer) { answer.returned = 8; });
    EXPECT_FALSE(Layout(true));
    EXPECT_NE(error_, 0U);
}

TEST_F(DriveQueries, IsGpt_RawDisk_IsNot) {
    disk(0).style = PARTITION_STYLE_RAW;
    bool is_gpt = true;
    EXPECT_TRUE(DriveIsGPT(0, is_gpt));
    EXPECT_FALSE(is_gpt);
}

TEST_F(DriveQueries, IsGpt_LayoutNotReadable_LeavesTheOutputAlone) {
    for (const bool before : {true, false}) {
        bool is_gpt = before;
        EXPECT_FALSE(DriveIsGPT(7, is_gpt));
        EXPECT_EQ(is_gpt, before);
    }
}

}  // namespace
