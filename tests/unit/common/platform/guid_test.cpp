#include "common/platform/guid.h"

#include "support/logger_capture.h"
#include "support/stub.h"

#include <gmock/gmock.h>
#include <objbase.h>

namespace {

using support::Error;
using support::LoggerCapture;
using support::StubImport;
using testing::ElementsAre;

constexpr GUID kExample = {0xebd0a0a2, 0xb9e5, 0x4433, {0x87, 0xc0, 0x68, 0xb6, 0xb7, 0x26, 0x99, 0xc7}};

TEST(Guid, GuidText_Any_IsInUpperCaseAndBraces) {
    EXPECT_EQ(GuidText(kExample), L"{EBD0A0A2-B9E5-4433-87C0-68B6B72699C7}");
    EXPECT_EQ(GuidText(GUID{}), L"{00000000-0000-0000-0000-000000000000}");
    EXPECT_EQ(GuidText({1, 2, 3, {4, 5, 6, 7, 8, 9, 10, 11}}), L"{00000001-0002-0003-0405-060708090A0B}");
}

TEST(Guid, CreateGuid_SystemFails_LogsAndGivesTheZeroGuid) {
    LoggerCapture log;
    const StubImport stub("CoCreateGuid", &::CoCreateGuid, [](GUID* guid) -> HRESULT {
        guid->Data1 = 7;
        return static_cast<HRESULT>(0x800706BA);
    });
    GUID guid = kExample;

    EXPECT_FALSE(CreateGuid(guid));

    EXPECT_TRUE(IsEqualGUID(guid, GUID{}));
    EXPECT_THAT(log.all(), ElementsAre(Error("CoCreateGuid call failed error: 2147944122")));
}

}  // namespace
