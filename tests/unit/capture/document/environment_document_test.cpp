#include "capture/document/environment_document.h"

#include "support/written_document.h"

#include <comdef.h>
#include <gtest/gtest.h>

namespace {

XmlTree Document(const EnvInfo& environment) {
    const XmlTree root = Written([&](CMSXmlNode& node) { WriteEnvironment(node, environment); });
    return root.Child("BMREnvInfo");
}

// What WMI has no value for is told as nothing or 0, not as a value of its own.
TEST(WriteEnvironment, NothingCollected_IsEmptyOrZero) {
    const XmlTree document = Document(EnvInfo{});
    for (const char* name : {"Processor", "OS", "BootConfiguration", "ComputerSystem", "BootConfig"}) {
        const XmlTree& section = document.Child(name);
        EXPECT_GE(section.children.size(), 4U) << name;
        for (const XmlTree& element : section.children) {
            const XmlTree& value = element.children.empty() ? element : element.children.front();
            EXPECT_TRUE(value.text.empty() || value.text == "0") << name << '/' << element.name;
        }
    }
}

TEST(WriteEnvironment, UnsignedMembersOfSignedElements_AreWrittenSigned) {
    EnvInfo environment;
    environment.DiskDrives.resize(1);
    environment.DiskDrives[0].size = 0xFFFFFFFFFFFFFFFFU;
    environment.DiskDrives[0].disk_number = 0xFFFFFFFFU;
    const XmlTree document = Document(environment);
    const XmlTree& disk = document.Child("DiskDrives").Child("x0");
    EXPECT_EQ(disk.Child("index").text, "-1");
    EXPECT_EQ(disk.Child("size").text, "-1");
}

TEST(WriteEnvironment, TerminatorInTheBootOptions_StaysOutOfTheDocument) {
    EnvInfo environment;
    environment.BootConfig.m_strBootOptions.assign(L" NOEXECUTE=OPTIN\0", 17);
    const XmlTree document = Document(environment);
    EXPECT_EQ(document.Child("BootConfig").Child("m_strBootOptions").text, " NOEXECUTE=OPTIN");
    EXPECT_EQ(Lines(document).find('\0'), std::string::npos);
}

TEST(WriteEnvironment, BootIniContents_AreTheLastElement) {
    EnvInfo environment;
    environment.BootIniContents = L"[boot loader]";
    const XmlTree document = Document(environment);
    EXPECT_EQ(document.children.back(), Leaf("BootIniContents", "[boot loader]"));
}

TEST(WriteEnvironment, EmptyNode_Throws) {
    CMSXmlNode nothing;
    EXPECT_THROW(WriteEnvironment(nothing, EnvInfo{}), _com_error);
    EXPECT_THROW(WriteEnvironment(nothing, EnvInfoV3{}), _com_error);
}

}  // namespace
