#include "machine/test_machine.h"

#include <gtest/gtest.h>

namespace machine_test {
namespace {

TEST(CallLog, Calls_AreRecordedInOrderWithTheirOutcome) {
    Machine machine(SmallMachine());
    machine.simulation.calls().Clear();
    const std::size_t before = machine.simulation.calls().last_ordinal();
    const HANDLE handle = machine.kernel.Open(L"\\\\.\\PhysicalDrive0");
    machine.kernel.Ask(handle, IOCTL_DISK_GET_LENGTH_INFO, 8);
    machine.kernel.CloseHandle(handle);
    const auto& records = machine.simulation.calls().records();
    ASSERT_EQ(records.size(), 3u);
    EXPECT_EQ(records[0].name, "CreateFileW");
    EXPECT_EQ(records[0].ordinal, before + 1);
    EXPECT_EQ(records[1].name, "DeviceIoControl:IOCTL_DISK_GET_LENGTH_INFO");
    EXPECT_EQ(records[1].object, L"\\\\.\\PhysicalDrive0");
    EXPECT_TRUE(records[1].failed);
    EXPECT_EQ(records[1].error, std::uint32_t{ERROR_ACCESS_DENIED});
    EXPECT_FALSE(records[2].failed);
    EXPECT_EQ(machine.simulation.calls().Count("DeviceIoControl"), 1u);
    EXPECT_EQ(machine.simulation.calls().Count("DeviceIoControl", L"\\\\.\\physicaldrive0"), 1u);
    EXPECT_EQ(machine.simulation.calls().Count("Device"), 0u);
}

TEST(CallLog, UnknownControl_IsNamedByItsCode) {
    Machine machine(SmallMachine());
    const HANDLE handle = machine.kernel.Open(L"\\\\.\\PhysicalDrive0");
    machine.kernel.Ask(handle, 0x00070FF0, 8);
    machine.kernel.CloseHandle(handle);
    EXPECT_EQ(machine.simulation.calls().Count("DeviceIoControl:0x00070FF0"), 1u);
}

TEST(CallLog, NotKept_StillCounts) {
    Machine machine(SmallMachine());
    const std::size_t before = machine.simulation.calls().last_ordinal();
    machine.simulation.calls().Clear();
    machine.simulation.calls().SetKept(false);
    machine.kernel.GetLogicalDrives();
    EXPECT_TRUE(machine.simulation.calls().records().empty());
    EXPECT_EQ(machine.simulation.calls().last_ordinal(), before + 1);
}

TEST(FaultPlan, ByNameAndObject_HitsOnlyThose) {
    Machine machine(SmallMachine());
    machine.simulation.faults().Fail("CreateFileW", ERROR_BUSY, L"\\\\.\\PhysicalDrive0");
    EXPECT_EQ(machine.kernel.Open(L"\\\\.\\PhysicalDrive0"), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_BUSY});
    const HANDLE other = machine.kernel.Open(L"\\\\.\\PhysicalDrive3");
    EXPECT_NE(other, INVALID_HANDLE_VALUE);
    machine.kernel.CloseHandle(other);
    EXPECT_EQ(machine.simulation.faults().hits(), 1u);
}

TEST(FaultPlan, OrdinalOfAName_FailsOnceOrFromThereOn) {
    Machine machine(SmallMachine());
    machine::FaultRule rule;
    rule.name = "GetLogicalDrives";
    rule.ordinal = 2;
    machine.simulation.faults().Add(rule);
    EXPECT_NE(machine.kernel.GetLogicalDrives(), 0u);
    EXPECT_EQ(machine.kernel.GetLogicalDrives(), 0u);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_GEN_FAILURE});
    EXPECT_NE(machine.kernel.GetLogicalDrives(), 0u);
    machine.simulation.faults().Clear();
    rule.from_there_on = true;
    machine.simulation.faults().Add(rule);
    EXPECT_NE(machine.kernel.GetLogicalDrives(), 0u);
    EXPECT_EQ(machine.kernel.GetLogicalDrives(), 0u);
    EXPECT_EQ(machine.kernel.GetLogicalDrives(), 0u);
}

TEST(FaultPlan, OrdinalOfAll_CountsFromTheRuleOn) {
    Machine machine(SmallMachine());
    machine.simulation.faults().FailOrdinal(2, false);
    EXPECT_EQ(machine.kernel.GetDriveTypeW(L"C:\\"), UINT{DRIVE_FIXED});
    EXPECT_EQ(machine.kernel.GetLogicalDrives(), 0u);
    EXPECT_EQ(machine.kernel.GetDriveTypeW(L"C:\\"), UINT{DRIVE_FIXED});
}

TEST(FaultPlan, Alter_LiesAboutLengthAndBytes) {
    Machine machine(SmallMachine());
    machine.simulation.faults().Alter("DeviceIoControl:IOCTL_DISK_GET_DRIVE_LAYOUT_EX",
                                      [](machine::Answer& answer) {
                                          answer.bytes[4] = 0xFF;
                                          answer.returned = 100000;
                                      });
    const HANDLE handle = machine.kernel.Open(L"\\\\.\\PhysicalDrive0");
    const auto answer = machine.kernel.Ask(handle, IOCTL_DISK_GET_DRIVE_LAYOUT_EX, 4096);
    EXPECT_TRUE(answer.done);
    EXPECT_EQ(answer.returned, 100000u);
    EXPECT_EQ(answer.As<DRIVE_LAYOUT_INFORMATION_EX>().PartitionCount, 0xFFu);
    machine.kernel.CloseHandle(handle);
}

TEST(FaultPlan, AlterWithMoreBytesThanTheBuffer_StaysInside) {
    Machine machine(SmallMachine());
    machine.simulation.faults().Alter("DeviceIoControl",
                                      [](machine::Answer& answer) { answer.bytes.assign(1 << 20, 0x55); });
    const HANDLE handle = machine.kernel.Open(L"\\\\.\\PhysicalDrive0");
    unsigned char buffer[40];
    memset(buffer, 0xAA, sizeof(buffer));
    DWORD returned = 0;
    machine.kernel.DeviceIoControl(handle, IOCTL_DISK_GET_DRIVE_GEOMETRY, nullptr, 0, buffer, 24, &returned,
                                   nullptr);
    EXPECT_EQ(buffer[23], 0x55);
    EXPECT_EQ(buffer[24], 0xAA);
    machine.kernel.CloseHandle(handle);
}

TEST(FaultPlan, AlterThatFailsAnOpening_LeavesNoHandle) {
    Machine machine(SmallMachine());
    machine.simulation.faults().Alter("CreateFileW", [](machine::Answer& answer) {
        answer.failed = true;
        answer.error = ERROR_SHARING_VIOLATION;
    });
    EXPECT_EQ(machine.kernel.Open(L"\\\\.\\PhysicalDrive0"), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_SHARING_VIOLATION});
    EXPECT_EQ(machine.simulation.open_handles(), 0u);
}

TEST(FaultPlan, SuccessWithALastError_Misleads) {
    Machine machine(SmallMachine());
    machine.simulation.faults().Alter("GetLogicalDrives",
                                      [](machine::Answer& answer) { answer.error = ERROR_MORE_DATA; });
    SetLastError(0);
    EXPECT_NE(machine.kernel.GetLogicalDrives(), 0u);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_MORE_DATA});
}

TEST(FaultPlan, ActionThatChangesTheMachine_WorksForTheNextCall) {
    Machine machine(SmallMachine());
    machine.simulation.faults().Alter(
        "GetLogicalDrives", [&](machine::Answer&) { machine.simulation.description().disks.clear(); });
    machine.kernel.GetLogicalDrives();
    EXPECT_EQ(machine.kernel.Open(L"\\\\.\\PhysicalDrive0"), INVALID_HANDLE_VALUE);
}

TEST(DescribedErrors, MachineWide_HitEveryObject) {
    Machine machine(R"({"disks": [{"index": 0, "size": "1 GiB"}, {"index": 1, "size": "1 GiB",
        "errors": {"DeviceIoControl:IOCTL_DISK_GET_DRIVE_LAYOUT_EX": 21}}],
        "errors": {"DeviceIoControl": 1117, "GetLogicalDrives": 5}})");
    EXPECT_EQ(machine.kernel.GetLogicalDrives(), 0u);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_ACCESS_DENIED});
    const HANDLE handle = machine.kernel.Open(L"\\\\.\\PhysicalDrive1");
    EXPECT_EQ(machine.kernel.Ask(handle, IOCTL_DISK_GET_DRIVE_LAYOUT_EX, 512).error, DWORD{ERROR_NOT_READY});
    EXPECT_EQ(machine.kernel.Ask(handle, IOCTL_DISK_GET_DRIVE_GEOMETRY, 512).error, DWORD{ERROR_IO_DEVICE});
    machine.kernel.CloseHandle(handle);
}

TEST(DescribedErrors, CallsThatTheyFail_AreCountedApartFromThoseOfThePlan) {
    Machine machine(R"({"disks": [{"index": 0, "size": "1 GiB", "errors": {"CreateFileW": 21}}],
        "errors": {"GetLogicalDrives": 5}})");
    EXPECT_EQ(machine.simulation.described_errors_met(), 0u);
    EXPECT_EQ(machine.kernel.GetDriveTypeW(L"C:\\"), UINT{DRIVE_NO_ROOT_DIR});
    EXPECT_EQ(machine.simulation.described_errors_met(), 0u);
    machine.kernel.GetLogicalDrives();
    EXPECT_EQ(machine.kernel.Open(L"\\\\.\\PhysicalDrive0"), INVALID_HANDLE_VALUE);
    EXPECT_EQ(machine.simulation.described_errors_met(), 2u);
    EXPECT_EQ(machine.simulation.faults().hits(), 0u);

    machine.simulation.faults().Fail("GetLogicalDrives", ERROR_BUSY);
    machine.kernel.GetLogicalDrives();
    EXPECT_EQ(machine.simulation.described_errors_met(), 2u) << "the plan comes first";
    EXPECT_EQ(machine.simulation.faults().hits(), 1u);
}

}  // namespace
}  // namespace machine_test
