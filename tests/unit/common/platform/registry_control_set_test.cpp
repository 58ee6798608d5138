// The search for the current control set when the registry fails or memory runs out. No hive is loaded: the
// functions that open and load are replaced, and open keys and hives are counted.

#include "common/platform/registry.h"
#include "common/text/listing_bound.h"
#include "support/allocation_failure.h"
#include "support/stub.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstring>
#include <string>

namespace {

constexpr wchar_t kErrorIn[] = L"Error in CRegistry::GetCurrentControlSetName - ";

class PlayedRegistry : public CRegistry {
public:
    bool OpenKey(HKEY /*parent*/, const std::wstring& /*name*/, REGSAM /*access*/, HKEY& key) override {
        key = HKEY_CURRENT_USER;
        open_keys += key_opens ? 1 : 0;
        return key_opens;
    }
    bool CloseKey(HKEY /*key*/) override {
        --open_keys;
        return true;
    }
    bool LoadHive(HKEY /*parent*/, const std::wstring& /*subkey*/, const std::wstring& /*file*/) override {
        loaded_hives += hive_loads ? 1 : 0;
        return hive_loads;
    }
    bool UnloadHive(HKEY /*parent*/, const std::wstring& /*subkey*/) override {
        --loaded_hives;
        return true;
    }

    bool hive_loads = true;
    bool key_opens = true;
    int loaded_hives = 0;
    int open_keys = 0;
};

// The result of a search with limited memory.
struct Outcome {
    std::wstring name;
    std::wstring error;
    bool failed = false;
    std::size_t hits = 0;
};

Outcome SearchWith(CRegistry& registry, std::size_t allowed_allocations) {
    const std::wstring windows = L"C:\\Windows";
    Outcome outcome;
    const auto failing = support::AllocationFailure::After(allowed_allocations);
    try {
        outcome.name = registry.GetCurrentControlSetName(windows);
    } catch (std::wstring& error) {
        outcome.error = std::move(error);
        outcome.failed = true;
    }
    outcome.hits = failing.hits();
    return outcome;
}

// Searches with the first allocation and all later ones failing, then from the second on, and so on. Returns
// the first search in which no allocation failed.
Outcome SweepAllocations(PlayedRegistry& registry) {
    constexpr std::size_t kFarBeyondAll = 100;
    for (std::size_t allowed = 0; allowed < kFarBeyondAll; ++allowed) {
        Outcome outcome;
        EXPECT_NO_THROW(outcome = SearchWith(registry, allowed)) << allowed;
        EXPECT_EQ(registry.open_keys, 0) << allowed;
        EXPECT_EQ(registry.loaded_hives, 0) << allowed;
        if (outcome.hits == 0) {
            EXPECT_GT(allowed, 0U);
            return outcome;
        }
        EXPECT_TRUE(outcome.failed) << allowed;
    }
    ADD_FAILURE() << "every search met a failure";
    return {};
}

class RegistryControlSet : public testing::Test {
protected:
    // During its lifetime, every value of every key has this name and number. The list ends far behind the
    // limit at which a search must give up, so that a search without a limit fails its test instead of
    // hanging.
    auto Listing(const wchar_t* name, DWORD number) {
        return support::StubImport(
            "RegEnumValueW", &::RegEnumValueW,
            [this, name, number](HKEY, DWORD, LPWSTR name_buffer, LPDWORD name_length, LPDWORD, LPDWORD type,
                                 LPBYTE data, LPDWORD data_length) -> LSTATUS {
                if (++asked_ > 2 * kMostListed) {
                    return ERROR_NO_MORE_ITEMS;
                }
                *name_length = static_cast<DWORD>(std::wcslen(name));
                std::copy_n(name, *name_length + 1, name_buffer);
                *type = REG_DWORD;
                std::memcpy(data, &number, sizeof(number));
                *data_length = sizeof(number);
                return ERROR_SUCCESS;
            });
    }

    PlayedRegistry registry_;
    std::size_t asked_ = 0;
};

TEST_F(RegistryControlSet, ListThatNeverEnds_IsGivenUpAndEverythingClosed) {
    const auto stub = Listing(L"Other", 1);
    const Outcome outcome = SearchWith(registry_, 1000 * kMostListed);
    EXPECT_EQ(outcome.error, kErrorIn + std::wstring(L"Failed to find current ControlSet"));
    EXPECT_GE(asked_, kMostListed);
    EXPECT_LE(asked_, kMostListed + 1);
    EXPECT_EQ(registry_.open_keys, 0);
    EXPECT_EQ(registry_.loaded_hives, 0);
}

TEST_F(RegistryControlSet, EachAllocationFails_ThrowsATextAndClosesEverything) {
    const auto stub = Listing(L"Current", 7);
    const Outcome outcome = SweepAllocations(registry_);
    EXPECT_FALSE(outcome.failed);
    EXPECT_EQ(outcome.name, L"ControlSet007");
}

TEST_F(RegistryControlSet, EachAllocationFailsBesideANumberTooBig_ThrowsATextAndClosesEverything) {
    const auto stub = Listing(L"Current", 1000);
    EXPECT_EQ(SweepAllocations(registry_).error,
              kErrorIn + std::wstring(L"Current ControlSet number too big"));
}

TEST_F(RegistryControlSet, EachAllocationFailsWithoutAHive_ThrowsATextAndClosesEverything) {
    registry_.hive_loads = false;
    EXPECT_EQ(
        SweepAllocations(registry_).error,
        kErrorIn + std::wstring(L"Failed to load the system hive C:\\Windows\\system32\\config\\SYSTEM"));
}

TEST_F(RegistryControlSet, EachAllocationFailsWithoutTheKey_ThrowsATextAndClosesEverything) {
    registry_.key_opens = false;
    EXPECT_EQ(SweepAllocations(registry_).error,
              kErrorIn + std::wstring(L"Failed to open the Key ControlSetSearchHive\\Select"));
}

TEST_F(RegistryControlSet, NoMemoryForTheCursor_SaysSo) {
    constexpr std::size_t kCursorName = 16383 * sizeof(wchar_t);
    std::wstring error;
    const std::wstring windows = L"C:\\Windows";
    {
        const support::AllocationFailure failing(kCursorName);
        try {
            registry_.GetCurrentControlSetName(windows);
        } catch (const std::wstring& thrown) {
            error = thrown;
        }
        EXPECT_EQ(failing.hits(), 1U);
    }
    EXPECT_EQ(error, kErrorIn + std::wstring(L"Not enough memory"));
    EXPECT_EQ(registry_.loaded_hives, 0);
}

}  // namespace
