#include "capture/document/environment_document.h"

#include "support/written_document.h"

#include <comdef.h>
#include <gtest/gtest.h>

namespace {

template <class Environment>
XmlTree Document(const Environment& environment) {
    return Written([&](CMSXmlNode& root) { WriteEnvironment(root, environment); });
}

TEST(WriteEnvironment, FlatRecord_IsOneElementWithItsSectionsInOrder) {
    const XmlTree root = Document(EnvInfo{});
    EXPECT_EQ(root.name, "root");
    EXPECT_EQ(root.Names(), std::vector<std::string>{"BMREnvInfo"});
    EXPECT_EQ(root.Child("BMREnvInfo").Names(),
              (std::vector<std::string>{"Version", "DllVersion", "Processor", "ComputerSystem",
                                        "BootConfiguration", "OS", "DiskDrives", "VolumeTable",
                                        "DriveLetterTable", "BootConfig", "BootIniContents"}));
}

TEST(WriteEnvironment, FlatRecord_WritesEachTableFromItsOwnMember) {
    EnvInfo environment;
    environment.Version = 5;
    environment.DllVersion = L"9.50.6732.";
    environment.DiskDrives.resize(1);
    environment.VolumeTable.resize(2);
    environment.DriveLetterTable.resize(3);
    environment.BootConfig.m_strOS = L"The caption";
    environment.BootIniContents = L"[boot loader]";
    const XmlTree root = Document(environment);
    const XmlTree& document = root.Child("BMREnvInfo");
    EXPECT_EQ(document.Child("Version").text, "5");
    EXPECT_EQ(document.Child("DllVersion").text, "9.50.6732.");
    EXPECT_EQ(document.Child("DiskDrives").Child("size_idx").text, "1");
    EXPECT_EQ(document.Child("VolumeTable").Child("TotalVolumes").text, "2");
    EXPECT_EQ(document.Child("DriveLetterTable").Child("TotalDrives").text, "3");
    EXPECT_EQ(document.Child("BootConfig").Child("m_strOS").text, "The caption");
    EXPECT_EQ(document.Child("BootIniContents").text, "[boot loader]");
}

TEST(WriteEnvironment, DiskModel_TakesThePlaceOfTheTables) {
    const EnvInfoV3 environment;
    const XmlTree root = Document(environment);
    const XmlTree& document = root.Child("BMREnvInfo");
    EXPECT_EQ(document.Names(),
              (std::vector<std::string>{"Version", "DllVersion", "Processor", "ComputerSystem",
                                        "BootConfiguration", "OS", "DeviceInfo", "VolumeInfo"}));
    EXPECT_EQ(document.Child("DeviceInfo"), Branch("DeviceInfo", {Leaf("NumberOfDisks", "0")}));
    EXPECT_EQ(document.Child("VolumeInfo"), Branch("VolumeInfo", {Leaf("NumberOfVolumes", "0")}));
}

TEST(WriteEnvironment, TextWithMarkup_IsEscaped) {
    EnvInfo environment;
    environment.BootIniContents = L"a < b && c > d \"quoted\" ]]>";
    const XmlTree root = Document(environment);
    EXPECT_EQ(root.Child("BMREnvInfo").Child("BootIniContents").text, "a < b && c > d \"quoted\" ]]>");
}

TEST(WriteEnvironment, NationalLetters_AreKept) {
    EnvInfo environment;
    environment.BootIniContents = L"\x00FC\x4E2D\xD83D\xDCBE";
    const XmlTree root = Document(environment);
    EXPECT_EQ(root.Child("BMREnvInfo").Child("BootIniContents").text, "\xC3\xBC\xE4\xB8\xAD\xF0\x9F\x92\xBE");
}

TEST(WriteEnvironment, EmptyNode_Throws) {
    CMSXmlNode nothing;
    EXPECT_THROW(WriteEnvironment(nothing, EnvInfo{}), _com_error);
    EXPECT_THROW(WriteEnvironment(nothing, EnvInfoV3{}), _com_error);
}

}  // namespace
