// How the collectors convert the numbers that they read.

#include "capture/environment/system_information.h"
#include "unit/capture/environment/wmi_machine.h"

#include <gtest/gtest.h>

namespace {

class NumberValues : public testing::Test {
protected:
    WmiMachine machine_;
};

template <class Section>
struct NumberMember {
    const wchar_t* property;
    std::int32_t Section::*member;
};

template <class Section, class Members>
void ExpectNumbers(WmiMachine& machine, const wchar_t* class_name, bool (*collect)(Section&),
                   const Members& members) {
    std::int32_t number = 100;
    for (const auto& row : members) {
        machine.Set(class_name, row.property, WmiNumber(VT_I4, ++number));
    }
    Section section;
    EXPECT_TRUE(collect(section));
    number = 100;
    for (const auto& row : members) {
        EXPECT_EQ(section.*row.member, ++number);
    }
}

TEST_F(NumberValues, Numbers_GoToTheirMembers) {
    const NumberMember<ProcessorInfo> processor[] = {
        {L"Architecture", &ProcessorInfo::Architecture},
        {L"CurrentClockSpeed", &ProcessorInfo::CurrentClockSpeed},
        {L"Family", &ProcessorInfo::Family},
        {L"MaxClockSpeed", &ProcessorInfo::MaxClockSpeed},
        {L"ProcessorId", &ProcessorInfo::ProcessorId},
        {L"ProcessorType", &ProcessorInfo::ProcessorType},
        {L"UniqueId", &ProcessorInfo::UniqueId},
    };
    const NumberMember<OSInfo> os[] = {{L"CurrentTimeZone", &OSInfo::CurrentTimeZone},
                                       {L"OSLanguage", &OSInfo::OSLanguage},
                                       {L"OSType", &OSInfo::OSType}};
    const NumberMember<ComputerSystemInfo> computer[] = {
        {L"CurrentTimeZone", &ComputerSystemInfo::CurrentTimeZone}};
    ExpectNumbers(machine_, L"Win32_Processor", GetProcessorInfo, processor);
    ExpectNumbers(machine_, L"Win32_OperatingSystem", GetOSInfo, os);
    ExpectNumbers(machine_, L"Win32_ComputerSystem", GetComputerSystem, computer);
}

TEST_F(NumberValues, UnsignedNumbers_GoToTheirMembers) {
    machine_.Set(L"Win32_OperatingSystem", L"ProductType", WmiNumber(VT_I4, 3));
    machine_.Set(L"Win32_ComputerSystem", L"NumberOfProcessors", WmiNumber(VT_I4, 4));
    machine_.Set(L"Win32_BootConfiguration", L"SettingID", WmiNumber(VT_I4, 5));
    SystemSections sections;
    ASSERT_TRUE(GetWMIInfo(sections));
    EXPECT_EQ(sections.OS.ProductType, 3U);
    EXPECT_EQ(sections.ComputerSystem.NumberOfProcessors, 4U);
    EXPECT_EQ(sections.BootConfiguration.SettingID, 5U);
}

struct IntegerCase {
    const char* name;
    machine::WmiValue value;
    std::int32_t low;    // expected from the rule that keeps 16 bits of VT_UI4
    std::int32_t whole;  // expected from the rule that keeps all 32 bits
};

void PrintTo(const IntegerCase& integer, std::ostream* out) {
    *out << integer.name;
}

class IntegerRule : public testing::TestWithParam<IntegerCase> {
protected:
    WmiMachine machine_;
};

INSTANTIATE_TEST_SUITE_P(Types, IntegerRule,
                         testing::Values(IntegerCase{"NegativeI2", WmiNumber(VT_I2, -480), -480, -480},
                                         IntegerCase{"True", WmiNumber(VT_BOOL, 1), -1, -1},
                                         IntegerCase{"False", WmiNumber(VT_BOOL, 0), 0, 0},
                                         IntegerCase{"LargestUI2", WmiNumber(VT_UI2, 65535), 65535, 65535},
                                         IntegerCase{"UI4", WmiNumber(VT_UI4, 70000), 4464, 70000},
                                         IntegerCase{"SmallUI4", WmiNumber(VT_UI4, 65535), 65535, 65535},
                                         IntegerCase{"I4", WmiNumber(VT_I4, 70000), 70000, 70000},
                                         IntegerCase{"NegativeI4", WmiNumber(VT_I4, -70000), -70000, -70000},
                                         IntegerCase{"Int", WmiNumber(VT_INT, 70000), 70000, 70000},
                                         IntegerCase{"Uint", WmiNumber(VT_UINT, 70000), 70000, 70000},
                                         IntegerCase{"I1", WmiNumber(VT_I1, 5), 0, 0},
                                         IntegerCase{"UI1", WmiNumber(VT_UI1, 5), 0, 0},
                                         IntegerCase{"I8", WmiNumber(VT_I8, 5), 0, 0},
                                         IntegerCase{"Text", WmiText(L"5"), 0, 0},
                                         IntegerCase{"Texts", WmiTexts({L"5"}), 0, 0},
                                         IntegerCase{"Null", WmiNull(), 0, 0}),
                         [](const auto& integer) { return std::string(integer.param.name); });

TEST_P(IntegerRule, CollectorsOwnNumber_TakesTheValueByItsType) {
    machine_.Set(L"Win32_Processor", L"Family", GetParam().value);
    ProcessorInfo processor;
    processor.Family = 77;
    EXPECT_TRUE(GetProcessorInfo(processor));
    EXPECT_EQ(processor.Family, GetParam().low);
}

TEST_P(IntegerRule, NumberOfProcessors_TakesTheValueByItsType) {
    machine_.Set(L"Win32_ComputerSystem", L"NumberOfProcessors", GetParam().value);
    ComputerSystemInfo computer_system;
    computer_system.NumberOfProcessors = 77;
    EXPECT_TRUE(GetComputerSystem(computer_system));
    EXPECT_EQ(computer_system.NumberOfProcessors, static_cast<std::uint32_t>(GetParam().low));
}

TEST_P(IntegerRule, ProductTypeAndSettingId_TakeTheWholeValue) {
    machine_.Set(L"Win32_OperatingSystem", L"ProductType", GetParam().value);
    machine_.Set(L"Win32_BootConfiguration", L"SettingID", GetParam().value);
    SystemSections sections;
    ASSERT_TRUE(GetWMIInfo(sections));
    EXPECT_EQ(sections.OS.ProductType, static_cast<std::uint32_t>(GetParam().whole));
    EXPECT_EQ(sections.BootConfiguration.SettingID, static_cast<std::uint32_t>(GetParam().whole));
}

TEST_F(NumberValues, NumberThatCannotBeRead_LeavesTheMemberAsItWas) {
    machine_.Set(L"Win32_Processor", L"Family", WmiFailure());
    ProcessorInfo processor;
    processor.Family = 77;
    EXPECT_TRUE(GetProcessorInfo(processor));
    EXPECT_EQ(processor.Family, 77);
}

TEST_F(NumberValues, TextsInThePlaceOfNumbers_EndAsZero) {
    machine_.Set(L"Win32_Processor", L"ProcessorId", WmiText(L"178BFBFF00A20F12"));
    machine_.Set(L"Win32_Processor", L"UniqueId", WmiText(L"12"));
    machine_.Set(L"Win32_BootConfiguration", L"SettingID", WmiText(L"12"));
    SystemSections sections;
    ASSERT_TRUE(GetWMIInfo(sections));
    EXPECT_EQ(sections.Processor.ProcessorId, 0);
    EXPECT_EQ(sections.Processor.UniqueId, 0);
    EXPECT_EQ(sections.BootConfiguration.SettingID, 0U);
}

}  // namespace
