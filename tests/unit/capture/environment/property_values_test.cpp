// How the collectors convert the texts, lists and instances that they read.

#include "capture/environment/system_information.h"
#include "unit/capture/environment/wmi_machine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class PropertyValues : public testing::Test {
protected:
    void Set(const wchar_t* property, const machine::WmiValue& value) {
        machine_.Set(class_name_, property, value);
    }

    WmiMachine machine_;
    std::wstring class_name_;
};

// --- Texts, each into its own member.

TEST_F(PropertyValues, TextThatIsNoText_LeavesTheMemberAsItWas) {
    class_name_ = L"Win32_Processor";
    for (const machine::WmiValue& value : {WmiNull(), WmiNumber(VT_I4, 5), WmiTexts({L"a"}), WmiFailure()}) {
        Set(L"Manufacturer", value);
        ProcessorInfo processor;
        processor.Manufacturer = L"before";
        EXPECT_TRUE(GetProcessorInfo(processor));
        EXPECT_EQ(processor.Manufacturer, L"before");
    }
}

TEST_F(PropertyValues, EmptyText_ReplacesTheMember) {
    class_name_ = L"Win32_Processor";
    Set(L"Manufacturer", WmiText(L""));
    ProcessorInfo processor;
    processor.Manufacturer = L"before";
    EXPECT_TRUE(GetProcessorInfo(processor));
    EXPECT_EQ(processor.Manufacturer, L"");
}

// --- Lists, instances, constants.

TEST_F(PropertyValues, StartupOptions_ComeInTheOrderOfTheArray) {
    machine_.Set(L"Win32_ComputerSystem", L"SystemStartupOptions", WmiTexts({L"second", L"", L"first"}));
    ComputerSystemInfo computer_system;
    EXPECT_TRUE(GetComputerSystem(computer_system));
    EXPECT_THAT(computer_system.SystemStartupOptions, ElementsAre(L"second", L"", L"first"));
}

TEST_F(PropertyValues, StartupOptionsThatAreNoList_GiveNone) {
    for (const machine::WmiValue& value : {WmiNull(), WmiText(L"a"), WmiTexts({}), WmiFailure()}) {
        machine_.Set(L"Win32_ComputerSystem", L"SystemStartupOptions", value);
        ComputerSystemInfo computer_system;
        EXPECT_TRUE(GetComputerSystem(computer_system));
        EXPECT_THAT(computer_system.SystemStartupOptions, IsEmpty());
    }
}

TEST_F(PropertyValues, StartupOptionsOfTwoInstances_AreAllCollected) {
    machine::WmiClass& systems = machine_.Class(L"Win32_ComputerSystem");
    systems.instances.push_back(systems.instances.at(0));
    machine::SetProperty(systems.instances[0], {L"SystemStartupOptions", WmiTexts({L"first", L"both"})});
    machine::SetProperty(systems.instances[1], {L"SystemStartupOptions", WmiTexts({L"both", L"second"})});
    ComputerSystemInfo computer_system;
    EXPECT_TRUE(GetComputerSystem(computer_system));
    EXPECT_THAT(computer_system.SystemStartupOptions, ElementsAre(L"first", L"both", L"both", L"second"));
}

TEST_F(PropertyValues, SecondProcessor_OverwritesTheFirst) {
    machine::WmiClass& processors = machine_.Class(L"Win32_Processor");
    processors.instances.push_back(processors.instances.at(0));
    machine::SetProperty(processors.instances[0], {L"Manufacturer", WmiText(L"first")});
    machine::SetProperty(processors.instances[0], {L"Family", WmiNumber(VT_I4, 1)});
    machine::SetProperty(processors.instances[1], {L"Manufacturer", WmiText(L"second")});
    machine::SetProperty(processors.instances[1], {L"Family", WmiNumber(VT_I4, 2)});
    ProcessorInfo processor;
    EXPECT_TRUE(GetProcessorInfo(processor));
    EXPECT_EQ(processor.Manufacturer, L"second");
    EXPECT_EQ(processor.Family, 2);
}

TEST_F(PropertyValues, MandatoryFailureOfTheSecondInstance_KeepsWhatWasRead) {
    machine::WmiClass& systems = machine_.Class(L"Win32_BootConfiguration");
    systems.instances.push_back(systems.instances.at(0));
    machine::SetProperty(systems.instances[0], {L"LastDrive", WmiText(L"X:")});
    machine::SetProperty(systems.instances[1], {L"BootDirectory", WmiFailure()});
    BootConfigurationInfo boot_configuration;
    EXPECT_FALSE(GetBootConfiguration(boot_configuration));
    EXPECT_EQ(boot_configuration.LastDrive, L"X:");
}

TEST_F(PropertyValues, NoInstance_LeavesTheSectionUntouched) {
    machine_.Class(L"Win32_Processor").instances.clear();
    ProcessorInfo processor;
    processor.Family = 77;
    processor.Manufacturer = L"before";
    EXPECT_FALSE(GetProcessorInfo(processor));
    EXPECT_EQ(processor.Family, 77);
    EXPECT_EQ(processor.Manufacturer, L"before");
}

TEST_F(PropertyValues, NullBootDevice_KeepsItsTextAndGoesOn) {
    machine_.Set(L"Win32_OperatingSystem", L"BootDevice", WmiNull());
    OSInfo os;
    EXPECT_TRUE(GetOSInfo(os));
    EXPECT_EQ(os.BootDevice, L"");
    EXPECT_FALSE(os.SystemDrive.empty());
}

TEST_F(PropertyValues, Architecture_IsSetRightAfterTheBootDevice) {
    machine_.Set(L"Win32_OperatingSystem", L"OSArchitecture", WmiText(L"32-bit"));
    machine_.Set(L"Win32_OperatingSystem", L"SystemDevice", WmiFailure());
    OSInfo os;
    EXPECT_FALSE(GetOSInfo(os));
    EXPECT_EQ(os.OSArchitecture, 64U);
}

TEST_F(PropertyValues, Architecture_IsNotSetWithoutTheBootDevice) {
    machine_.Set(L"Win32_OperatingSystem", L"BootDevice", WmiFailure());
    OSInfo os;
    EXPECT_FALSE(GetOSInfo(os));
    EXPECT_EQ(os.OSArchitecture, 0U);
}

// wmi_values_test.cpp has the conversion of each type.
TEST_F(PropertyValues, UnsignedNumbers_AreCutTo16BitsInAllButTwoMembers) {
    machine_.Set(L"Win32_Processor", L"Family", WmiNumber(VT_UI4, 70000));
    machine_.Set(L"Win32_ComputerSystem", L"NumberOfProcessors", WmiNumber(VT_UI4, 70000));
    machine_.Set(L"Win32_OperatingSystem", L"ProductType", WmiNumber(VT_UI4, 70000));
    machine_.Set(L"Win32_BootConfiguration", L"SettingID", WmiNumber(VT_UI4, 70000));
    SystemSections sections;
    ASSERT_TRUE(GetWMIInfo(sections));
    EXPECT_EQ(sections.Processor.Family, 4464);
    EXPECT_EQ(sections.ComputerSystem.NumberOfProcessors, 4464U);
    EXPECT_EQ(sections.OS.ProductType, 70000U);
    EXPECT_EQ(sections.BootConfiguration.SettingID, 70000U);
}

TEST_F(PropertyValues, NumberThatCannotBeRead_LeavesTheMemberAsItWas) {
    machine_.Set(L"Win32_Processor", L"Family", WmiFailure());
    ProcessorInfo processor;
    processor.Family = 77;
    EXPECT_TRUE(GetProcessorInfo(processor));
    EXPECT_EQ(processor.Family, 77);
}

}  // namespace
