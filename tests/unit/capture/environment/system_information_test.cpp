#include "capture/environment/system_information.h"

#include "support/logger_capture.h"
#include "support/refused_imports.h"
#include "unit/capture/environment/wmi_machine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

namespace {

using support::kHostError;
using testing::ElementsAre;

// A collector: its name, its WMI class, and the call that fills its section.
struct CollectorCase {
    const char* name;
    const wchar_t* class_name;
    std::function<int(SystemSections&)> collect;
    std::vector<std::wstring> properties;  // in the order in which they are read
};

void PrintTo(const CollectorCase& collector, std::ostream* out) {
    *out << collector.name;
}

const CollectorCase kProcessor = {
    "GetProcessorInfo",
    L"Win32_Processor",
    [](SystemSections& sections) { return GetProcessorInfo(sections.Processor); },
    {L"Manufacturer", L"Architecture", L"CurrentClockSpeed", L"Family", L"MaxClockSpeed", L"ProcessorId",
     L"ProcessorType", L"UniqueId"},
};
const CollectorCase kOS = {
    "GetOSInfo",
    L"Win32_OperatingSystem",
    [](SystemSections& sections) { return GetOSInfo(sections.OS); },
    {L"BootDevice",  L"CountryCode",  L"CSDVersion",   L"CSName",           L"CurrentTimeZone",
     L"Description", L"Locale",       L"Manufacturer", L"Organization",     L"OSLanguage",
     L"OSType",      L"SerialNumber", L"SystemDevice", L"SystemDirectory",  L"SystemDrive",
     L"Version",     L"ProductType",  L"Caption",      L"WindowsDirectory", L"Description"},
};
const CollectorCase kComputerSystem = {
    "GetComputerSystem",
    L"Win32_ComputerSystem",
    [](SystemSections& sections) { return GetComputerSystem(sections.ComputerSystem); },
    {L"CurrentTimeZone", L"Description", L"Domain", L"Manufacturer", L"Model", L"NumberOfProcessors",
     L"SystemStartupOptions", L"SystemType", L"TotalPhysicalMemory", L"UserName"},
};
const CollectorCase kBootConfiguration = {
    "GetBootConfiguration",
    L"Win32_BootConfiguration",
    [](SystemSections& sections) { return GetBootConfiguration(sections.BootConfiguration); },
    {L"BootDirectory", L"ConfigurationPath", L"Description", L"LastDrive", L"Name", L"ScratchDirectory",
     L"SettingID", L"TempDirectory"},
};

class EveryCollector : public testing::TestWithParam<CollectorCase> {
protected:
    int Collect() { return GetParam().collect(sections_); }

    std::string Line(const char* end) const { return GetParam().name + std::string(end); }

    WmiMachine machine_;
    support::LoggerCapture log_;
    SystemSections sections_;
};

INSTANTIATE_TEST_SUITE_P(Collectors, EveryCollector,
                         testing::Values(kProcessor, kOS, kComputerSystem, kBootConfiguration),
                         [](const auto& collector) { return std::string(collector.param.name); });

TEST_P(EveryCollector, Class_IsQueriedAndReadInOrder) {
    EXPECT_NE(Collect(), 0);
    EXPECT_THAT(machine_.QueriedClasses(), ElementsAre(GetParam().class_name));
    EXPECT_EQ(machine_.ReadProperties(GetParam().class_name), GetParam().properties);
    EXPECT_EQ(log_.Count(kHostError), 0U) << log_;
}

TEST_P(EveryCollector, EveryInstance_IsRead) {
    machine::WmiClass& instances = machine_.Class(GetParam().class_name);
    instances.instances.assign(3, machine::WmiInstance(instances.instances.at(0)));
    EXPECT_NE(Collect(), 0);
    EXPECT_EQ(machine_.ReadProperties(GetParam().class_name).size(), 3 * GetParam().properties.size());
}

TEST_P(EveryCollector, NoInstance_FailsWithFindFirstObject) {
    machine_.Class(GetParam().class_name).instances.clear();
    EXPECT_EQ(Collect(), 0);
    EXPECT_THAT(log_.Lines(kHostError), ElementsAre(Line(" FindFirstObject failed")));
}

TEST_P(EveryCollector, FailedReset_FailsWithFindFirstObject) {
    machine_.simulation().faults().Fail("IEnumWbemClassObject::Reset", 0x80041016);
    EXPECT_EQ(Collect(), 0);
    EXPECT_THAT(log_.Lines(kHostError), ElementsAre(Line(" FindFirstObject failed")));
}

TEST_P(EveryCollector, FailedQuery_FailsAsNotInitialized) {
    machine_.simulation().faults().Fail("IWbemServices::ExecQuery", 0x80041003);
    EXPECT_EQ(Collect(), 0);
    EXPECT_THAT(log_.Lines(kHostError),
                ElementsAre("CWmi::CWmi ExecQuery failed error 0x80041003", Line(" wmi not initialized")));
}

TEST_P(EveryCollector, FailureOfALaterFetch_EndsTheWalkWithSuccess) {
    machine_.simulation().faults().Add({"IEnumWbemClassObject::Next", {}, 2, true, {}, {}});
    EXPECT_NE(Collect(), 0);
    EXPECT_EQ(log_.Count(kHostError), 0U) << log_;
}

// A property whose absence makes the collector fail.
struct MandatoryCase {
    const CollectorCase* collector;
    const wchar_t* property;
    const char* message;
    std::size_t reads;  // number of properties read up to and including this one
};

void PrintTo(const MandatoryCase& mandatory, std::ostream* out) {
    *out << mandatory.message;
}

class MandatoryProperty : public testing::TestWithParam<MandatoryCase> {
protected:
    int Collect() { return GetParam().collector->collect(sections_); }

    WmiMachine machine_;
    support::LoggerCapture log_;
    SystemSections sections_;
};

INSTANTIATE_TEST_SUITE_P(
    Properties, MandatoryProperty,
    testing::Values(MandatoryCase{&kOS, L"BootDevice", "GetOSInfo GetBootDevice failed", 1},
                    MandatoryCase{&kOS, L"SystemDevice", "GetOSInfo GetSystemDevice failed", 13},
                    MandatoryCase{&kComputerSystem, L"NumberOfProcessors",
                                  "GetComputerSystem GetNumberOfProcessors failed", 6},
                    MandatoryCase{&kBootConfiguration, L"BootDirectory",
                                  "GetBootConfiguration GetBootDirectory failed", 1}));

TEST_P(MandatoryProperty, FailedReading_FailsTheCollectorAtOnce) {
    machine_.Set(GetParam().collector->class_name, GetParam().property, WmiFailure());
    EXPECT_EQ(Collect(), 0);
    EXPECT_THAT(log_.Lines(kHostError), ElementsAre(GetParam().message));
    EXPECT_EQ(machine_.ReadProperties(GetParam().collector->class_name).size(), GetParam().reads);
}

TEST_P(MandatoryProperty, NullValue_IsNoFailure) {
    machine_.Set(GetParam().collector->class_name, GetParam().property, WmiNull());
    EXPECT_NE(Collect(), 0);
    EXPECT_EQ(log_.Count(kHostError), 0U) << log_;
}

TEST_P(MandatoryProperty, ValueOfAnotherType_IsNoFailure) {
    machine_.Set(GetParam().collector->class_name, GetParam().property, WmiTexts({L"a"}));
    EXPECT_NE(Collect(), 0);
    EXPECT_EQ(log_.Count(kHostError), 0U) << log_;
}

const std::vector<std::wstring> kAllClasses = {L"Win32_Processor", L"Win32_OperatingSystem",
                                               L"Win32_ComputerSystem", L"Win32_BootConfiguration"};

TEST(GetWMIInfo, EachSectionThatFails_FailsTheWholeAfterAllWereAttempted) {
    for (const std::wstring& failing : kAllClasses) {
        WmiMachine machine;
        machine.Class(failing).instances.clear();
        SystemSections sections;
        EXPECT_FALSE(GetWMIInfo(sections));
        EXPECT_EQ(machine.QueriedClasses(), kAllClasses);
    }
}

TEST(GetWMIInfo, ComThatCannotBeInitialised_FailsBeforeAnyQuery) {
    WmiMachine machine;
    const support::LoggerCapture log;
    const auto refused = support::RefuseCom();
    SystemSections sections;
    EXPECT_FALSE(GetWMIInfo(sections));
    EXPECT_THAT(log.Lines(kHostError),
                ElementsAre("CoInitializeEx failed error=0x8007000e calling function GetWMIInfo",
                            "GetWMIInfo: Cannot initialize COM"));
    EXPECT_THAT(machine.QueriedClasses(), testing::IsEmpty());
}

}  // namespace
