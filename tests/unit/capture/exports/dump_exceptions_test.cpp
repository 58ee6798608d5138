// Exceptions thrown inside a dump: the dump logs one line and ends.

#include "common/platform/system_library.h"
#include "orvane/orvane.h"
#include "support/allocation_failure.h"
#include "support/logger_capture.h"
#include "support/stub.h"
#include "unit/capture/grabber/example_machine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <objbase.h>

#include <cstring>
#include <optional>
#include <stdexcept>
#include <string>

namespace {

using support::Error;
using support::LogLine;
using testing::StartsWith;

class DumpExceptions : public testing::Test {
protected:
    // Checks that the dump was entered and left, and that its last line reports the exception.
    void ExpectEndOf(const std::string& dump) const {
        const std::vector<LogLine>& all = log_.all();
        ASSERT_GE(all.size(), 3U);
        EXPECT_THAT(all.front().text, StartsWith("Entering function " + dump + " line "));
        EXPECT_EQ(all[all.size() - 2], Error(dump + " Exception"));
        EXPECT_THAT(all.back().text, StartsWith("Leaving function " + dump + " line "));
        EXPECT_EQ(log_.Count(support::kHostError), 1U) << log_;
    }

    machine::Session session_{ExampleMachine("uefi-workstation")};
    support::LoggerCapture log_;
};

HRESULT ThrowingCom(void* /*reserved*/, DWORD /*model*/) {
    throw std::runtime_error("the system");
}

TEST_F(DumpExceptions, WMIDumpInfo_EndsWithItsLine) {
    const support::StubImport stub("CoInitializeEx", &::CoInitializeEx, &ThrowingCom);
    EXPECT_NO_THROW(WMIDumpInfo());
    ExpectEndOf("WMIDumpInfo");
}

TEST_F(DumpExceptions, VolumeDumpInfo_EndsWithItsLine) {
    const support::StubImport stub("CoInitializeEx", &::CoInitializeEx, &ThrowingCom);
    EXPECT_NO_THROW(VolumeDumpInfo());
    ExpectEndOf("VolumeDumpInfo");
}

// The disk dump calls no system function that could be stubbed. Instead, all allocations fail after its first
// line. The log callback cannot store lines from then on.
std::optional<support::AllocationFailure> no_memory;
std::int32_t exception_level = -1;

void RunOutOfMemory(std::int32_t level, const char* text) {
    if (std::strcmp(text, "[Device Information]") == 0) {
        no_memory.emplace(1);
    } else if (std::strcmp(text, "DiskDumpInfo Exception") == 0) {
        no_memory.reset();
        exception_level = level;
    }
}

TEST_F(DumpExceptions, DiskDumpInfo_EndsWithItsLine) {
    exception_level = -1;
    SetEventFunc(&RunOutOfMemory);

    EXPECT_NO_THROW(DiskDumpInfo());

    EXPECT_FALSE(no_memory) << "the dump came to its end";
    no_memory.reset();
    EXPECT_EQ(exception_level, support::kHostError);
    EXPECT_EQ(session_.simulation().open_handles(), 0U);
}

TEST_F(DumpExceptions, FirmwareDumpInfo_EndsWithItsLine) {
    const support::Stub stub(Kernel32DLL::Get().GetFirmwareType,
                             [](PFIRMWARE_TYPE) -> BOOL { throw std::runtime_error("the system"); });
    EXPECT_NO_THROW(FirmwareDumpInfo());
    ExpectEndOf("FirmwareDumpInfo");
}

}  // namespace
