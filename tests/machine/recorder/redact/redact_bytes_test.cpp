#include "machine/recorder/redact/redact_bytes.h"

#include "common/windows.h"
#include "machine/description/text.h"

#include <gtest/gtest.h>
#include <winioctl.h>

#include <algorithm>
#include <cstring>
#include <string>

namespace {

using recorder::Bytes;
using recorder::Form;
using recorder::RedactedBytes;
using recorder::Replacements;

const GUID kDisk = *machine::ParseGuid("{6f1f4a52-9c0d-4e1b-8a37-52d1b0c4e9a1}");
const GUID kPartition = *machine::ParseGuid("{2b7c0d9a-1111-4e02-8f6e-2b7c0d9a4411}");
const GUID kBasicData = *machine::ParseGuid("{ebd0a0a2-b9e5-4433-87c0-68b6b72699c7}");

Bytes Redacted(Form form, const Bytes& bytes, Replacements& replacements) {
    RedactedBytes(form, bytes, replacements);
    replacements.Settle();
    return RedactedBytes(form, bytes, replacements);
}

template <class Record>
Bytes BytesOf(const Record& record, std::size_t size = sizeof(Record)) {
    Bytes bytes(size);
    std::memcpy(bytes.data(), &record, std::min(size, sizeof(Record)));
    return bytes;
}

PARTITION_INFORMATION_EX GptEntry(const wchar_t* name) {
    PARTITION_INFORMATION_EX entry{};
    entry.PartitionStyle = PARTITION_STYLE_GPT;
    entry.StartingOffset.QuadPart = 1048576;
    entry.PartitionLength.QuadPart = 104857600;
    entry.PartitionNumber = 1;
    entry.Gpt.PartitionType = kBasicData;
    entry.Gpt.PartitionId = kPartition;
    std::wcscpy(entry.Gpt.Name, name);
    return entry;
}

TEST(RedactedBytes, GptPartition_KeepsAllButItsIdAndName) {
    Replacements replacements;
    const PARTITION_INFORMATION_EX entry = GptEntry(L"Payroll");
    const Bytes bytes = Redacted(Form::kPartition, BytesOf(entry), replacements);
    PARTITION_INFORMATION_EX redacted{};
    ASSERT_EQ(bytes.size(), sizeof(redacted));
    std::memcpy(&redacted, bytes.data(), sizeof(redacted));
    EXPECT_EQ(machine::GuidText(redacted.Gpt.PartitionId), machine::GuidText(replacements.Guid(kPartition)));
    EXPECT_NE(machine::GuidText(redacted.Gpt.PartitionId), machine::GuidText(kPartition));
    EXPECT_EQ(redacted.Gpt.Name, replacements.Text(L"Payroll"));
    PARTITION_INFORMATION_EX rest = redacted;
    rest.Gpt.PartitionId = entry.Gpt.PartitionId;
    std::memcpy(rest.Gpt.Name, entry.Gpt.Name, sizeof(rest.Gpt.Name));
    EXPECT_EQ(std::memcmp(&rest, &entry, sizeof(rest)), 0) << "type, place and attributes stay";
}

TEST(RedactedBytes, GptLayout_HasEveryEntryRedacted) {
    constexpr std::size_t kHeader = 48;
    Bytes bytes(kHeader + 2 * sizeof(PARTITION_INFORMATION_EX));
    const DWORD style = PARTITION_STYLE_GPT;
    std::memcpy(bytes.data(), &style, sizeof(style));
    std::memcpy(bytes.data() + 8, &kDisk, sizeof(kDisk));
    for (std::size_t i = 0; i < 2; ++i) {
        const PARTITION_INFORMATION_EX entry = GptEntry(L"Payroll");
        std::memcpy(bytes.data() + kHeader + i * sizeof(entry), &entry, sizeof(entry));
    }
    Replacements replacements;
    const Bytes redacted = Redacted(Form::kLayoutEx, bytes, replacements);
    GUID guid{};
    std::memcpy(&guid, redacted.data() + 8, sizeof(guid));
    EXPECT_EQ(machine::GuidText(guid), machine::GuidText(replacements.Guid(kDisk)));
    EXPECT_EQ(Bytes(redacted.begin() + kHeader, redacted.begin() + kHeader + 144),
              Bytes(redacted.begin() + kHeader + 144, redacted.end()));
    EXPECT_EQ(replacements.guids().size(), 2U);
}

TEST(RedactedBytes, MbrLayout_HasAnotherSignatureChecksumAndId) {
    Bytes bytes(48 + 144);
    const std::uint32_t signature = 0x5C82F0A3;
    const std::uint32_t checksum = 0x11223344;
    std::memcpy(bytes.data() + 8, &signature, sizeof(signature));
    std::memcpy(bytes.data() + 12, &checksum, sizeof(checksum));
    std::memcpy(bytes.data() + 48 + 40, &kDisk, sizeof(kDisk));
    bytes[48 + 32] = 7;  // the type of the partition
    Replacements replacements;
    const Bytes redacted = Redacted(Form::kLayoutEx, bytes, replacements);
    std::uint32_t made = 0;
    std::memcpy(&made, redacted.data() + 8, sizeof(made));
    EXPECT_EQ(made, replacements.Id(signature));
    EXPECT_NE(made, signature);
    std::memcpy(&made, redacted.data() + 12, sizeof(made));
    EXPECT_EQ(made, replacements.Id(checksum));
    EXPECT_NE(made, checksum);
    GUID guid{};
    std::memcpy(&guid, redacted.data() + 48 + 40, sizeof(guid));
    EXPECT_EQ(machine::GuidText(guid), machine::GuidText(replacements.Guid(kDisk)));
    EXPECT_FALSE(IsEqualGUID(guid, kDisk));
    EXPECT_EQ(redacted[48 + 32], 7);
}

TEST(RedactedBytes, GeometryOfAGptDisk_HasAnotherDiskId) {
    Bytes bytes(120);
    const DWORD style = PARTITION_STYLE_GPT;
    std::memcpy(bytes.data() + 36, &style, sizeof(style));
    std::memcpy(bytes.data() + 40, &kDisk, sizeof(kDisk));
    Replacements replacements;
    const Bytes redacted = Redacted(Form::kGeometry, bytes, replacements);
    EXPECT_EQ(redacted.size(), bytes.size());
    GUID guid{};
    std::memcpy(&guid, redacted.data() + 40, sizeof(guid));
    EXPECT_EQ(machine::GuidText(guid), machine::GuidText(replacements.Guid(kDisk)));
}

// A buffer that ends inside a value: no part of the value is left, and nothing behind is touched.
TEST(RedactedBytes, ValueThatIsCutOff_BecomesZeros) {
    const Bytes whole = BytesOf(GptEntry(L"Payroll"));
    for (std::size_t size = 0; size < whole.size(); ++size) {
        Replacements replacements;
        const Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
        const Bytes redacted = Redacted(Form::kPartition, cut, replacements);
        ASSERT_EQ(redacted.size(), size);
        for (std::size_t i = 48; i < std::min<std::size_t>(size, 64); ++i) {
            ASSERT_TRUE(size >= 64 || redacted[i] == 0) << i << " of " << size;
        }
        for (std::size_t i = 72; i < size; ++i) {
            ASSERT_EQ(redacted[i], 0) << i << " of " << size;
        }
    }
}

std::wstring RedactedPaths(const std::wstring& list, Replacements& replacements) {
    Bytes bytes(list.size() * sizeof(wchar_t));
    std::memcpy(bytes.data(), list.data(), bytes.size());
    return machine::WideText(Redacted(Form::kPaths, bytes, replacements));
}

TEST(RedactedBytes, ListOfTexts_KeepsItsTerminators) {
    Replacements replacements;
    const std::wstring redacted = RedactedPaths(std::wstring(L"C:\\\0C:\\Wessling\\\0\0", 18), replacements);
    EXPECT_EQ(redacted,
              std::wstring(L"C:\\\0C:\\", 7) + replacements.Text(L"Wessling") + std::wstring(L"\\\0\0", 3));
}

TEST(RedactedBytes, LastTextWithoutTerminator_GetsNone) {
    Replacements replacements;
    const std::wstring redacted = RedactedPaths(std::wstring(L"C:\\\0C:\\Wessling", 15), replacements);
    EXPECT_EQ(redacted, std::wstring(L"C:\\\0C:\\", 7) + replacements.Text(L"Wessling"));
}

}  // namespace
