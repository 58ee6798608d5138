#include "machine/test_machine.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

namespace machine_test {
namespace {

// "A", a high surrogate without its other half, and the control character U+0001.
constexpr const char* kText = R"({"utf16": "0041 D8000001"})";
const std::wstring kBroken = {L'A', wchar_t{0xD800}, wchar_t{1}};

machine::Description With(const std::string& before, const std::string& after) {
    return Parse(before + kText + after);
}

TEST(Utf16Text, Volume_TakesItForEveryText) {
    EXPECT_EQ(With(R"({"volumes": [{"extents": [], "label": )", "}]}").volumes[0].label, kBroken);
    EXPECT_EQ(With(R"({"volumes": [{"extents": [], "fileSystem": )", "}]}").volumes[0].file_system, kBroken);
}

TEST(Utf16Text, PartitionName_TakesIt) {
    EXPECT_EQ(With(R"({"disks": [{"index": 0, "size": "1 GiB", "style": "gpt", "partitions": [
                       {"offset": "1 MiB", "size": "1 MiB", "type": "basic-data", "name": )",
                   "}]}]}")
                  .disks[0]
                  .partitions[0]
                  .gpt_name,
              kBroken);
}

TEST(Utf16Text, WmiValue_TakesItAloneTypedAndInAList) {
    const std::string before = R"({"wmi": {"A": [{"B": )";
    const auto value = [](const machine::Description& description) {
        return description.wmi.at(L"A").instances.at(0).at(0).value;
    };
    EXPECT_EQ(value(With(before, "}]}}")).type, VT_BSTR);
    EXPECT_EQ(value(With(before, "}]}}")).text, kBroken);
    EXPECT_EQ(value(With(before + R"({"type": "VT_BSTR", "value": )", "}}]}}")).text, kBroken);
    EXPECT_EQ(value(With(before + R"(["x", )", "]}]}}")).texts.at(1), kBroken);
}

TEST(Utf16Text, RegistryValue_TakesItAloneAndInAList) {
    const std::wstring bytes(kBroken + L'\0');
    const auto text = [](const machine::Description& description) {
        const machine::Bytes& data = description.registry.at(0).values.at(0).data;
        return std::wstring(reinterpret_cast<const wchar_t*>(data.data()), data.size() / sizeof(wchar_t));
    };
    EXPECT_EQ(text(With(R"({"registry": {"K": {"V": )", "}}}")), bytes);
    EXPECT_EQ(text(With(R"({"registry": {"K": {"V": {"type": "REG_EXPAND_SZ", "value": )", "}}}}")), bytes);
    EXPECT_EQ(text(With(R"({"registry": {"K": {"V": [)", "]}}}")), bytes + L'\0');
}

TEST(Utf16Text, NamesOfObjects_TakeIt) {
    const machine::Description entry = With(R"({"directories": {"\\X": {"entries": [)", "]}}}");
    EXPECT_EQ(entry.directories[0].entries->at(0).name, kBroken);
    EXPECT_EQ(entry.directories[0].entries->at(0).type, L"Device");
    EXPECT_EQ(With(R"({"dosDevices": {"X:": )", "}}").dos_devices[0].target, kBroken);
}

TEST(Utf16Text, HexThatIsNoCodeUnits_IsRefused) {
    for (const char* text : {R"({"utf16": "41"})", R"({"utf16": "00G1"})", R"({"utf16": 65})",
                             R"({"utf16": "0041", "label": "x"})"}) {
        EXPECT_THROW(Parse(std::string(R"({"volumes": [{"extents": [], "label": )") + text + "}]}"),
                     machine::DescriptionError)
            << text;
    }
    EXPECT_EQ(Parse(R"({"volumes": [{"extents": [], "label": {"utf16": ""}}]})").volumes[0].label, L"");
}

}  // namespace
}  // namespace machine_test
