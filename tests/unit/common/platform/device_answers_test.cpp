// Inconsistent answers of devices, and the control codes with input or with an answer of fixed size.

#include "common/platform/win_api_wrapper.h"
#include "control_system.h"
#include "support/logger_capture.h"

#include <gmock/gmock.h>

#include <vector>

namespace {

using support::LoggerCapture;
using support::LogLine;
using support::Trace;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using win::ByteBuffer;
using win::WinAPIWrapper;

class DeviceAnswers : public testing::Test {
protected:
    ~DeviceAnswers() override { device_.Release(); }

    // All lines except the wrapper's own entering and leaving lines.
    std::vector<LogLine> Inner() const { return {log_.all().begin() + 1, log_.all().end() - 1}; }

    UniqueFile device_{reinterpret_cast<HANDLE>(0x60)};
    const UniqueFile no_device_;
    ByteBuffer buffer_;
    DWORD error_ = 0xDEAD;
    LoggerCapture log_;
};

struct Counted {
    DWORD claimed;
    std::size_t held;
    bool whole;
};

class Layouts : public DeviceAnswers, public testing::WithParamInterface<Counted> {};

TEST_P(Layouts, GetDriveLayoutEx_CountOfPartitions_IsComparedWithTheBytes) {
    const ControlSystem system(LayoutBytes(GetParam().claimed, GetParam().held));

    EXPECT_EQ(WinAPIWrapper::GetDriveLayoutEx(device_, 0, buffer_, error_), GetParam().whole);

    EXPECT_EQ(error_, GetParam().whole ? 0U : DWORD{ERROR_INVALID_DATA});
    EXPECT_EQ(buffer_, GetParam().whole ? system.answer : ByteBuffer());
}

INSTANTIATE_TEST_SUITE_P(Table, Layouts,
                         testing::Values(Counted{0, 0, true}, Counted{1, 1, true}, Counted{128, 128, true},
                                         Counted{1, 4, true}, Counted{1, 0, false}, Counted{5, 4, false},
                                         Counted{0xFFFFFFFF, 4, false}, Counted{0x80000000, 1, false},
                                         Counted{29826162, 4, false}));  // times 144 is 32 modulo 2^32

class Extents : public DeviceAnswers, public testing::WithParamInterface<Counted> {};

TEST_P(Extents, GetVolumeDiskExtents_CountOfExtents_IsComparedWithTheBytes) {
    const ControlSystem system(ExtentBytes(GetParam().claimed, GetParam().held));

    EXPECT_EQ(WinAPIWrapper::GetVolumeDiskExtents(device_, L"v", buffer_, error_), GetParam().whole);

    EXPECT_EQ(error_, GetParam().whole ? 0U : DWORD{ERROR_INVALID_DATA});
    EXPECT_EQ(buffer_, GetParam().whole ? system.answer : ByteBuffer());
}

INSTANTIATE_TEST_SUITE_P(Table, Extents,
                         testing::Values(Counted{0, 0, true}, Counted{1, 1, true}, Counted{30, 30, true},
                                         Counted{1, 2, true}, Counted{1, 0, false}, Counted{3, 2, false},
                                         Counted{0xFFFFFFFF, 2, false}, Counted{0xAAAAAAAB, 1, false}));

TEST_F(DeviceAnswers, GetDriveLayoutEx_HeaderCutShort_IsInvalid) {
    for (const std::size_t bytes : {1U, 7U, 8U, 47U}) {
        ControlSystem system(LayoutBytes(0, 0));
        system.answer.resize(bytes);
        EXPECT_FALSE(WinAPIWrapper::GetDriveLayoutEx(device_, 0, buffer_, error_)) << bytes;
        EXPECT_EQ(error_, DWORD{ERROR_INVALID_DATA});
    }
}

TEST_F(DeviceAnswers, GetVolumeDiskExtents_HeaderCutShort_IsInvalid) {
    for (const std::size_t bytes : {1U, 4U, 7U}) {
        ControlSystem system(ExtentBytes(0, 0));
        system.answer.resize(bytes);
        EXPECT_FALSE(WinAPIWrapper::GetVolumeDiskExtents(device_, L"v", buffer_, error_)) << bytes;
        EXPECT_EQ(error_, DWORD{ERROR_INVALID_DATA});
    }
}

TEST_F(DeviceAnswers, GetDriveGeometryEx_CutShort_IsInvalid) {
    for (const std::size_t bytes : {24U, 32U, 55U}) {
        ControlSystem system(GeometryBytes(0));
        system.answer.resize(bytes);
        EXPECT_FALSE(WinAPIWrapper::GetDriveGeometryEx(device_, 0, buffer_, error_)) << bytes;
        EXPECT_EQ(error_, DWORD{ERROR_INVALID_DATA});
    }
}

TEST_F(DeviceAnswers, GetDriveGeometryEx_WithoutDetectionRecord_IsWhole) {
    const ControlSystem system(GeometryBytes(0));
    EXPECT_TRUE(WinAPIWrapper::GetDriveGeometryEx(device_, 0, buffer_, error_));
    EXPECT_THAT(buffer_, SizeIs(56));
}

TEST_F(DeviceAnswers, GetDriveLayoutEx_NoHandle_IsABadParameter) {
    const ControlSystem system;
    buffer_.assign(600, 1);

    EXPECT_FALSE(WinAPIWrapper::GetDriveLayoutEx(no_device_, 5, buffer_, error_));

    EXPECT_EQ(error_, DWORD{ERROR_INVALID_PARAMETER});
    EXPECT_THAT(system.requests, IsEmpty());
    EXPECT_THAT(Inner(),
                ElementsAre(Trace("WinAPIWrapper::GetDriveLayoutEx on drive index 5, internal error, "
                                  "bad parameter")));
}

TEST_F(DeviceAnswers, GetDriveLayoutEx_NoIndex_IsABadParameter) {
    const ControlSystem system;

    EXPECT_FALSE(WinAPIWrapper::GetDriveLayoutEx(device_, 0xFFFFFFFF, buffer_, error_));

    EXPECT_EQ(error_, DWORD{ERROR_INVALID_PARAMETER});
    EXPECT_THAT(system.requests, IsEmpty());
    EXPECT_THAT(Inner(),
                ElementsAre(Trace("WinAPIWrapper::GetDriveLayoutEx on drive index -1, internal error, "
                                  "bad parameter")));
}

TEST_F(DeviceAnswers, GetDiskLengthInformation_Success_GivesThe64BitLength) {
    GET_LENGTH_INFORMATION information{};
    information.Length.QuadPart = 0x0123456789ABCDEF;
    const ControlSystem system(BytesOf(information));
    std::int64_t length = 0;

    EXPECT_TRUE(WinAPIWrapper::GetDiskLengthInformation(device_, L"name", length, error_));

    EXPECT_EQ(length, 0x0123456789ABCDEF);
    const ControlSystem::Request expected = {reinterpret_cast<HANDLE>(0x60), 0x7405C, {}, true, 8, false};
    EXPECT_TRUE((system.requests == std::vector<ControlSystem::Request>{expected}));
}

TEST_F(DeviceAnswers, GetDiskLengthInformation_TooSmallError_IsNotRetried) {
    ControlSystem system;
    system.always_fails_with = ERROR_INSUFFICIENT_BUFFER;
    std::int64_t length = 0;

    EXPECT_FALSE(WinAPIWrapper::GetDiskLengthInformation(device_, L"name", length, error_));

    EXPECT_EQ(error_, DWORD{ERROR_INSUFFICIENT_BUFFER});
    EXPECT_THAT(system.requests, SizeIs(1));
}

TEST_F(DeviceAnswers, GetDiskLengthInformation_AnotherLengthClaimed_IsInvalid) {
    for (const DWORD claimed : {4U, 16U}) {
        ControlSystem system(BytesOf(GET_LENGTH_INFORMATION{}));
        system.claimed_bytes = claimed;
        std::int64_t length = -1;
        EXPECT_FALSE(WinAPIWrapper::GetDiskLengthInformation(device_, L"name", length, error_));
        EXPECT_EQ(error_, DWORD{ERROR_INVALID_DATA});
        EXPECT_EQ(length, -1);
    }
}

TEST_F(DeviceAnswers, CreateDisk_NoHandle_IsABadParameter) {
    const ControlSystem system;
    CREATE_DISK description{};

    EXPECT_FALSE(WinAPIWrapper::CreateDisk(no_device_, description, error_));

    EXPECT_NE(error_, 0U);
    EXPECT_THAT(system.requests, IsEmpty());
    EXPECT_THAT(Inner(),
                ElementsAre(Trace("win::WinAPIWrapper::CreateDisk - internal error, bad parameter")));
}

TEST_F(DeviceAnswers, UpdateDiskProperties_Success_SendsTheCodeAlone) {
    const ControlSystem system;

    EXPECT_TRUE(WinAPIWrapper::UpdateDiskProperties(device_, error_));

    const ControlSystem::Request expected = {reinterpret_cast<HANDLE>(0x60), 0x70140, {}, false, 0, false};
    EXPECT_TRUE((system.requests == std::vector<ControlSystem::Request>{expected}));
}

TEST_F(DeviceAnswers, UpdateDiskProperties_NoHandle_IsABadParameterAndTheLastError) {
    const ControlSystem system;
    SetLastError(0);

    EXPECT_FALSE(WinAPIWrapper::UpdateDiskProperties(no_device_, error_));

    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_PARAMETER});
    EXPECT_EQ(error_, DWORD{ERROR_INVALID_PARAMETER});
    EXPECT_THAT(system.requests, IsEmpty());
    EXPECT_THAT(
        Inner(),
        ElementsAre(Trace("win::WinAPIWrapper::UpdateDiskProperties - internal error, bad parameter")));
}

TEST_F(DeviceAnswers, FlushFileBuffers_InvalidFunction_IsReportedForTheCallerToAccept) {
    const support::Stub flush(Kernel32DLL::Get().FlushFileBuffers, [](HANDLE) -> BOOL {
        SetLastError(ERROR_INVALID_FUNCTION);
        return FALSE;
    });

    EXPECT_FALSE(WinAPIWrapper::FlushFileBuffers(device_, error_));

    EXPECT_EQ(error_, DWORD{ERROR_INVALID_FUNCTION});
}

}  // namespace
