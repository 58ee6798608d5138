// The exports in a program that links the library statically, so that its allocations can be made to fail.

#include "orvane/orvane.h"
#include "support/allocation_failure.h"
#include "support/logger_capture.h"

#include <gmock/gmock.h>

#include <string>

namespace {

class OutOfMemory : public testing::Test {
protected:
    ~OutOfMemory() override {
        SetupSelectedVolumesList(nullptr, 0);
        SetXmlFormat(2);
    }

    support::LoggerCapture log_;
};

TEST_F(OutOfMemory, SelectedVolumes_AreNoneAndALineSaysSo) {
    const std::wstring list =
        L"short" + std::wstring(1, L'\0') + std::wstring(20000, L'x') + std::wstring(2, L'\0');
    ASSERT_EQ(SetupSelectedVolumesList(list.data(), list.size()), 2);
    log_.Clear();
    {
        const support::AllocationFailure failure(20000);
        EXPECT_EQ(SetupSelectedVolumesList(list.data(), list.size()), 0);
        EXPECT_GT(failure.hits(), 0U);
    }
    EXPECT_THAT(log_.all(), testing::Contains(support::Error("SetupSelectedVolumesList Exception")));
    EXPECT_EQ(log_.Messages().size(), 1U) << log_;
}

}  // namespace
