// orvane record and orvane prove, called in this process. Their child processes are those of orvane.exe.

#include "tools/orvane/record_command.h"

#include "machine/recorder/observe/observations_file.h"
#include "support/scoped_import.h"
#include "tools/orvane/finished_process.h"
#include "tools/orvane/library_runs.h"
#include "tools/orvane/program.h"

#include <gmock/gmock.h>
#include <tlhelp32.h>

#include <algorithm>
#include <cstddef>
#include <fstream>
#include <sstream>
#include <string>

namespace {

using recorder::Finding;
using testing::AllOf;
using testing::Each;
using testing::EndsWith;
using testing::Field;
using testing::HasSubstr;
using testing::SizeIs;
using testing::StartsWith;

const std::filesystem::path kMachine = ORVANE_SOURCE_DIR "/examples/machines/bios-laptop";

// The children are started as this program.
DWORD WINAPI PathOfOrvane(HMODULE /*module*/, LPWSTR buffer, DWORD size) {
    const std::wstring path = std::filesystem::path(ORVANE_EXE_PATH).wstring();
    const std::size_t length = std::min<std::size_t>(path.size(), size - 1);
    std::copy_n(path.data(), length, buffer);
    buffer[length] = L'\0';
    return static_cast<DWORD>(length);
}

class RecordCommand : public testing::Test {
protected:
    RecordCommand() {
        std::filesystem::remove_all(folder_);
        std::filesystem::create_directories(folder_);
        options_.machine = kMachine;
        options_.output = folder_ / "machine.json";
    }
    ~RecordCommand() override { std::filesystem::remove_all(folder_); }

    int Record() { return host::Record(options_, out_, errors_); }

    std::filesystem::path folder_ = std::filesystem::path(ORVANE_BINARY_DIR) / "record-command-test";
    host::RecordOptions options_;
    std::ostringstream out_;
    std::ostringstream errors_;

private:
    const support::ScopedImport<decltype(&GetModuleFileNameW)> program_{"GetModuleFileNameW", &PathOfOrvane};
};

class ChangedVariable {
public:
    ChangedVariable(const wchar_t* name, const wchar_t* value) : name_(name) {
        constexpr DWORD kSize = 1024;
        former_.resize(kSize);
        former_.resize(GetEnvironmentVariableW(name, former_.data(), kSize));
        SetEnvironmentVariableW(name, value);
    }
    ~ChangedVariable() { SetEnvironmentVariableW(name_, former_.c_str()); }
    ChangedVariable(const ChangedVariable&) = delete;
    ChangedVariable& operator=(const ChangedVariable&) = delete;

private:
    const wchar_t* name_;
    std::wstring former_;
};

TEST_F(RecordCommand, ProofThatCannotBeMade_LeavesTheRecordingUnproved) {
    const std::wstring none = (folder_ / "none").wstring();
    const ChangedVariable temporary(L"TMP", none.c_str());
    EXPECT_EQ(Record(), host::kExitUnproved);
    EXPECT_TRUE(std::filesystem::exists(options_.output));
    EXPECT_THAT(out_.str(), HasSubstr("unexplained: the library's outputs cannot be compared: "));
}

TEST_F(RecordCommand, MachineThatCannotBeDescribed_IsNoBadArgument) {
    // Two disks with one number.
    const std::filesystem::path file = folder_ / "observations.json";
    recorder::Observations observations;
    observations.Add({{"CreateFileW", L"\\\\.\\PhysicalDrive0", 0, 0}, {}});
    observations.Add({{"CreateFileW", L"\\\\.\\PHYSICALDRIVE0", 0, 0}, {}});
    std::ofstream(file, std::ios::binary) << recorder::ObservationsText(observations);
    std::istringstream in;
    EXPECT_EQ(host::Run({L"prove", file.wstring()}, {in, out_, errors_, false, {}}), host::kExitFailed);
    EXPECT_THAT(errors_.str(), HasSubstr("the machine cannot be described"));
}

TEST_F(RecordCommand, NamesOfAnyCharacters_ArePrintedInTheirLineEscaped) {
    const std::filesystem::path file = folder_ / "observations.json";
    recorder::Observations observations;
    observations.Add({{"QueryDosDeviceW", L"A\nB\x1B[2J\x7F\x202E", 0, 260}, {}});
    std::ofstream(file, std::ios::binary) << recorder::ObservationsText(observations);
    EXPECT_EQ(host::Prove({file}, out_, errors_), host::kExitUnproved);
    const std::string text = out_.str();
    EXPECT_THAT(text, StartsWith("unexplained: QueryDosDeviceW on A\\u000AB\\u001B[2J\\u007F\\u202E, 260 "));
    constexpr std::ptrdiff_t kLines = 2;  // the finding and the result
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), kLines);
}

BOOL WINAPI NoMember(HANDLE /*token*/, PSID /*group*/, PBOOL member) {
    *member = FALSE;
    return TRUE;
}

TEST_F(RecordCommand, UserWithoutAdministratorsRights_IsToldAndRecorded) {
    const support::ScopedImport<decltype(&CheckTokenMembership)> import("CheckTokenMembership", &NoMember);
    options_.machine.reset();
    options_.observations = folder_ / "observations.json";
    options_.proof = false;
    EXPECT_EQ(Record(), host::kExitUnproved);
    EXPECT_THAT(errors_.str(), StartsWith("orvane: without administrator's rights"));
    EXPECT_FALSE(recorder::LoadObservations(*options_.observations).circumstances.administrator);
}

std::vector<Finding> CompareInNoTime(const recorder::Observations& observations) {
    return host::CompareLibraryRuns(
        observations, kMachine, kMachine, std::identity(), [](const std::string&) {}, 0);
}

TEST_F(RecordCommand, LibraryThatDoesNotEnd_IsNamed) {
    constexpr std::size_t kRuns = 8;  // three formats, four dumps, the check
    EXPECT_THAT(CompareInNoTime({}),
                AllOf(SizeIs(kRuns), Each(Field(&Finding::kind, Finding::Kind::kUnexplained)),
                      Each(Field(&Finding::text, EndsWith(": no end within 0 seconds here")))));
}

TEST_F(RecordCommand, LibraryThatDoesNotEndOnAMachineThatBlocks_IsExplained) {
    recorder::Observations observations;
    recorder::Answer none;
    none.blocks = true;
    observations.Add({{"CreateFileW", L"\\\\.\\PhysicalDrive0", 0, 0}, none});
    EXPECT_THAT(CompareInNoTime(observations), Each(Field(&Finding::kind, Finding::Kind::kExplained)));
}

std::size_t OwnChildren() {
    const HANDLE processes = CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0);
    PROCESSENTRY32W entry{};
    entry.dwSize = sizeof(entry);
    std::size_t count = 0;
    for (BOOL more = Process32FirstW(processes, &entry); more != FALSE;
         more = Process32NextW(processes, &entry)) {
        count += entry.th32ParentProcessID == GetCurrentProcessId() ? 1 : 0;
    }
    CloseHandle(processes);
    return count;
}

TEST(FinishedProcess, ProcessThatDoesNotEnd_IsEnded) {
    constexpr int kPatience = 100;
    constexpr DWORD kPause = 100;  // milliseconds
    // It waits for a question.
    HANDLE input = nullptr;
    HANDLE waiting = nullptr;
    SECURITY_ATTRIBUTES inherited{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
    ASSERT_NE(CreatePipe(&input, &waiting, &inherited, 0), FALSE);
    const HANDLE former = GetStdHandle(STD_INPUT_HANDLE);
    SetStdHandle(STD_INPUT_HANDLE, input);
    const std::size_t before = OwnChildren();
    EXPECT_FALSE(
        host::RunToEnd({std::filesystem::path(ORVANE_EXE_PATH).wstring(), L"answer"}, kPause).has_value());
    SetStdHandle(STD_INPUT_HANDLE, former);
    for (int i = 0; i < kPatience && OwnChildren() != before; ++i) {
        Sleep(kPause);
    }
    EXPECT_EQ(OwnChildren(), before);
    CloseHandle(input);
    CloseHandle(waiting);
}

}  // namespace
