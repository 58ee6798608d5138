// The three wrappers whose answer has no fixed length: they grow and trim their buffer in the same way.

#include "common/platform/win_api_wrapper.h"
#include "control_system.h"
#include "support/allocation_failure.h"
#include "support/logger_capture.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace {

using support::AllocationFailure;
using support::LoggerCapture;
using support::Trace;
using testing::Contains;
using testing::IsEmpty;
using testing::Le;
using testing::SizeIs;
using win::ByteBuffer;
using win::WinAPIWrapper;

using Sizes = std::vector<DWORD>;

struct GrowingCall {
    const char* name;
    DWORD code;
    std::function<bool(const UniqueFile& device, ByteBuffer& buffer, DWORD& error)> call;
    std::function<ByteBuffer(std::size_t bytes)> answer;  // a complete answer of at least 200 bytes
    std::string failure_line;                             // without the error code
};

void PrintTo(const GrowingCall& call, std::ostream* out) {
    *out << call.name;
}

const std::vector<GrowingCall>& GrowingCalls() {
    static const std::vector<GrowingCall> calls = {
        {"GetDriveGeometryEx", 0x700A0,
         [](const UniqueFile& device, ByteBuffer& buffer, DWORD& error) {
             return WinAPIWrapper::GetDriveGeometryEx(device, 3, buffer, error);
         },
         [](std::size_t bytes) { return GeometryBytes(bytes - 56); },
         "WinAPIWrapper::GetDriveGeometryEx on drive 3 error="},
        {"GetDriveLayoutEx", 0x70050,
         [](const UniqueFile& device, ByteBuffer& buffer, DWORD& error) {
             return WinAPIWrapper::GetDriveLayoutEx(device, 3, buffer, error);
         },
         [](std::size_t bytes) {
             ByteBuffer whole = LayoutBytes(1, 1);
             whole.resize(bytes);
             return whole;
         },
         "WinAPIWrapper::GetDriveLayoutEx on drive 3 error="},
        {"GetVolumeDiskExtents", 0x560000,
         [](const UniqueFile& device, ByteBuffer& buffer, DWORD& error) {
             return WinAPIWrapper::GetVolumeDiskExtents(device, L"the volume", buffer, error);
         },
         [](std::size_t bytes) {
             ByteBuffer whole = ExtentBytes(2, 2);
             whole.resize(bytes);
             return whole;
         },
         "WinAPIWrapper::GetVolumeDiskExtents on volume the volume error="},
    };
    return calls;
}

class GrowingControl : public testing::TestWithParam<GrowingCall> {
protected:
    ~GrowingControl() override { device_.Release(); }

    bool Call() {
        error_ = 0xDEAD;
        return GetParam().call(device_, buffer_, error_);
    }
    ByteBuffer AnswerOf(std::size_t bytes) const { return GetParam().answer(bytes); }

    UniqueFile device_{reinterpret_cast<HANDLE>(0x60)};
    ByteBuffer buffer_;
    DWORD error_ = 0;
    LoggerCapture log_;
};

TEST_P(GrowingControl, EmptyBuffer_StartsWith512BytesAndNoInput) {
    ControlSystem system(AnswerOf(200));

    EXPECT_TRUE(Call());

    EXPECT_EQ(error_, 0U);
    const ControlSystem::Request expected = {
        reinterpret_cast<HANDLE>(0x60), GetParam().code, {}, true, 512, false};
    EXPECT_TRUE((system.requests == std::vector<ControlSystem::Request>{expected}));
}

TEST_P(GrowingControl, Success_TrimsTheBufferToTheBytesThatCameBack) {
    const ControlSystem system(AnswerOf(200));

    EXPECT_TRUE(Call());

    EXPECT_EQ(buffer_, system.answer);
}

TEST_P(GrowingControl, CallersBuffer_IsTheFirstSizeWhereItExceeds512Bytes) {
    for (const auto& [given, asked] :
         {std::pair{1U, 512U}, {511U, 512U}, {512U, 512U}, {513U, 513U}, {4000U, 4000U}}) {
        const ControlSystem system(AnswerOf(200));
        buffer_.assign(given, 0xFF);
        EXPECT_TRUE(Call());
        EXPECT_EQ(system.output_sizes(), (Sizes{asked})) << given;
        EXPECT_THAT(buffer_, SizeIs(200));
    }
}

TEST_P(GrowingControl, AnswerOfAnyLength_IsReadByDoubling) {
    const std::vector<std::pair<std::size_t, Sizes>> table = {{511, {512}},
                                                              {512, {512}},
                                                              {513, {512, 1024}},
                                                              {1024, {512, 1024}},
                                                              {1025, {512, 1024, 2048}},
                                                              {9000, {512, 1024, 2048, 4096, 8192, 16384}}};
    for (const auto& [length, sizes] : table) {
        const ControlSystem system(AnswerOf(length));
        buffer_.clear();
        EXPECT_TRUE(Call());
        EXPECT_EQ(system.output_sizes(), sizes);
        EXPECT_EQ(buffer_, system.answer);
    }
}

TEST_P(GrowingControl, AnotherError_EmptiesTheBufferAtOnce) {
    for (const DWORD code : {DWORD{ERROR_MORE_DATA}, DWORD{ERROR_NOT_READY}, DWORD{ERROR_INVALID_FUNCTION}}) {
        ControlSystem system(AnswerOf(200));
        system.always_fails_with = code;
        buffer_.assign(600, 0xFF);
        log_.Clear();

        EXPECT_FALSE(Call());

        EXPECT_EQ(error_, code);
        EXPECT_THAT(buffer_, IsEmpty());
        EXPECT_THAT(system.requests, SizeIs(1));
        EXPECT_THAT(log_.all(), Contains(Trace(GetParam().failure_line + std::to_string(code))));
    }
}

TEST_P(GrowingControl, SystemThatAsksForMoreForEver_IsGivenUp) {
    ControlSystem system;
    system.always_fails_with = ERROR_INSUFFICIENT_BUFFER;

    EXPECT_FALSE(Call());

    EXPECT_EQ(error_, DWORD{ERROR_INSUFFICIENT_BUFFER});
    EXPECT_THAT(buffer_, IsEmpty());
    EXPECT_THAT(system.requests.size(), Le(32U));
    EXPECT_THAT(log_.all(), Contains(Trace(GetParam().failure_line + "122")));
}

TEST_P(GrowingControl, SuccessWithAMisleadingLastError_IsSuccess) {
    ControlSystem system(AnswerOf(200));
    system.last_error_on_success = ERROR_INSUFFICIENT_BUFFER;

    EXPECT_TRUE(Call());

    EXPECT_EQ(error_, 0U);
    EXPECT_THAT(system.requests, SizeIs(1));
}

TEST_P(GrowingControl, MoreBytesClaimedThanTheBufferHolds_IsAnInvalidAnswer) {
    for (const DWORD claimed : {513U, 0x7FFFFFFFU, 0xFFFFFFFFU}) {
        ControlSystem system(AnswerOf(200));
        system.claimed_bytes = claimed;

        EXPECT_FALSE(Call()) << claimed;

        EXPECT_EQ(error_, DWORD{ERROR_INVALID_DATA});
        EXPECT_THAT(buffer_, IsEmpty());
    }
}

TEST_P(GrowingControl, NothingReturned_IsAnInvalidAnswer) {
    const ControlSystem system;

    EXPECT_FALSE(Call());

    EXPECT_EQ(error_, DWORD{ERROR_INVALID_DATA});
    EXPECT_THAT(buffer_, IsEmpty());
    EXPECT_THAT(log_.all(), Contains(Trace(GetParam().failure_line + "13")));
}

TEST_P(GrowingControl, AllocationFailsWhileGrowing_IsError14AndAnEmptyBuffer) {
    const ControlSystem system(AnswerOf(30000));
    {
        const AllocationFailure failing(32768);
        EXPECT_FALSE(Call());
        EXPECT_EQ(failing.hits(), 1U);
    }
    EXPECT_EQ(error_, 14U);
    EXPECT_THAT(buffer_, IsEmpty());
    EXPECT_THAT(log_.all(), Contains(Trace(GetParam().failure_line + "14")));
    EXPECT_THAT(log_.all().back().text, testing::StartsWith("Leaving function "));
}

INSTANTIATE_TEST_SUITE_P(All, GrowingControl, testing::ValuesIn(GrowingCalls()),
                         [](const auto& tested) { return std::string(tested.param.name); });

}  // namespace
