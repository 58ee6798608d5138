// Real hives: a temporary hive file is loaded and unloaded, in a directory that replaces the Windows
// directory.

#include "common/platform/privileges.h"
#include "support/logger_capture.h"
#include "support/text.h"
#include "unit/common/platform/scratch_key.h"
#include "unit/common/platform/token_privileges.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <functional>
#include <string>

namespace {

using support::Trace;
using testing::Contains;
using testing::ElementsAre;

const std::wstring kFound = L"\\system32\\config\\SYSTEM";
constexpr wchar_t kHiveKey[] = L"ControlSetSearchHive";
constexpr wchar_t kErrorIn[] = L"Error in CRegistry::GetCurrentControlSetName - ";

// A directory with a folder for the SYSTEM hive in the same place as in the Windows directory.
class RegistryHive : public testing::Test {
protected:
    RegistryHive() : windows_(std::filesystem::temp_directory_path() / ("orvane-hive-" + ProcessId())) {
        std::filesystem::create_directories(windows_ / "system32" / "config");
        EnableBackupPrivileges();
    }
    ~RegistryHive() override {
        EXPECT_FALSE(IsLoaded());
        RegUnLoadKeyW(HKEY_LOCAL_MACHINE, kHiveKey);
        std::error_code ignored;
        std::filesystem::remove_all(windows_, ignored);
    }

    static std::string ProcessId() { return std::to_string(GetCurrentProcessId()); }
    std::wstring Windows() const { return windows_.wstring(); }
    std::wstring File() const { return Windows() + kFound; }

    static bool IsLoaded() {
        HKEY key = nullptr;
        const bool loaded = RegOpenKeyExW(HKEY_LOCAL_MACHINE, kHiveKey, 0, KEY_READ, &key) == ERROR_SUCCESS;
        if (loaded) {
            RegCloseKey(key);
        }
        return loaded;
    }

    // The error that the search throws; empty if it does not throw.
    std::wstring ErrorOf(const std::wstring& windows) {
        try {
            registry_.GetCurrentControlSetName(windows);
        } catch (const std::wstring& error) {
            return error;
        }
        return {};
    }

    std::filesystem::path windows_;
    CRegistry registry_;
    support::LoggerCapture log_;
};

// Tests with a hive file. Writing and loading it needs the backup and restore privileges.
class WrittenHive : public RegistryHive {
protected:
    void SetUp() override {
        if (!UserHoldsBackupPrivileges()) {
            GTEST_SKIP() << "for a user who may back up and restore";
        }
    }

    // Writes a hive file. `fill` sets the values of its key "Select".
    void WriteHive(const std::function<void(const ScratchKey&)>& fill, const wchar_t* select = L"Select") {
        const ScratchKey root;
        {
            const ScratchKey below(root.path() + L"\\" + select);
            fill(below);
            std::filesystem::remove(windows_ / "system32" / "config" / "SYSTEM");
            ASSERT_EQ(RegSaveKeyW(root.get(), File().c_str(), nullptr), ERROR_SUCCESS);
        }
        log_.Clear();
    }

    void WriteCurrent(DWORD number) {
        WriteHive([number](const ScratchKey& select) {
            select.SetNumber(L"Default", 1);
            select.SetNumber(L"Current", number);
            select.SetNumber(L"Failed", 7);
        });
    }
};

TEST_F(WrittenHive, LoadAndUnload_BringAndTakeTheKeysOfTheFile) {
    ASSERT_NO_FATAL_FAILURE(WriteCurrent(12));
    ASSERT_TRUE(registry_.LoadHive(HKEY_LOCAL_MACHINE, kHiveKey, File()));
    EXPECT_TRUE(registry_.VerifyKeyExistance(HKEY_LOCAL_MACHINE, L"ControlSetSearchHive\\Select"));
    EXPECT_TRUE(registry_.UnloadHive(HKEY_LOCAL_MACHINE, kHiveKey));
    EXPECT_FALSE(IsLoaded());
    EXPECT_THAT(
        log_.Lines(support::kHostTrace),
        ElementsAre("CRegistry::LoadHive subKey=ControlSetSearchHive file=" + support::Utf8(File()) + " res0",
                    "CRegistry::UnloadHive subKey=ControlSetSearchHive res0"));
}

TEST_F(RegistryHive, LoadOfAMissingFile_IsFalseWithTheCode) {
    EXPECT_FALSE(registry_.LoadHive(HKEY_LOCAL_MACHINE, kHiveKey, File()));
    ASSERT_EQ(log_.all().size(), 1U);
    EXPECT_EQ(log_.all()[0].level, support::kHostTrace);
    EXPECT_TRUE(log_.all()[0].text.starts_with("CRegistry::LoadHive subKey=ControlSetSearchHive file="))
        << log_;
    EXPECT_FALSE(log_.all()[0].text.ends_with(" res0")) << log_;
}

TEST_F(RegistryHive, UnloadOfWhatIsNotLoaded_IsFalseWithTheCode) {
    EXPECT_FALSE(registry_.UnloadHive(HKEY_LOCAL_MACHINE, kHiveKey));
    ASSERT_EQ(log_.all().size(), 1U);
    EXPECT_EQ(log_.all()[0].level, support::kHostTrace);
    EXPECT_TRUE(log_.all()[0].text.starts_with("CRegistry::UnloadHive subKey=ControlSetSearchHive res"))
        << log_;
    EXPECT_FALSE(log_.all()[0].text.ends_with(" res0")) << log_;
}

TEST_F(WrittenHive, CurrentControlSet_HasThreeDigitsAndIsUnloadedAgain) {
    for (const auto& [number, name] : {std::pair{0U, L"ControlSet000"}, std::pair{1U, L"ControlSet001"},
                                       std::pair{12U, L"ControlSet012"}, std::pair{999U, L"ControlSet999"}}) {
        ASSERT_NO_FATAL_FAILURE(WriteCurrent(number));
        EXPECT_EQ(registry_.GetCurrentControlSetName(Windows()), name);
        EXPECT_FALSE(IsLoaded());
    }
}

TEST_F(WrittenHive, CurrentControlSet_DirectoryWithABackslash_IsTheSame) {
    ASSERT_NO_FATAL_FAILURE(WriteCurrent(3));
    EXPECT_EQ(registry_.GetCurrentControlSetName(Windows() + L"\\"), L"ControlSet003");
    EXPECT_TRUE(log_.ContainsPart(support::kHostTrace, " file=" + support::Utf8(File()) + " res0")) << log_;
}

TEST_F(WrittenHive, CurrentControlSet_1000_IsTooBigAndTheHiveUnloaded) {
    ASSERT_NO_FATAL_FAILURE(WriteCurrent(1000));
    EXPECT_EQ(ErrorOf(Windows()), kErrorIn + std::wstring(L"Current ControlSet number too big"));
    EXPECT_FALSE(IsLoaded());
}

TEST_F(WrittenHive, CurrentControlSet_OfAnotherType_IsNotFound) {
    ASSERT_NO_FATAL_FAILURE(WriteHive([](const ScratchKey& select) { select.SetText(L"Current", L"1"); }));
    EXPECT_EQ(ErrorOf(Windows()), kErrorIn + std::wstring(L"Failed to find current ControlSet"));
    EXPECT_FALSE(IsLoaded());
}

TEST_F(WrittenHive, CurrentControlSet_OtherNamesOnly_AreNotFound) {
    ASSERT_NO_FATAL_FAILURE(WriteHive([](const ScratchKey& select) {
        select.SetNumber(L"Currents", 1);
        select.SetNumber(L"Curren", 2);
    }));
    EXPECT_EQ(ErrorOf(Windows()), kErrorIn + std::wstring(L"Failed to find current ControlSet"));
}

TEST_F(WrittenHive, CurrentControlSet_ValueTooLongBeforeIt_EndsTheSearch) {
    ASSERT_NO_FATAL_FAILURE(WriteHive([](const ScratchKey& select) {
        select.Set(L"A", REG_BINARY, std::string(40'000, 'x').data(), 40'000);
        select.SetNumber(L"Current", 1);
    }));
    EXPECT_EQ(ErrorOf(Windows()), kErrorIn + std::wstring(L"Failed to find current ControlSet"));
    EXPECT_FALSE(IsLoaded());
}

TEST_F(WrittenHive, CurrentControlSet_NoSelectKey_FailsWithItsPathAndUnloads) {
    ASSERT_NO_FATAL_FAILURE(
        WriteHive([](const ScratchKey& select) { select.SetNumber(L"Current", 1); }, L"Other"));
    EXPECT_EQ(ErrorOf(Windows()),
              kErrorIn + std::wstring(L"Failed to open the Key ControlSetSearchHive\\Select"));
    EXPECT_FALSE(IsLoaded());
    EXPECT_THAT(log_.all(), Contains(Trace("CRegistry::UnloadHive subKey=ControlSetSearchHive res0")));
}

TEST_F(RegistryHive, CurrentControlSet_NoHive_FailsWithItsFile) {
    EXPECT_EQ(ErrorOf(Windows()), kErrorIn + (L"Failed to load the system hive " + File()));
    EXPECT_EQ(ErrorOf(Windows() + L"\\"), kErrorIn + (L"Failed to load the system hive " + File()));
}

TEST_F(WrittenHive, CurrentControlSet_NumberCutShort_IsNotFound) {
    ASSERT_NO_FATAL_FAILURE(
        WriteHive([](const ScratchKey& select) { select.Set(L"Current", REG_DWORD, "\1\0", 2); }));
    EXPECT_EQ(ErrorOf(Windows()), kErrorIn + std::wstring(L"Failed to find current ControlSet"));
}

}  // namespace
