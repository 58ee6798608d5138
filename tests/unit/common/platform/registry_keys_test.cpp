// Keys: create, open, close, check for existence, write values.

#include "support/allocation_failure.h"
#include "support/logger_capture.h"
#include "support/stub.h"
#include "unit/common/platform/scratch_key.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace {

using support::Error;
using support::kHostTrace;
using testing::ElementsAre;

class RegistryKeys : public testing::Test {
protected:
    // The log lines, which must all be trace lines.
    std::vector<std::string> Trace() {
        EXPECT_TRUE(log_.Messages().empty()) << log_;
        return log_.Lines(kHostTrace);
    }

    DWORD NumberIn(const wchar_t* name) {
        DWORD number = 0;
        DWORD bytes = sizeof(number);
        EXPECT_EQ(RegGetValueW(scratch_.get(), nullptr, name, RRF_RT_REG_DWORD, nullptr, &number, &bytes),
                  ERROR_SUCCESS);
        return number;
    }

    ScratchKey scratch_;
    CRegistry registry_;
    HKEY key_ = nullptr;
    support::LoggerCapture log_;
};

TEST_F(RegistryKeys, CreateKey_MakesAKeyThatIsOpen) {
    ASSERT_TRUE(registry_.CreateKey(scratch_.get(), L"New", key_));
    EXPECT_EQ(RegSetValueExW(key_, L"Value", 0, REG_SZ, nullptr, 0), ERROR_SUCCESS);
    EXPECT_EQ(RegCloseKey(key_), ERROR_SUCCESS);
    EXPECT_THAT(Trace(),
                ElementsAre("Function CreateKey", "Creating the Key",
                            "CRegistry::CreateKey keyName=New res=0", "bRet is TRUE", "Exiting CreateKey"));
}

TEST_F(RegistryKeys, CreateKey_Fails_IsFalseWithTheCode) {
    EXPECT_FALSE(registry_.CreateKey(nullptr, L"New", key_));
    EXPECT_THAT(Trace(),
                ElementsAre("Function CreateKey", "Creating the Key",
                            "CRegistry::CreateKey keyName=New res=6", "bRet is FALSE", "Exiting CreateKey"));
}

TEST_F(RegistryKeys, OpenKey_OpensAKeyThatIsThere) {
    ASSERT_TRUE(registry_.CreateKey(scratch_.get(), L"Known", key_));
    RegCloseKey(key_);
    log_.Clear();
    key_ = nullptr;
    ASSERT_TRUE(registry_.OpenKey(scratch_.get(), L"Known", KEY_READ, key_));
    EXPECT_EQ(RegCloseKey(key_), ERROR_SUCCESS);
    EXPECT_THAT(Trace(), ElementsAre("Function OpenKey", "Opening the Key",
                                     "CRegistry::OpenKey keyName=Known access=0x20019 res=0", "bRet is TRUE",
                                     "Exiting OpenKey"));
}

TEST_F(RegistryKeys, OpenKey_Missing_IsFalseWithTheCode) {
    EXPECT_FALSE(registry_.OpenKey(scratch_.get(), L"Missing", KEY_QUERY_VALUE, key_));
    EXPECT_THAT(Trace(), ElementsAre("Function OpenKey", "Opening the Key",
                                     "CRegistry::OpenKey keyName=Missing access=0x1 res=2", "bRet is FALSE",
                                     "Exiting OpenKey"));
}

TEST_F(RegistryKeys, OpenKey_PassesItsArgumentsOnWithOptionsZero) {
    DWORD options = 77;
    REGSAM access = 0;
    const support::StubImport stub("RegOpenKeyExW", &::RegOpenKeyExW,
                                   [&](HKEY, LPCWSTR, DWORD given, REGSAM rights, PHKEY) -> LSTATUS {
                                       options = given;
                                       access = rights;
                                       return ERROR_ACCESS_DENIED;
                                   });
    EXPECT_FALSE(registry_.OpenKey(scratch_.get(), L"Key", 0x2001F, key_));
    EXPECT_EQ(options, 0U);
    EXPECT_EQ(access, 0x2001FU);
}

TEST_F(RegistryKeys, CloseKey_ClosesAnOpenKey) {
    ASSERT_EQ(RegCreateKeyW(scratch_.get(), L"Key", &key_), ERROR_SUCCESS);
    EXPECT_TRUE(registry_.CloseKey(key_));
    EXPECT_NE(RegSetValueExW(key_, L"Value", 0, REG_SZ, nullptr, 0), ERROR_SUCCESS);
    EXPECT_THAT(Trace(), ElementsAre("Function CloseKey", "CRegistry::CloseKey res=0", "bRet is TRUE",
                                     "Exiting CloseKey"));
}

TEST_F(RegistryKeys, CloseKey_Fails_IsFalseWithTheCode) {
    EXPECT_FALSE(registry_.CloseKey(nullptr));
    EXPECT_THAT(Trace(), ElementsAre("Function CloseKey", "CRegistry::CloseKey res=6", "bRet is FALSE",
                                     "Exiting CloseKey"));
}

TEST_F(RegistryKeys, VerifyKeyExistance_KeyThere_IsTrueWithoutALine) {
    ASSERT_EQ(RegCreateKeyW(scratch_.get(), L"A\\B", &key_), ERROR_SUCCESS);
    RegCloseKey(key_);
    EXPECT_TRUE(registry_.VerifyKeyExistance(scratch_.get(), L"A\\B"));
    EXPECT_TRUE(log_.all().empty()) << log_;
}

TEST_F(RegistryKeys, VerifyKeyExistance_KeyMissing_IsFalseWithItsLine) {
    EXPECT_FALSE(registry_.VerifyKeyExistance(scratch_.get(), L"A\\B"));
    EXPECT_THAT(log_.all(),
                ElementsAre(Error("CRegistry::VerifyKeyExistance Failed to RegOpenKeyEx of A\\B error=2")));
}

TEST_F(RegistryKeys, VerifyKeyExistance_CloseFails_IsTrueWithItsLine) {
    ASSERT_EQ(RegCreateKeyW(scratch_.get(), L"Key", &key_), ERROR_SUCCESS);
    RegCloseKey(key_);
    HKEY opened = nullptr;
    {
        const support::StubImport stub("RegCloseKey", &::RegCloseKey, [&](HKEY key) -> LSTATUS {
            opened = key;
            return ERROR_INVALID_HANDLE;
        });
        EXPECT_TRUE(registry_.VerifyKeyExistance(scratch_.get(), L"Key"));
    }
    EXPECT_EQ(RegCloseKey(opened), ERROR_SUCCESS);
    EXPECT_THAT(log_.Messages(),
                ElementsAre(Error("CRegistry::VerifyKeyExistance Failed to RegCloseKey of Key error=6")));
}

TEST_F(RegistryKeys, ModifyRegValues_WritesEachValue) {
    EXPECT_TRUE(registry_.ModifyRegValues(
        scratch_.get(), {{L"One", REG_DWORD, {1, 0, 0, 0}}, {L"Two", REG_DWORD, {2, 1, 0, 0}}}));
    EXPECT_EQ(NumberIn(L"One"), 1U);
    EXPECT_EQ(NumberIn(L"Two"), 258U);
    EXPECT_THAT(Trace(), ElementsAre("Function ModifyRegValues", "Modifying Value", "Modifying Value",
                                     "bRet is TRUE", "Exiting ModifyRegValues"));
}

TEST_F(RegistryKeys, ModifyRegValues_OneFails_WritesTheOthersAndIsFalse) {
    std::vector<std::wstring> names;
    const support::StubImport stub("RegSetValueExW", &::RegSetValueExW,
                                   [&](HKEY, LPCWSTR name, DWORD, DWORD, const BYTE*, DWORD) -> LSTATUS {
                                       names.emplace_back(name);
                                       return names.size() == 1 ? LSTATUS{ERROR_ACCESS_DENIED}
                                                                : LSTATUS{ERROR_SUCCESS};
                                   });
    EXPECT_FALSE(registry_.ModifyRegValues(scratch_.get(), {{L"One", REG_SZ, {}}, {L"Two", REG_SZ, {}}}));
    EXPECT_THAT(names, ElementsAre(L"One", L"Two"));
    EXPECT_THAT(Trace(),
                ElementsAre("Function ModifyRegValues", "Modifying Value", "Failed in Modifying Value",
                            "Modifying Value", "bRet is FALSE", "Exiting ModifyRegValues"));
}

TEST_F(RegistryKeys, EveryOperation_NoMemory_NeedsNone) {
    const std::wstring name = L"A key whose name is too long to lie in place";
    const std::wstring missing = L"Missing, and too long to lie in place as well";
    const std::vector<RegistryValue> values = {{L"Value", REG_DWORD, {1, 0, 0, 0}}};
    std::uint32_t number = 0;
    GetLogger().SetCallback([](std::int32_t, const char*) {});  // does not store lines, which would allocate

    bool known = false;
    bool unknown = true;
    std::size_t hits = 1;
    {
        const auto failing = support::AllocationFailure::After(0);
        known = registry_.CreateKey(scratch_.get(), name, key_) && registry_.CloseKey(key_) &&
                registry_.OpenKey(scratch_.get(), name, KEY_ALL_ACCESS, key_) &&
                registry_.ModifyRegValues(key_, values) &&
                registry_.GetValue(key_, values.front().name, number) &&
                registry_.VerifyKeyExistance(scratch_.get(), name);
        unknown = registry_.GetValue(key_, missing, number) ||
                  registry_.VerifyKeyExistance(scratch_.get(), missing) ||
                  registry_.LoadHive(HKEY_LOCAL_MACHINE, missing, missing) ||
                  registry_.UnloadHive(HKEY_LOCAL_MACHINE, missing);
        hits = failing.hits();
    }

    EXPECT_TRUE(known);
    EXPECT_FALSE(unknown);
    EXPECT_EQ(hits, 0U);
    EXPECT_EQ(number, 1U);
    RegCloseKey(key_);
}

}  // namespace
