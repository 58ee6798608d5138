#include "capture/environment/firmware.h"

#include "common/platform/system_library.h"
#include "support/logger_capture.h"
#include "support/stub.h"

#include <gmock/gmock.h>

namespace {

constexpr std::uint32_t kUntouched = 77;
constexpr char kText[] = "GetFirmwareEnvironment function failed to find firmware type. Error code ";

struct Probe {
    bool valid;
    std::uint32_t type;
};

// The detection result when reading the firmware variable returns `length` and sets `error`.
Probe ProbeWith(DWORD length, DWORD error) {
    const support::Stub stub(
        Kernel32DLL::Get().GetFirmwareEnvironmentVariableW,
        [&](const wchar_t* name, const wchar_t* name_space, void* buffer, DWORD size) -> DWORD {
            EXPECT_STREQ(name, L"");
            EXPECT_STREQ(name_space, L"{00000000-0000-0000-0000-000000000000}");
            EXPECT_EQ(buffer, nullptr);
            EXPECT_EQ(size, 0U);
            SetLastError(error);
            return length;
        });
    std::uint32_t type = kUntouched;
    const bool valid = DetectFirmwareType(type);
    return {valid, type};
}

TEST(DetectFirmwareType, InvalidFunction_IsBios) {
    const Probe probe = ProbeWith(0, ERROR_INVALID_FUNCTION);
    EXPECT_TRUE(probe.valid);
    EXPECT_EQ(probe.type, 1U);
}

TEST(DetectFirmwareType, NoAccess_IsUefi) {
    const Probe probe = ProbeWith(0, ERROR_NOACCESS);
    EXPECT_TRUE(probe.valid);
    EXPECT_EQ(probe.type, 2U);
}

TEST(DetectFirmwareType, AnyLength_IsUefiWhateverTheError) {
    const Probe probe = ProbeWith(4, ERROR_ACCESS_DENIED);
    EXPECT_TRUE(probe.valid);
    EXPECT_EQ(probe.type, 2U);
}

TEST(DetectFirmwareType, AccessDenied_IsUndecidedWithTheTextLessFiveCharacters) {
    const support::LoggerCapture log;
    const Probe probe = ProbeWith(0, ERROR_ACCESS_DENIED);
    EXPECT_FALSE(probe.valid);
    EXPECT_EQ(probe.type, 0U);
    EXPECT_THAT(log.all(), testing::Contains(support::Error(kText + 5)));
}

TEST(DetectFirmwareType, ErrorPastTheText_LogsAnEmptyLine) {
    const support::LoggerCapture log;
    EXPECT_FALSE(ProbeWith(0, 1314).valid);
    EXPECT_THAT(log.all(), testing::Contains(support::Error("")));
}

TEST(DetectFirmwareType, FunctionMissing_IsUndecidedWithItsLine) {
    const support::ScopedValue<decltype(Kernel32DLL::GetFirmwareEnvironmentVariableW)> missing(
        Kernel32DLL::Get().GetFirmwareEnvironmentVariableW, nullptr);
    const support::LoggerCapture log;
    std::uint32_t type = kUntouched;
    EXPECT_FALSE(DetectFirmwareType(type));
    EXPECT_EQ(type, 0U);
    EXPECT_THAT(log.all(),
                testing::Contains(support::Error("GetFirmwareEnvironment function does not exist.")));
}

}  // namespace
