#include "tools/orvane/options.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <initializer_list>

namespace {

using host::CaptureOptions;
using host::CheckOptions;
using host::DumpKind;
using host::DumpOptions;
using host::Message;
using host::ParseArguments;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

template <class Options>
Options Taken(std::initializer_list<std::wstring> arguments) {
    const host::Command command = ParseArguments(arguments);
    if (const auto* message = std::get_if<Message>(&command)) {
        ADD_FAILURE() << message->text;
        return {};
    }
    return std::get<Options>(command);
}

CaptureOptions Captured(std::initializer_list<std::wstring> arguments) {
    return Taken<CaptureOptions>(arguments);
}

Message Answered(std::initializer_list<std::wstring> arguments) {
    const host::Command command = ParseArguments(arguments);
    if (!std::holds_alternative<Message>(command)) {
        ADD_FAILURE() << "the arguments were taken";
        return {};
    }
    return std::get<Message>(command);
}

TEST(ParseArguments, Version_IsRecognised) {
    EXPECT_TRUE(std::holds_alternative<host::VersionOptions>(ParseArguments({L"version"})));
}

TEST(ParseArguments, BareCapture_HasTheDefaults) {
    const CaptureOptions options = Captured({L"capture"});
    EXPECT_EQ(options.format, 2U);
    EXPECT_THAT(options.volumes, IsEmpty());
    EXPECT_FALSE(options.machine);
    EXPECT_FALSE(options.output);
    EXPECT_FALSE(options.log);
    EXPECT_FALSE(options.force);
    EXPECT_FALSE(options.raw);
    EXPECT_FALSE(options.verbose);
}

TEST(ParseArguments, EveryOption_IsTaken) {
    const CaptureOptions options =
        Captured({L"capture", L"--format", L"1", L"--machine", L"m.json", L"--output", L"out.xml", L"--raw",
                  L"--force", L"--log", L"log.txt", L"--verbose"});
    EXPECT_EQ(options.format, 1U);
    EXPECT_EQ(options.machine, L"m.json");
    EXPECT_EQ(options.output, L"out.xml");
    EXPECT_EQ(options.log, L"log.txt");
    EXPECT_TRUE(options.force);
    EXPECT_TRUE(options.raw);
    EXPECT_TRUE(options.verbose);
}

TEST(ParseArguments, RepeatedVolumes_KeepTheirOrderAndSpelling) {
    const CaptureOptions options = Captured({L"capture", L"--volume", L"\\\\?\\Volume{B}\\", L"--volume",
                                             L"[a]", L"--volume", L"\\\\?\\Volume{B}\\"});
    EXPECT_THAT(options.volumes, ElementsAre(L"\\\\?\\Volume{B}\\", L"[a]", L"\\\\?\\Volume{B}\\"));
}

TEST(ParseArguments, PathThatBeginsWithASlash_IsAPath) {
    EXPECT_EQ(Captured({L"capture", L"--machine", L"/machines/m.json"}).machine, L"/machines/m.json");
}

TEST(ParseArguments, NationalLettersInPaths_AreKept) {
    EXPECT_EQ(Captured({L"capture", L"--output", L"\x00FC\x4E2D.xml"}).output, L"\x00FC\x4E2D.xml");
}

TEST(ParseArguments, EqualsSign_JoinsNameAndValue) {
    EXPECT_EQ(Captured({L"capture", L"--format=3"}).format, 3U);
}

TEST(ParseArguments, KindsOfDump_AreKnown) {
    EXPECT_EQ(Taken<DumpOptions>({L"dump", L"wmi"}).kind, DumpKind::kWmi);
    EXPECT_EQ(Taken<DumpOptions>({L"dump", L"disks"}).kind, DumpKind::kDisks);
    EXPECT_EQ(Taken<DumpOptions>({L"dump", L"volumes"}).kind, DumpKind::kVolumes);
    EXPECT_EQ(Taken<DumpOptions>({L"dump", L"firmware"}).kind, DumpKind::kFirmware);
}

TEST(ParseArguments, BareDump_HasTheDefaults) {
    const auto options = Taken<DumpOptions>({L"dump", L"disks"});
    EXPECT_FALSE(options.machine);
    EXPECT_FALSE(options.output);
    EXPECT_FALSE(options.log);
    EXPECT_FALSE(options.verbose);
}

TEST(ParseArguments, OptionsOfDump_AreTakenOnBothSidesOfTheKind) {
    const auto options = Taken<DumpOptions>({L"dump", L"--machine", L"m.json", L"--verbose", L"volumes",
                                             L"--output", L"out.txt", L"--force", L"--log", L"log.txt"});
    EXPECT_EQ(options.kind, DumpKind::kVolumes);
    EXPECT_EQ(options.machine, L"m.json");
    EXPECT_EQ(options.output, L"out.txt");
    EXPECT_TRUE(options.force);
    EXPECT_EQ(options.log, L"log.txt");
    EXPECT_TRUE(options.verbose);
}

TEST(ParseArguments, BareCheck_HasTheDefaults) {
    const auto options = Taken<CheckOptions>({L"check"});
    EXPECT_THAT(options.volumes, IsEmpty());
    EXPECT_FALSE(options.machine);
    EXPECT_FALSE(options.log);
    EXPECT_FALSE(options.json);
    EXPECT_FALSE(options.verbose);
}

TEST(ParseArguments, OptionsOfCheck_AreTaken) {
    const auto options = Taken<CheckOptions>({L"check", L"--volume", L"b", L"--volume", L"a", L"--json",
                                              L"--machine", L"m.json", L"--log", L"log.txt", L"--verbose"});
    EXPECT_THAT(options.volumes, ElementsAre(L"b", L"a"));
    EXPECT_EQ(options.machine, L"m.json");
    EXPECT_EQ(options.log, L"log.txt");
    EXPECT_TRUE(options.json);
    EXPECT_TRUE(options.verbose);
}

class ParseArgumentsHelp : public testing::TestWithParam<std::vector<std::wstring>> {};

TEST_P(ParseArgumentsHelp, Help_IsNoError) {
    const host::Command command = ParseArguments(GetParam());
    ASSERT_TRUE(std::holds_alternative<Message>(command));
    EXPECT_EQ(std::get<Message>(command).exit_code, 0);
    EXPECT_THAT(std::get<Message>(command).text, HasSubstr("orvane"));
}

INSTANTIATE_TEST_SUITE_P(Help, ParseArgumentsHelp,
                         testing::Values(std::vector<std::wstring>{L"--help"},
                                         std::vector<std::wstring>{L"-h"},
                                         std::vector<std::wstring>{L"capture", L"--help"},
                                         std::vector<std::wstring>{L"dump", L"--help"},
                                         std::vector<std::wstring>{L"check", L"--help"},
                                         std::vector<std::wstring>{L"version", L"--help"}));

TEST(ParseArguments, HelpOfCapture_NamesEveryOption) {
    const std::string text = Answered({L"capture", L"--help"}).text;
    for (const char* option :
         {"--format", "--volume", "--machine", "--output", "--force", "--raw", "--log", "--verbose"}) {
        EXPECT_THAT(text, HasSubstr(option));
    }
}

TEST(ParseArguments, HelpOfDump_NamesKindsOptionsAndExitCodes) {
    const std::string text = Answered({L"dump", L"--help"}).text;
    for (const char* part : {"wmi", "disks", "volumes", "firmware", "--output", "--force", "--machine",
                             "--log", "--verbose", "Exit codes"}) {
        EXPECT_THAT(text, HasSubstr(part));
    }
}

TEST(ParseArguments, HelpOfCheck_NamesOptionsMembersAndExitCodes) {
    const std::string text = Answered({L"check", L"--help"}).text;
    for (const char* part : {"--volume", "--json", "--machine", "--log", "--verbose", "mountPoints",
                             "canBackup", "reasons", "NO_COLOR", "Exit codes"}) {
        EXPECT_THAT(text, HasSubstr(part));
    }
}

TEST(ParseArguments, HelpOfTheProgram_NamesCommandsAndExitCodes) {
    const std::string text = Answered({L"--help"}).text;
    for (const char* part : {"capture", "dump", "check", "version", "Exit codes", "0  done"}) {
        EXPECT_THAT(text, HasSubstr(part));
    }
}

class ParseArgumentsRefusal : public testing::TestWithParam<std::vector<std::wstring>> {};

TEST_P(ParseArgumentsRefusal, BadArguments_AreExplained) {
    const host::Command command = ParseArguments(GetParam());
    ASSERT_TRUE(std::holds_alternative<Message>(command));
    EXPECT_EQ(std::get<Message>(command).exit_code, 2);
    EXPECT_THAT(std::get<Message>(command).text, testing::StartsWith("orvane: "));
}

INSTANTIATE_TEST_SUITE_P(
    Arguments, ParseArgumentsRefusal,
    testing::Values(
        std::vector<std::wstring>{}, std::vector<std::wstring>{L""}, std::vector<std::wstring>{L"frobnicate"},
        std::vector<std::wstring>{L"--raw"}, std::vector<std::wstring>{L"capture", L"--frobnicate"},
        std::vector<std::wstring>{L"capture", L"extra"}, std::vector<std::wstring>{L"version", L"extra"},
        std::vector<std::wstring>{L"capture", L"version"}, std::vector<std::wstring>{L"capture", L"--format"},
        std::vector<std::wstring>{L"capture", L"--format", L"4294967296"},
        std::vector<std::wstring>{L"capture", L"--format", L"-1"},
        std::vector<std::wstring>{L"capture", L"--format", L"three"},
        std::vector<std::wstring>{L"capture", L"--format", L"1", L"--format", L"3"},
        std::vector<std::wstring>{L"capture", L"--volume"},
        std::vector<std::wstring>{L"capture", L"--volume", L""},
        std::vector<std::wstring>{L"capture", L"--volume", L"a", L"b"},
        std::vector<std::wstring>{L"capture", L"--machine", L""},
        std::vector<std::wstring>{L"capture", L"--output", L""},
        std::vector<std::wstring>{L"capture", L"--log"}, std::vector<std::wstring>{L"dump"},
        std::vector<std::wstring>{L"dump", L"frobnicate"}, std::vector<std::wstring>{L"dump", L"WMI"},
        std::vector<std::wstring>{L"dump", L"wmi", L"disks"},
        std::vector<std::wstring>{L"dump", L"wmi", L"--raw"},
        std::vector<std::wstring>{L"dump", L"disks", L"--volume", L"a"},
        std::vector<std::wstring>{L"check", L"extra"}, std::vector<std::wstring>{L"check", L"--volume"},
        std::vector<std::wstring>{L"check", L"--volume", L""},
        std::vector<std::wstring>{L"check", L"--format", L"3"},
        std::vector<std::wstring>{L"check", L"--json", L"--machine", L""}));

}  // namespace
