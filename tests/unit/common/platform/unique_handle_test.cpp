#include "common/platform/unique_handle.h"

#include "support/stub.h"

#include <gmock/gmock.h>

#include <utility>
#include <vector>

namespace {

using support::ScopedValue;
using support::Stub;
using testing::ElementsAre;
using testing::IsEmpty;

HANDLE Handle(std::uintptr_t number) {
    return reinterpret_cast<HANDLE>(number);
}

// A handle type that records what is closed and changes the last error, as a real close may do.
struct RecordedKind {
    static inline std::vector<HANDLE> closed;

    static HANDLE Invalid() { return nullptr; }
    static void Close(HANDLE handle) {
        closed.push_back(handle);
        SetLastError(777);
    }
};
using Recorded = UniqueHandle<RecordedKind>;

class UniqueHandleTest : public testing::Test {
protected:
    void SetUp() override { RecordedKind::closed.clear(); }

    const std::vector<HANDLE>& closed() const { return RecordedKind::closed; }
};

TEST_F(UniqueHandleTest, Destruction_HoldingAHandle_ClosesItOnce) {
    { const Recorded handle(Handle(16)); }
    EXPECT_THAT(closed(), ElementsAre(Handle(16)));
}

TEST_F(UniqueHandleTest, Destruction_HoldingNothing_ClosesNothing) {
    { const Recorded handle; }
    EXPECT_THAT(closed(), IsEmpty());
}

TEST_F(UniqueHandleTest, Destruction_HoldingAHandle_KeepsTheLastError) {
    SetLastError(123);
    { const Recorded handle(Handle(16)); }
    EXPECT_EQ(GetLastError(), 123U);
}

TEST_F(UniqueHandleTest, Reset_ToAnother_ClosesTheFirstAndKeepsTheLastError) {
    Recorded handle(Handle(16));
    SetLastError(123);

    handle.Reset(Handle(20));

    EXPECT_EQ(GetLastError(), 123U);
    EXPECT_THAT(closed(), ElementsAre(Handle(16)));
    EXPECT_EQ(handle.get(), Handle(20));
}

TEST_F(UniqueHandleTest, Release_HoldingAHandle_GivesItUpUnclosed) {
    Recorded handle(Handle(16));

    EXPECT_EQ(handle.Release(), Handle(16));

    EXPECT_FALSE(handle);
    EXPECT_THAT(closed(), IsEmpty());
}

TEST_F(UniqueHandleTest, Move_Construction_TakesTheHandleOver) {
    {
        Recorded from(Handle(16));
        const Recorded to(std::move(from));
        EXPECT_EQ(to.get(), Handle(16));
        EXPECT_FALSE(from);  // NOLINT(bugprone-use-after-move): the moved-from state is tested
    }
    EXPECT_THAT(closed(), ElementsAre(Handle(16)));
}

TEST_F(UniqueHandleTest, Move_Assignment_ClosesWhatWasHeld) {
    {
        Recorded from(Handle(16));
        Recorded to(Handle(20));
        to = std::move(from);
        EXPECT_THAT(closed(), ElementsAre(Handle(20)));
        EXPECT_EQ(to.get(), Handle(16));
    }
    EXPECT_THAT(closed(), ElementsAre(Handle(20), Handle(16)));
}

TEST_F(UniqueHandleTest, Move_OntoItself_KeepsTheHandle) {
    Recorded handle(Handle(16));
    Recorded& same = handle;

    handle = std::move(same);

    EXPECT_EQ(handle.get(), Handle(16));
    EXPECT_THAT(closed(), IsEmpty());
}

TEST(UniqueFileTest, Invalid_IsTheInvalidHandleValueAndNotNull) {
    EXPECT_FALSE(UniqueFile());
    EXPECT_FALSE(UniqueFile(INVALID_HANDLE_VALUE));
    EXPECT_FALSE(UniqueVolumeSearch(INVALID_HANDLE_VALUE));
    EXPECT_EQ(UniqueFile().get(), INVALID_HANDLE_VALUE);
}

TEST(UniqueDirectoryTest, Invalid_IsNull) {
    EXPECT_FALSE(UniqueDirectory());
    EXPECT_EQ(UniqueDirectory().get(), nullptr);
}

TEST(UniqueFileTest, Destruction_OfEachKind_ClosesByItsOwnFunction) {
    std::vector<std::pair<char, HANDLE>> calls;
    const Stub close(Kernel32DLL::Get().CloseHandle, [&](HANDLE handle) -> BOOL {
        calls.emplace_back('f', handle);
        return TRUE;
    });
    const Stub close_search(Kernel32DLL::Get().FindVolumeClose, [&](HANDLE handle) -> BOOL {
        calls.emplace_back('s', handle);
        return TRUE;
    });
    const Stub close_object(NtDLL::Get().ZwClose, [&](HANDLE handle) -> NTSTATUS {
        calls.emplace_back('d', handle);
        return 0;
    });

    { const UniqueFile file(Handle(16)); }
    { const UniqueVolumeSearch search(Handle(20)); }
    { const UniqueDirectory directory(Handle(24)); }

    EXPECT_THAT(calls, ElementsAre(std::pair('f', Handle(16)), std::pair('s', Handle(20)),
                                   std::pair('d', Handle(24))));
}

TEST(UniqueFileTest, Destruction_ClosingIsNotBound_IsHarmless) {
    const ScopedValue unbound(Kernel32DLL::Get().CloseHandle, decltype(Kernel32DLL::CloseHandle){nullptr});
    SetLastError(5);

    { const UniqueFile file(Handle(16)); }

    EXPECT_EQ(GetLastError(), 5U);
}

}  // namespace
