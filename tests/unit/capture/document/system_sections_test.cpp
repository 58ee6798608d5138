#include "capture/document/system_sections.h"

#include "support/written_document.h"

#include <gtest/gtest.h>

namespace {

XmlTree Sections(const SystemSections& sections) {
    return Written([&](CMSXmlNode& root) { WriteSystemSections(root, sections); });
}

SystemSections FilledSections() {
    SystemSections record;
    record.Version = 7;
    record.DllVersion = L"9.50.6732.";
    record.Processor = {9, -3600, 107, L"GenuineExample", 4000, 1, 3, 2};
    record.ComputerSystem = {-60,         L"AT/AT", L"WORKGROUP", L"Maker",       L"Model",
                             4294967295U, {},       L"x64",       L"17060651008", L"HOST\\User"};
    record.ComputerSystem.SystemStartupOptions = {L"First", L"", L"<Third> & last"};
    record.BootConfiguration = {L"C:\\Windows",       L"C:\\Config",  L"Boot", L"E:",
                                L"BootConfiguration", L"C:\\Scratch", 5,       L"C:\\Temp"};
    OSInfo& os = record.OS;
    os.BootDevice = L"\\Device\\HarddiskVolume1";
    os.CountryCode = L"1";
    os.CSDVersion = L"Service Pack";
    os.CSName = L"HOST";
    os.CurrentTimeZone = 60;
    os.Description = L"A machine";
    os.Locale = L"0409";
    os.Manufacturer = L"OS maker";
    os.Organization = L"Organization";
    os.OSLanguage = 1033;
    os.OSType = 18;
    os.ProductType = 3;
    os.SerialNumber = L"00000-AAAAA";
    os.SystemDevice = L"\\Device\\HarddiskVolume3";
    os.SystemDirectory = L"C:\\Windows\\system32";
    os.SystemDrive = L"C:";
    os.Version = L"10.0.22631";
    os.Name = L"The caption";
    os.WindowsDirectory = L"C:\\Windows";
    os.OSArchitecture = 64;
    return record;
}

const XmlTree kFilled = Branch("root", {
                                           Leaf("Version", "7"),
                                           Leaf("DllVersion", "9.50.6732."),
                                           Branch("Processor",
                                                  {
                                                      Leaf("Architecture", "9"),
                                                      Leaf("CurrentClockSpeed", "-3600"),
                                                      Leaf("Family", "107"),
                                                      Leaf("Manufacturer", "GenuineExample"),
                                                      Leaf("MaxClockSpeed", "4000"),
                                                      Leaf("ProcessorId", "1"),
                                                      Leaf("ProcessorType", "3"),
                                                      Leaf("UniqueId", "2"),
                                                  }),
                                           Branch("ComputerSystem",
                                                  {
                                                      Leaf("CurrentTimeZone", "-60"),
                                                      Leaf("Description", "AT/AT"),
                                                      Leaf("Domain", "WORKGROUP"),
                                                      Leaf("Manufacturer", "Maker"),
                                                      Leaf("Model", "Model"),
                                                      Leaf("NumberOfProcessors", "4294967295"),
                                                      Branch("SystemStartupOptions",
                                                             {
                                                                 Leaf("size", "3"),
                                                                 Leaf("child0", "First"),
                                                                 Leaf("child1", ""),
                                                                 Leaf("child2", "<Third> & last"),
                                                             }),
                                                      Leaf("SystemType", "x64"),
                                                      Leaf("TotalPhysicalMemory", "17060651008"),
                                                      Leaf("UserName", "HOST\\User"),
                                                  }),
                                           Branch("BootConfiguration",
                                                  {
                                                      Leaf("BootDirectory", "C:\\Windows"),
                                                      Leaf("ConfigurationPath", "C:\\Config"),
                                                      Leaf("Description", "Boot"),
                                                      Leaf("LastDrive", "E:"),
                                                      Leaf("Name", "BootConfiguration"),
                                                      Leaf("ScratchDirectory", "C:\\Scratch"),
                                                      Leaf("SettingID", "5"),
                                                      Leaf("TempDirectory", "C:\\Temp"),
                                                  }),
                                           Branch("OS",
                                                  {
                                                      Leaf("BootDevice", "\\Device\\HarddiskVolume1"),
                                                      Leaf("CountryCode", "1"),
                                                      Leaf("CSDVersion", "Service Pack"),
                                                      Leaf("CSName", "HOST"),
                                                      Leaf("CurrentTimeZone", "60"),
                                                      Leaf("Description", "A machine"),
                                                      Leaf("Locale", "0409"),
                                                      Leaf("Manufacturer", "OS maker"),
                                                      Leaf("Organization", "Organization"),
                                                      Leaf("OSLanguage", "1033"),
                                                      Leaf("OSType", "18"),
                                                      Leaf("OSArchitecture", "64"),
                                                      Leaf("SerialNumber", "00000-AAAAA"),
                                                      Leaf("SystemDevice", "\\Device\\HarddiskVolume3"),
                                                      Leaf("SystemDirectory", "C:\\Windows\\system32"),
                                                      Leaf("SystemDrive", "C:"),
                                                      Leaf("Version", "10.0.22631"),
                                                      Leaf("Name", "The caption"),
                                                      Leaf("WindowsDirectory", "C:\\Windows"),
                                                  }),
                                       });

TEST(WriteSystemSections, FilledRecord_WritesEveryFieldInOrder) {
    EXPECT_EQ(Sections(FilledSections()), kFilled);
}

TEST(WriteSystemSections, EmptyRecord_WritesTheSameElementsWithoutContent) {
    const XmlTree empty = Sections({});
    EXPECT_EQ(empty.Names(), kFilled.Names());
    for (const char* section : {"Processor", "BootConfiguration", "OS"}) {
        EXPECT_EQ(empty.Child(section).Names(), kFilled.Child(section).Names());
    }
    EXPECT_EQ(empty.Child("Version"), Leaf("Version", "0"));
    EXPECT_EQ(empty.Child("DllVersion"), Leaf("DllVersion", ""));
    EXPECT_EQ(empty.Child("Processor").Child("Family"), Leaf("Family", "0"));
    EXPECT_EQ(empty.Child("OS").Child("SerialNumber"), Leaf("SerialNumber", ""));
}

TEST(WriteSystemSections, NoStartupOptions_LeaveTheSizeAlone) {
    EXPECT_EQ(Sections({}).Child("ComputerSystem").Child("SystemStartupOptions"),
              Branch("SystemStartupOptions", {Leaf("size", "0")}));
}

TEST(WriteSystemSections, ManyStartupOptions_AreCountedFromZero) {
    SystemSections record;
    record.ComputerSystem.SystemStartupOptions.assign(12, L"option");
    const XmlTree document = Sections(record);
    const XmlTree& options = document.Child("ComputerSystem").Child("SystemStartupOptions");
    ASSERT_EQ(options.children.size(), 13U);
    EXPECT_EQ(options.children.front(), Leaf("size", "12"));
    EXPECT_EQ(options.children.back(), Leaf("child11", "option"));
}

TEST(WriteSystemSections, ProductType_IsNotWritten) {
    EXPECT_FALSE(Sections(FilledSections()).Child("OS").Has("ProductType"));
}

}  // namespace
