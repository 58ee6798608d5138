// Values: the three functions that read one, and the cursor over all values of a key.

#include "support/allocation_failure.h"
#include "support/logger_capture.h"
#include "support/stub.h"
#include "unit/common/platform/scratch_key.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

namespace {

using support::LogLine;
using testing::ElementsAre;
using testing::IsEmpty;

class RegistryValues : public testing::Test {
protected:
    // Expects that reading fails with one log line and leaves the output unchanged.
    template <class Value>
    void ExpectFailure(const wchar_t* name, Value value, std::int32_t level, const std::string& text) {
        const Value before = value;
        log_.Clear();
        EXPECT_FALSE(registry_.GetValue(scratch_.get(), name, value));
        EXPECT_EQ(value, before);
        EXPECT_THAT(log_.all(), ElementsAre(LogLine{level, text}));
    }

    ScratchKey scratch_;
    CRegistry registry_;
    support::LoggerCapture log_;
    std::wstring text_ = L"before";
    std::uint32_t number_ = 77;
    std::vector<unsigned char> bytes_ = {7};
};

TEST_F(RegistryValues, Text_IsReadWhole) {
    for (const std::wstring& text : {std::wstring(), std::wstring(L"a"), std::wstring(10'000, L'x')}) {
        scratch_.SetText(L"Text", text);
        EXPECT_TRUE(registry_.GetValue(scratch_.get(), L"Text", text_));
        EXPECT_EQ(text_, text);
    }
    EXPECT_THAT(log_.all(), IsEmpty());
}

TEST_F(RegistryValues, TextWithoutItsEnd_IsReadWhole) {
    scratch_.Set(L"Text", REG_SZ, L"abc", 3 * sizeof(wchar_t));
    EXPECT_TRUE(registry_.GetValue(scratch_.get(), L"Text", text_));
    EXPECT_EQ(text_, L"abc");
}

TEST_F(RegistryValues, TextWithSomethingBehindItsEnd_EndsThere) {
    scratch_.Set(L"Text", REG_SZ, L"abc\0def", 8 * sizeof(wchar_t));
    EXPECT_TRUE(registry_.GetValue(scratch_.get(), L"Text", text_));
    EXPECT_EQ(text_, L"abc");
}

TEST_F(RegistryValues, TextMissing_IsLeftAlone) {
    ExpectFailure(L"Missing", text_, support::kHostWarning,
                  "CRegistry::GetValue failed to get value of Missing error=2");
}

TEST_F(RegistryValues, TextOfAnotherType_IsLeftAlone) {
    scratch_.SetNumber(L"Number", 5);
    ExpectFailure(L"Number", text_, support::kHostWarning,
                  "CRegistry::GetValue failed to get value of Number error=1630");
}

TEST_F(RegistryValues, TextThatGrowsBetweenTheCalls_IsLeftAlone) {
    const support::StubImport stub(
        "RegGetValueW", &::RegGetValueW,
        [](HKEY, LPCWSTR, LPCWSTR, DWORD flags, LPDWORD, PVOID data, LPDWORD bytes) -> LSTATUS {
            EXPECT_EQ(flags, 2U);
            *bytes = 4;
            return data == nullptr ? LSTATUS{ERROR_SUCCESS} : LSTATUS{ERROR_MORE_DATA};
        });
    ExpectFailure(L"Text", text_, support::kHostWarning,
                  "CRegistry::GetValue failed to get value of Text error=234");
}

TEST_F(RegistryValues, TextWithoutMemory_IsLeftAlone) {
    scratch_.SetText(L"Text", std::wstring(600'000, L'x'));
    const support::AllocationFailure failing(1'000'000);
    ExpectFailure(L"Text", text_, support::kHostWarning,
                  "CRegistry::GetValue failed to get value of Text error=14");
    EXPECT_GT(failing.hits(), 0U);
}

TEST_F(RegistryValues, Text_EachAllocationFails_IsLeftAloneOrReadWhole) {
    const std::wstring text(100, L'x');
    scratch_.SetText(L"Text", text);
    const std::wstring name = L"Text";
    log_.Clear();
    GetLogger().SetCallback(nullptr);  // a callback that stores lines would allocate too
    std::size_t hits = 1;
    for (std::size_t allowed = 0; hits != 0; ++allowed) {
        ASSERT_LT(allowed, 10U);
        std::wstring value = L"before";
        bool read = false;
        EXPECT_NO_THROW({
            const auto failing = support::AllocationFailure::After(allowed);
            read = registry_.GetValue(scratch_.get(), name, value);
            hits = failing.hits();
        }) << allowed;
        EXPECT_EQ(read, hits == 0) << allowed;
        EXPECT_EQ(value, read ? text : L"before") << allowed;
    }
}

TEST_F(RegistryValues, TextOfAnAbsurdSize_IsRefusedBeforeMemoryIsTaken) {
    static DWORD size = 0;
    const support::StubImport stub(
        "RegGetValueW", &::RegGetValueW,
        [](HKEY, LPCWSTR, LPCWSTR, DWORD, LPDWORD, PVOID, LPDWORD bytes) -> LSTATUS {
            *bytes = size;
            return ERROR_SUCCESS;
        });
    // The buffer includes the terminator: 1 GiB exceeds the limit, 4 bytes less does not.
    for (const auto& [bytes, hits] : {std::pair{DWORD{0xFFFFFFFE}, 0U}, std::pair{DWORD{1} << 30, 0U},
                                      std::pair{(DWORD{1} << 30) - 4, 1U}}) {
        size = bytes;
        log_.Clear();
        const support::AllocationFailure failing(1'000'000);
        ExpectFailure(L"Text", text_, support::kHostWarning,
                      "CRegistry::GetValue failed to get value of Text error=14");
        EXPECT_EQ(failing.hits(), hits) << bytes;
    }
}

TEST_F(RegistryValues, Number_IsRead) {
    scratch_.SetNumber(L"Number", 0xFFFFFFFE);
    EXPECT_TRUE(registry_.GetValue(scratch_.get(), L"Number", number_));
    EXPECT_EQ(number_, 0xFFFFFFFEU);
    EXPECT_THAT(log_.all(), IsEmpty());
}

TEST_F(RegistryValues, NumberMissing_IsLeftAlone) {
    ExpectFailure(L"Missing", number_, support::kHostWarning,
                  "CRegistry::GetValue failed to get value of Missing error=2");
}

TEST_F(RegistryValues, NumberOfAnotherType_IsLeftAlone) {
    scratch_.SetText(L"Text", L"5");
    ExpectFailure(L"Text", number_, support::kHostWarning,
                  "CRegistry::GetValue failed to get value of Text error=1630");
}

TEST_F(RegistryValues, Bytes_AreReadWhateverTheType) {
    const unsigned char raw[] = {1, 2, 0, 255};
    scratch_.Set(L"Raw", REG_BINARY, raw, sizeof(raw));
    EXPECT_TRUE(registry_.GetValue(scratch_.get(), L"Raw", bytes_));
    EXPECT_THAT(bytes_, ElementsAre(1, 2, 0, 255));
    scratch_.SetText(L"Text", L"A");
    EXPECT_TRUE(registry_.GetValue(scratch_.get(), L"Text", bytes_));
    EXPECT_THAT(bytes_, ElementsAre('A', 0, 0, 0));
    EXPECT_THAT(log_.all(), IsEmpty());
}

TEST_F(RegistryValues, BytesOfAnEmptyValue_AreNone) {
    scratch_.Set(L"Raw", REG_BINARY, nullptr, 0);
    EXPECT_TRUE(registry_.GetValue(scratch_.get(), L"Raw", bytes_));
    EXPECT_THAT(bytes_, IsEmpty());
}

TEST_F(RegistryValues, BytesMissing_AreLeftAlone) {
    ExpectFailure(L"Missing", bytes_, support::kHostError,
                  "CRegistry::GetValue failed to get size of value of Missing error=2");
}

TEST_F(RegistryValues, BytesNotReadableTheSecondTime_AreLeftAlone) {
    const support::StubImport stub(
        "RegQueryValueExW", &::RegQueryValueExW,
        [](HKEY, LPCWSTR, LPDWORD, LPDWORD, LPBYTE data, LPDWORD bytes) -> LSTATUS {
            *bytes = 4;
            return data == nullptr ? LSTATUS{ERROR_SUCCESS} : LSTATUS{ERROR_ACCESS_DENIED};
        });
    ExpectFailure(L"Raw", bytes_, support::kHostError,
                  "CRegistry::GetValue failed to get value of Raw error=5");
}

TEST_F(RegistryValues, BytesThatShrinkBetweenTheCalls_AreThoseThatCame) {
    const support::StubImport stub(
        "RegQueryValueExW", &::RegQueryValueExW,
        [](HKEY, LPCWSTR, LPDWORD, LPDWORD, LPBYTE data, LPDWORD bytes) -> LSTATUS {
            *bytes = data == nullptr ? 4 : 1;
            if (data != nullptr) {
                *data = 9;
            }
            return ERROR_SUCCESS;
        });
    EXPECT_TRUE(registry_.GetValue(scratch_.get(), L"Raw", bytes_));
    EXPECT_THAT(bytes_, ElementsAre(9));
}

TEST_F(RegistryValues, BytesOfAnAbsurdSize_AreRefusedBeforeMemoryIsTaken) {
    const support::StubImport stub("RegQueryValueExW", &::RegQueryValueExW,
                                   [](HKEY, LPCWSTR, LPDWORD, LPDWORD, LPBYTE, LPDWORD bytes) -> LSTATUS {
                                       *bytes = 0xFFFFFFFF;
                                       return ERROR_SUCCESS;
                                   });
    const support::AllocationFailure failing(1'000'000);
    ExpectFailure(L"Raw", bytes_, support::kHostError,
                  "CRegistry::GetValue failed to get value of Raw error=14");
    EXPECT_EQ(failing.hits(), 0U);
}

TEST_F(RegistryValues, BytesWithoutMemory_AreLeftAlone) {
    const std::string megabyte(1'000'000, 'x');
    scratch_.Set(L"Raw", REG_BINARY, megabyte.data(), megabyte.size());
    const support::AllocationFailure failing(megabyte.size());
    ExpectFailure(L"Raw", bytes_, support::kHostError,
                  "CRegistry::GetValue failed to get value of Raw error=14");
    EXPECT_EQ(failing.hits(), 1U);
}

TEST_F(RegistryValues, Cursor_VisitsEachValueOnceAndEndsWith259) {
    scratch_.SetNumber(L"Number", 5);
    scratch_.SetText(L"Text", L"A");
    RegistryValueCursor cursor(scratch_.get());
    std::vector<std::wstring> names;
    LSTATUS status = CRegistry::FindFirstValue(cursor);
    for (; status == ERROR_SUCCESS; status = CRegistry::FindNextValue(cursor)) {
        names.emplace_back(cursor.Name());
        if (cursor.Name() == L"Number") {
            EXPECT_EQ(cursor.type, DWORD{REG_DWORD});
            EXPECT_EQ(cursor.data_length, 4U);
            EXPECT_EQ(cursor.data[0], 5);
        } else {
            EXPECT_EQ(cursor.type, DWORD{REG_SZ});
            EXPECT_EQ(cursor.data_length, 4U);
        }
    }
    EXPECT_EQ(status, LSTATUS{ERROR_NO_MORE_ITEMS});
    std::sort(names.begin(), names.end());
    EXPECT_THAT(names, ElementsAre(L"Number", L"Text"));
    EXPECT_THAT(log_.all(), IsEmpty());
}

TEST_F(RegistryValues, Cursor_HasRoomFor16383Characters) {
    const RegistryValueCursor cursor(scratch_.get());
    EXPECT_EQ(cursor.name.size(), 16383U);
    EXPECT_EQ(cursor.data.size(), 16383U * sizeof(wchar_t));
    EXPECT_EQ(cursor.index, 0U);
}

TEST_F(RegistryValues, Cursor_OffersItsWholeBuffersEachTime) {
    std::vector<DWORD> indexes;
    const support::StubImport stub(
        "RegEnumValueW", &::RegEnumValueW,
        [&](HKEY, DWORD index, LPWSTR, LPDWORD name, LPDWORD, LPDWORD, LPBYTE, LPDWORD data) -> LSTATUS {
            indexes.push_back(index);
            EXPECT_EQ(*name, 16383U);
            EXPECT_EQ(*data, 32766U);
            *name = 1;
            *data = 1;
            return ERROR_SUCCESS;
        });
    RegistryValueCursor cursor(scratch_.get());
    CRegistry::FindFirstValue(cursor);
    CRegistry::FindNextValue(cursor);
    CRegistry::FindFirstValue(cursor);
    EXPECT_THAT(indexes, ElementsAre(0U, 1U, 0U));
}

TEST_F(RegistryValues, Cursor_DataLongerThanItsBuffer_IsTheSystemsCodeAndStays) {
    scratch_.Set(L"Long", REG_BINARY, std::string(100, 'x').data(), 100);
    RegistryValueCursor cursor(scratch_.get(), 10);
    EXPECT_EQ(CRegistry::FindFirstValue(cursor), LSTATUS{ERROR_MORE_DATA});
    EXPECT_EQ(cursor.index, 0U);
}

TEST_F(RegistryValues, Cursor_LengthsThatLie_AreCutToTheBuffers) {
    const support::StubImport stub(
        "RegEnumValueW", &::RegEnumValueW,
        [&](HKEY, DWORD, LPWSTR, LPDWORD name, LPDWORD, LPDWORD, LPBYTE, LPDWORD data) -> LSTATUS {
            *name = 0xFFFFFFFF;
            *data = 0xFFFFFFFF;
            return ERROR_SUCCESS;
        });
    RegistryValueCursor cursor(scratch_.get());
    EXPECT_EQ(CRegistry::FindFirstValue(cursor), ERROR_SUCCESS);
    EXPECT_EQ(cursor.Name().size(), 16383U);
    EXPECT_EQ(cursor.data_length, 32766U);
}

}  // namespace
