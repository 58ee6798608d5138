#include "common/platform/nt_api_wrapper.h"

#include "support/logger_capture.h"
#include "support/stub.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace {

using support::Error;
using support::LoggerCapture;
using support::ScopedValue;
using support::Stub;
using support::Trace;
using testing::ElementsAre;
using testing::IsEmpty;
using win::DirectoryEntry;
using win::NtAPIWrapper;

HANDLE Handle(std::uintptr_t number) {
    return reinterpret_cast<HANDLE>(number);
}

class NtApi : public testing::Test {
protected:
    ~NtApi() override { directory_.Release(); }

    LoggerCapture log_;
    UniqueDirectory directory_;
    DWORD error_ = 0xDEAD;
};

TEST_F(NtApi, RtlInitUnicodeString_Text_CountsBytesWithAndWithoutTheTerminator) {
    const std::wstring text = L"\\Device";
    UNICODE_STRING counted{};

    win::NT_API::RtlInitUnicodeString(counted, text.c_str(), text.size());

    EXPECT_EQ(counted.Length, 14);
    EXPECT_EQ(counted.MaximumLength, 16);
    EXPECT_EQ(counted.Buffer, text.c_str());
    EXPECT_THAT(log_.Told(), IsEmpty());
}

TEST_F(NtApi, RtlInitUnicodeString_EmptyText_HasRoomForTheTerminator) {
    UNICODE_STRING counted{};
    win::NT_API::RtlInitUnicodeString(counted, L"", 0);
    EXPECT_EQ(counted.Length, 0);
    EXPECT_EQ(counted.MaximumLength, 2);
}

TEST_F(NtApi, RtlInitUnicodeString_NullText_LogsAndLeavesItEmpty) {
    UNICODE_STRING counted{4, 6, const_cast<wchar_t*>(L"xx")};

    win::NT_API::RtlInitUnicodeString(counted, nullptr, 10);

    EXPECT_EQ(counted.Length, 0);
    EXPECT_EQ(counted.MaximumLength, 0);
    EXPECT_EQ(counted.Buffer, nullptr);
    EXPECT_THAT(log_.Told(), ElementsAre(Error("win::NT_API::RtlInitUnicodeString - invalid parameter")));
}

TEST_F(NtApi, RtlInitUnicodeString_TextLongerThanItsCapacity_IsReadNoFurtherAndLeftEmpty) {
    UNICODE_STRING counted{};

    EXPECT_NO_THROW(win::NT_API::RtlInitUnicodeString(counted, L"012345", 5));

    EXPECT_EQ(counted.Length, 0);
    EXPECT_EQ(counted.Buffer, nullptr);
}

// The sizes are 16-bit numbers of bytes, and the larger one counts the terminator.
TEST_F(NtApi, RtlInitUnicodeString_LongestText_Fits) {
    constexpr std::size_t kLongest = 32766;
    const std::wstring longest(kLongest, L'x');
    UNICODE_STRING counted{};

    win::NT_API::RtlInitUnicodeString(counted, longest.c_str(), longest.size());

    EXPECT_EQ(counted.Length, 65532);
    EXPECT_EQ(counted.MaximumLength, 65534);

    const std::wstring longer(kLongest + 1, L'x');
    win::NT_API::RtlInitUnicodeString(counted, longer.c_str(), longer.size());
    EXPECT_EQ(counted.Buffer, nullptr);
}

TEST_F(NtApi, OpenDirectoryObject_PathTooLongForACountedString_FailsWithoutAsking) {
    bool asked = false;
    const Stub open(NtDLL::Get().ZwOpenDirectoryObject,
                    [&](HANDLE*, ACCESS_MASK, OBJECT_ATTRIBUTES*) -> NTSTATUS {
                        asked = true;
                        return 0;
                    });

    EXPECT_FALSE(NtAPIWrapper::OpenDirectoryObject(std::wstring(40000, L'x'), directory_, error_));

    EXPECT_NE(error_, 0U);
    EXPECT_FALSE(asked);
}

TEST_F(NtApi, OpenDirectoryObject_Success_AsksForTheNameAlone) {
    std::wstring name;
    OBJECT_ATTRIBUTES asked{};
    ACCESS_MASK access = 0;
    USHORT maximum = 0;
    const Stub open(NtDLL::Get().ZwOpenDirectoryObject,
                    [&](HANDLE* directory, ACCESS_MASK wanted, OBJECT_ATTRIBUTES* attributes) -> NTSTATUS {
                        asked = *attributes;
                        access = wanted;
                        name.assign(attributes->ObjectName->Buffer, attributes->ObjectName->Length / 2);
                        maximum = attributes->ObjectName->MaximumLength;
                        *directory = Handle(0x70);
                        return 0;
                    });

    EXPECT_TRUE(NtAPIWrapper::OpenDirectoryObject(L"\\GLOBAL??", directory_, error_));

    EXPECT_EQ(error_, 0U);
    EXPECT_EQ(directory_.get(), Handle(0x70));
    EXPECT_EQ(access, 1U);
    EXPECT_EQ(name, L"\\GLOBAL??");
    EXPECT_EQ(maximum, 20);
    EXPECT_EQ(asked.Length, 48U);
    EXPECT_EQ(asked.Attributes, 0x40U);
    EXPECT_EQ(asked.RootDirectory, nullptr);
    EXPECT_EQ(asked.SecurityDescriptor, nullptr);
    EXPECT_EQ(asked.SecurityQualityOfService, nullptr);
    EXPECT_THAT(log_.Told(), IsEmpty());
}

class NtApiStatuses : public NtApi,
                      public testing::WithParamInterface<std::pair<std::uint32_t, const char*>> {
protected:
    NTSTATUS status() const { return static_cast<NTSTATUS>(GetParam().first); }
    std::string Line(const std::string& function) const {
        return function + " - failed status=" + GetParam().second;
    }
};

INSTANTIATE_TEST_SUITE_P(NonZero, NtApiStatuses,
                         testing::Values(std::pair{0xC0000034U, "c0000034"},
                                         std::pair{0xC0000022U, "c0000022"}, std::pair{0x00000105U, "105"}));

TEST_P(NtApiStatuses, OpenDirectoryObject_OtherStatus_IsAGeneralFailure) {
    const Stub open(NtDLL::Get().ZwOpenDirectoryObject,
                    [&](HANDLE*, ACCESS_MASK, OBJECT_ATTRIBUTES*) -> NTSTATUS { return status(); });

    EXPECT_FALSE(NtAPIWrapper::OpenDirectoryObject(L"\\Nowhere", directory_, error_));

    EXPECT_EQ(error_, DWORD{ERROR_GEN_FAILURE});
    EXPECT_FALSE(directory_);
    EXPECT_THAT(log_.Told(), ElementsAre(Trace(Line("win::NtAPIWrapper::OpenDirectoryObject"))));
}

TEST_P(NtApiStatuses, QueryDirectoryObject_OtherStatus_IsAGeneralFailure) {
    const Stub query(
        NtDLL::Get().ZwQueryDirectoryObject,
        [&](HANDLE, void*, ULONG, BOOLEAN, BOOLEAN, ULONG*, ULONG*) -> NTSTATUS { return status(); });
    win::ByteBuffer buffer;
    DirectoryEntry entry;
    ULONG context = 0;

    EXPECT_FALSE(NtAPIWrapper::QueryDirectoryObject(directory_, true, context, buffer, entry, error_));

    EXPECT_EQ(error_, DWORD{ERROR_GEN_FAILURE});
    EXPECT_THAT(log_.Told(), ElementsAre(Trace(Line("win::NtAPIWrapper::QueryDirectoryObject"))));
}

TEST_P(NtApiStatuses, CloseObject_OtherStatus_IsAGeneralFailure) {
    const Stub close(NtDLL::Get().ZwClose, [&](HANDLE) -> NTSTATUS { return status(); });
    directory_.Reset(Handle(0x70));

    EXPECT_FALSE(NtAPIWrapper::CloseObject(directory_, error_));

    EXPECT_EQ(error_, DWORD{ERROR_GEN_FAILURE});
    EXPECT_FALSE(directory_);
    EXPECT_THAT(log_.Told(), ElementsAre(Trace(Line("win::NtAPIWrapper::CloseObject"))));
}

TEST_F(NtApi, CloseObject_Success_ClosesOnce) {
    std::vector<HANDLE> closed;
    const Stub close(NtDLL::Get().ZwClose, [&](HANDLE handle) -> NTSTATUS {
        closed.push_back(handle);
        return 0;
    });
    {
        UniqueDirectory directory(Handle(0x70));
        EXPECT_TRUE(NtAPIWrapper::CloseObject(directory, error_));
    }
    EXPECT_EQ(error_, 0U);
    EXPECT_THAT(closed, ElementsAre(Handle(0x70)));
    EXPECT_THAT(log_.Told(), IsEmpty());
}

TEST_F(NtApi, AllOperations_FunctionsAreNotBound_FailWithoutACrash) {
    NtDLL& table = NtDLL::Get();
    const ScopedValue no_open(table.ZwOpenDirectoryObject, NtDLL::ZwOpenDirectoryObjectFunction{nullptr});
    const ScopedValue no_query(table.ZwQueryDirectoryObject, NtDLL::ZwQueryDirectoryObjectFunction{nullptr});
    const ScopedValue no_close(table.ZwClose, NtDLL::ZwCloseFunction{nullptr});
    win::ByteBuffer buffer;
    DirectoryEntry entry;
    ULONG context = 0;

    EXPECT_FALSE(NtAPIWrapper::OpenDirectoryObject(L"\\Device", directory_, error_));
    EXPECT_EQ(error_, DWORD{ERROR_GEN_FAILURE});
    EXPECT_FALSE(NtAPIWrapper::QueryDirectoryObject(directory_, true, context, buffer, entry, error_));
    EXPECT_EQ(error_, DWORD{ERROR_GEN_FAILURE});
    directory_.Reset(Handle(0x70));
    EXPECT_FALSE(NtAPIWrapper::CloseObject(directory_, error_));
    EXPECT_EQ(error_, DWORD{ERROR_GEN_FAILURE});
}

}  // namespace
