// NtAPIWrapper::QueryDirectoryObject: one entry per call, with a growing buffer.

#include "common/platform/nt_api_wrapper.h"
#include "support/allocation_failure.h"
#include "support/logger_capture.h"
#include "support/stub.h"

#include <gmock/gmock.h>

#include <cstring>
#include <functional>
#include <string>
#include <vector>

namespace {

using support::AllocationFailure;
using support::LoggerCapture;
using support::Trace;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Le;
using testing::SizeIs;
using win::DirectoryEntry;
using win::NtAPIWrapper;

constexpr auto kTooSmall = static_cast<NTSTATUS>(0xC0000023);
constexpr auto kNoMoreEntries = static_cast<NTSTATUS>(0x8000001A);

struct Record {
    UNICODE_STRING name;
    UNICODE_STRING type;
};

// A directory with one entry of `needed` bytes. `damage` may corrupt the returned record.
class OneEntryDirectory {
public:
    explicit OneEntryDirectory(ULONG needed = 100)
        : stub_(NtDLL::Get().ZwQueryDirectoryObject,
                [this, needed](HANDLE handle, void* buffer, ULONG size, BOOLEAN single, BOOLEAN restart,
                               ULONG* context, ULONG* returned) -> NTSTATUS {
                    handles.push_back(handle);
                    sizes.push_back(size);
                    singles.push_back(single);
                    restarts.push_back(restart);
                    contexts.push_back(*context);
                    if (size < needed) {
                        *returned = needed;
                        return kTooSmall;
                    }
                    ++*context;
                    *returned = needed;
                    Put(static_cast<unsigned char*>(buffer), size);
                    return 0;
                }) {}

    std::vector<HANDLE> handles;
    std::vector<ULONG> sizes;
    std::vector<int> singles;
    std::vector<int> restarts;
    std::vector<ULONG> contexts;
    std::function<void(Record& record, unsigned char* buffer, ULONG size)> damage;

private:
    void Put(unsigned char* buffer, ULONG size) const {
        const std::wstring name = L"Volume{1}";
        const std::wstring type = L"SymbolicLink";
        auto* const texts = reinterpret_cast<wchar_t*>(buffer + sizeof(Record));
        name.copy(texts, name.size());
        type.copy(texts + name.size(), type.size());
        const auto name_bytes = static_cast<USHORT>(name.size() * 2);
        const auto type_bytes = static_cast<USHORT>(type.size() * 2);
        Record record = {{name_bytes, name_bytes, texts}, {type_bytes, type_bytes, texts + name.size()}};
        if (damage) {
            damage(record, buffer, size);
        }
        std::memcpy(buffer, &record, sizeof(record));
    }

    support::Stub<NtDLL::ZwQueryDirectoryObjectFunction,
                  std::function<std::remove_pointer_t<NtDLL::ZwQueryDirectoryObjectFunction>>>
        stub_;
};

class QueryDirectory : public testing::Test {
protected:
    ~QueryDirectory() override { directory_.Release(); }

    bool Query(bool restart = false) {
        error_ = 0xDEAD;
        return NtAPIWrapper::QueryDirectoryObject(directory_, restart, context_, buffer_, entry_, error_);
    }

    LoggerCapture log_;
    UniqueDirectory directory_{reinterpret_cast<HANDLE>(0x70)};
    ULONG context_ = 7;
    win::ByteBuffer buffer_;
    DirectoryEntry entry_;
    DWORD error_ = 0;
};

TEST_F(QueryDirectory, EntryThatFits_IsGivenAndTheContextCarriedForward) {
    const OneEntryDirectory system;

    EXPECT_TRUE(Query());

    EXPECT_EQ(error_, 0U);
    EXPECT_EQ(entry_.name, L"Volume{1}");
    EXPECT_EQ(entry_.type_name, L"SymbolicLink");
    EXPECT_EQ(context_, 8U);
    EXPECT_THAT(system.handles, ElementsAre(reinterpret_cast<HANDLE>(0x70)));
    EXPECT_THAT(system.contexts, ElementsAre(7U));
    EXPECT_THAT(log_.Told(), IsEmpty());
}

TEST_F(QueryDirectory, AnyCall_AsksForASingleEntryWithTheCallersRestartFlag) {
    const OneEntryDirectory system;

    Query(true);
    Query(false);

    EXPECT_THAT(system.singles, ElementsAre(TRUE, TRUE));
    EXPECT_THAT(system.restarts, ElementsAre(TRUE, FALSE));
}

TEST_F(QueryDirectory, CallersBuffer_IsTheFirstSizeFrom260BytesOn) {
    for (const auto& [given, asked] :
         {std::pair{0U, 260U}, {259U, 260U}, {260U, 260U}, {261U, 261U}, {1000U, 1000U}}) {
        const OneEntryDirectory system;
        buffer_.assign(given, 0xFF);
        EXPECT_TRUE(Query());
        EXPECT_THAT(system.sizes, ElementsAre(asked));
    }
}

TEST_F(QueryDirectory, EntryThatDoesNotFit_IsReadByDoublingWithALineEach) {
    const OneEntryDirectory system(1041);

    EXPECT_TRUE(Query(true));

    EXPECT_THAT(system.sizes, ElementsAre(260U, 520U, 1040U, 2080U));
    EXPECT_THAT(system.contexts, testing::Each(7U));
    EXPECT_THAT(system.restarts, testing::Each(TRUE));
    EXPECT_THAT(log_.Told(), ElementsAre(Trace("Buffer too small - size=260, retry..."),
                                         Trace("Buffer too small - size=520, retry..."),
                                         Trace("Buffer too small - size=1040, retry...")));
    EXPECT_EQ(entry_.name, L"Volume{1}");
}

TEST_F(QueryDirectory, EndOfTheListing_IsError18WithoutALine) {
    const support::Stub query(
        NtDLL::Get().ZwQueryDirectoryObject,
        [](HANDLE, void*, ULONG, BOOLEAN, BOOLEAN, ULONG*, ULONG*) -> NTSTATUS { return kNoMoreEntries; });

    EXPECT_FALSE(Query());

    EXPECT_EQ(error_, 18U);
    EXPECT_THAT(log_.Told(), IsEmpty());
    EXPECT_THAT(log_.all(), SizeIs(2)) << log_;
}

TEST_F(QueryDirectory, SystemThatAsksForMoreForEver_IsGivenUp) {
    const OneEntryDirectory system(0xFFFFFFFF);

    EXPECT_FALSE(Query());

    EXPECT_NE(error_, 0U);
    EXPECT_THAT(system.sizes.size(), Le(32U));
}

TEST_F(QueryDirectory, AllocationFailsWhileGrowing_IsError14) {
    const OneEntryDirectory system(40000);
    {
        const AllocationFailure failing(30000);
        EXPECT_FALSE(Query());
        EXPECT_EQ(failing.hits(), 1U);
    }
    EXPECT_EQ(error_, 14U);
}

struct Damage {
    const char* name;
    void (*damage)(Record& record, unsigned char* buffer, ULONG size);
};

class DamagedEntries : public QueryDirectory, public testing::WithParamInterface<Damage> {};

TEST_P(DamagedEntries, TextOutsideTheBuffer_IsAnInvalidAnswer) {
    OneEntryDirectory system;
    system.damage = GetParam().damage;

    EXPECT_FALSE(Query());

    EXPECT_EQ(error_, DWORD{ERROR_INVALID_DATA});
}

wchar_t* At(unsigned char* buffer, std::ptrdiff_t offset) {
    return reinterpret_cast<wchar_t*>(reinterpret_cast<std::uintptr_t>(buffer) +
                                      static_cast<std::uintptr_t>(offset));
}

INSTANTIATE_TEST_SUITE_P(
    Table, DamagedEntries,
    testing::Values(
        Damage{"NullName", [](Record& record, unsigned char*, ULONG) { record.name.Buffer = nullptr; }},
        Damage{"NameBefore",
               [](Record& record, unsigned char* buffer, ULONG) { record.name.Buffer = At(buffer, -2); }},
        Damage{"NameBehind", [](Record& record, unsigned char* buffer,
                                ULONG size) { record.name.Buffer = At(buffer, size); }},
        Damage{"NameRunsOut", [](Record& record, unsigned char* buffer,
                                 ULONG size) { record.name.Buffer = At(buffer, size - 16); }},
        Damage{"NameTooLong", [](Record& record, unsigned char*, ULONG) { record.name.Length = 0xFFFE; }},
        Damage{"NameAtTheEndOfMemory",
               [](Record& record, unsigned char*, ULONG) { record.name.Buffer = At(nullptr, -2); }},
        Damage{"TypeElsewhere",
               [](Record& record, unsigned char*, ULONG) { record.type.Buffer = At(nullptr, 64); }},
        Damage{"TypeTooLong", [](Record& record, unsigned char*, ULONG) { record.type.Length = 0xFFFE; }}),
    [](const auto& tested) { return std::string(tested.param.name); });

TEST_F(QueryDirectory, TextThatEndsWithTheBuffer_IsTaken) {
    OneEntryDirectory system;
    system.damage = [](Record& record, unsigned char* buffer, ULONG size) {
        record.name.Buffer = At(buffer, size - record.name.Length);
        std::wstring(L"EndOfAll!").copy(record.name.Buffer, 9);
    };

    EXPECT_TRUE(Query());

    EXPECT_EQ(entry_.name, L"EndOfAll!");
}

TEST_F(QueryDirectory, EmptyTexts_AreEmptyWhereverTheyPoint) {
    OneEntryDirectory system;
    system.damage = [](Record& record, unsigned char*, ULONG) {
        record = {{0, 0, nullptr}, {0, 0, At(nullptr, -2)}};
    };
    entry_ = {L"before", L"before"};

    EXPECT_TRUE(Query());

    EXPECT_EQ(entry_.name, L"");
    EXPECT_EQ(entry_.type_name, L"");
}

}  // namespace
