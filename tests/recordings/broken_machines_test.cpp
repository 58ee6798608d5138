// Machines whose answers are false. The recorder neither crashes nor goes on without end, and what it writes
// can be read. `make test` runs a sample; ORVANE_RECORDING_STRIDE=1 runs all of them.

#include "faults/lie_tables.h"
#include "machine/recorder/describe/describe.h"
#include "machine/recorder/describe/replay.h"
#include "machine/recorder/observe/ask.h"
#include "machine/recorder/observe/observations_file.h"
#include "machine/recorder/observe/observe.h"
#include "machine/recorder/prove/proof.h"
#include "machine/recorder/redact/leak_search.h"
#include "machine/recorder/redact/redact.h"
#include "machine/recorder/redact/searched_texts.h"
#include "machine/session/session.h"
#include "machine/simulation/redirect.h"
#include "machine/simulation/simulation.h"
#include "recordings/guarded_blocks.h"
#include "recordings/stride.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <random>
#include <string>
#include <vector>

namespace {

using machine::Answer;

const std::filesystem::path kExamples = ORVANE_SOURCE_DIR "/examples/machines";

struct Lie {
    const char* name;
    std::function<void(Answer&)> action;
};

void Garbage(Answer& answer) {
    static std::mt19937 random(20261122);
    for (std::uint8_t& byte : answer.bytes) {
        byte = static_cast<std::uint8_t>(random());
    }
}

// Each byte of a count or length in the first 64 bytes becomes large.
void HugeNumbers(Answer& answer) {
    for (std::size_t i = 0; i < std::min<std::size_t>(answer.bytes.size(), 64); ++i) {
        answer.bytes[i] = 0xFF;
    }
}

// QueryDosDeviceW returns the length as its result; the result of a search is a handle, and stays.
void HugeLength(Answer& answer) {
    constexpr std::uint64_t kMostCharacters = 65536;
    answer.returned = 0xFFFFFFF0;
    answer.value = answer.value == 0 || answer.value > kMostCharacters ? answer.value : 0xFFFFFFF0;
}

const Lie kLies[] = {
    {"garbage", Garbage},
    {"huge numbers", HugeNumbers},
    {"huge length", HugeLength},
    {"no length", [](Answer& answer) { answer.returned = 0; }},
    {"no bytes", [](Answer& answer) { answer.bytes.clear(); }},
    {"half of the bytes", [](Answer& answer) { answer.bytes.resize(answer.bytes.size() / 2); }},
    {"failure with bytes",
     [](Answer& answer) {
         answer.failed = true;
         answer.error = 31;
     }},
};

constexpr const char* kCalls[] = {
    "QueryDosDeviceW",
    "GetVolumePathNamesForVolumeNameW",
    "GetVolumeNameForVolumeMountPointW",
    "FindFirstVolumeW",
    "FindNextVolumeW",
    "GetVolumeInformationW",
    "GetDiskFreeSpaceW",
    "GetDiskFreeSpaceExW",
    "DeviceIoControl:IOCTL_DISK_GET_DRIVE_GEOMETRY",
    "DeviceIoControl:IOCTL_DISK_GET_DRIVE_GEOMETRY_EX",
    "DeviceIoControl:IOCTL_DISK_GET_DRIVE_LAYOUT",
    "DeviceIoControl:IOCTL_DISK_GET_DRIVE_LAYOUT_EX",
    "DeviceIoControl:IOCTL_DISK_GET_LENGTH_INFO",
    "DeviceIoControl:IOCTL_DISK_GET_PARTITION_INFO_EX",
    "DeviceIoControl:IOCTL_STORAGE_GET_DEVICE_NUMBER",
    "DeviceIoControl:IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS",
    "ZwQueryDirectoryObject",
};

void Silent(std::size_t, const recorder::Question&) {}

recorder::Observations ObserveCurrent() {
    const recorder::SystemFunctions functions(&machine::SimulatedProcAddress);
    return recorder::Observe(
        [&](const recorder::Question& question) { return recorder::Ask(functions, question); }, Silent);
}

// `call` is empty for every call.
recorder::Observations ObserveLying(const machine::Description& description, const std::string& call,
                                    const std::function<void(Answer&)>& lie) {
    machine::Session session(description);
    session.simulation().faults().Alter(call, lie);
    recorder::Observations observations = ObserveCurrent();
    EXPECT_GT(session.simulation().faults().hits(), 0U);
    EXPECT_EQ(session.simulation().open_handles(), 0U);
    EXPECT_EQ(session.simulation().live_objects(), 0U);
    return observations;
}

// All that a recording does with its answers.
void UseAnswers(const recorder::Observations& observations) {
    const std::string text = recorder::ObservationsText(observations);
    EXPECT_EQ(recorder::ObservationsText(recorder::ParseObservations(text, "test")), text);
    // Describing reads what it wrote.
    const machine::Description machine = recorder::Describe(observations);
    const auto replayed = recorder::Replay(machine, observations, Silent);
    recorder::CompareAnswers(observations, replayed);
    recorder::Replacements replacements;
    const recorder::Observations redacted = recorder::Redact(observations, replacements);
    const std::string written = machine::WriteDescription(recorder::Describe(redacted));
    recorder::FindLeaks(replacements, recorder::SearchedTexts(nlohmann::ordered_json::parse(written)));
}

TEST(BrokenMachine, FalseAnswers_AreRecordedAndDescribed) {
    constexpr std::size_t kSample = 5;
    std::size_t number = 0;
    for (const char* machine : {"uefi-workstation", "bios-laptop"}) {
        for (const char* call : kCalls) {
            for (const Lie& lie : kLies) {
                if (number++ % recordings::Stride(kSample) != 0) {
                    continue;
                }
                SCOPED_TRACE(std::string(machine) + ", " + call + ", " + lie.name);
                const machine::Description description = machine::LoadDescription(kExamples / machine);
                EXPECT_NO_THROW(UseAnswers(ObserveLying(description, call, lie.action)));
            }
        }
    }
}

// The calls of a recording, and how often each is made.
std::map<std::string, std::size_t> CallsOf(const machine::Description& description) {
    machine::Session session(description);
    ObserveCurrent();
    std::map<std::string, std::size_t> calls;
    for (const machine::CallRecord& record : session.simulation().calls().records()) {
        ++calls[record.name];
    }
    return calls;
}

// As many rounds as it takes to tell every lie about a call once: each call tells another one. The sample has
// the first round of every call, in which the lengths are false.
TEST(BrokenMachine, EveryLieOfTheFaultTests_ReadsNoFurtherThanTheAnswers) {
    constexpr std::size_t kSample = 40;
    constexpr std::size_t kRandomLies = 4;
    const machine::Description description = machine::LoadDescription(kExamples / "bios-laptop");
    const recordings::GuardedBlocks guarded;
    std::size_t round = 0;
    for (const auto& [call, count] : CallsOf(description)) {
        std::vector<faults::NamedLie> lies = faults::LiesFor({1, {}, call, {}, false, 0, 0});
        for (std::size_t seed = 0; seed < kRandomLies && !lies.empty(); ++seed) {
            lies.push_back({"random", faults::RandomLie(seed)});
        }
        for (std::size_t next = 0; next < lies.size();) {
            const std::size_t first = next;
            next += count;
            if (round++ % recordings::Stride(kSample) != 0 && first != 0) {
                continue;
            }
            SCOPED_TRACE(call + ", from " + lies[first].name);
            std::size_t told = first;
            EXPECT_NO_THROW(UseAnswers(ObserveLying(
                description, call, [&](Answer& answer) { lies[told++ % lies.size()].lie(answer); })));
        }
    }
    EXPECT_GT(round, recordings::Stride(kSample));
}

// The buffers are larger than the answers; what stands behind an answer is no part of it.
TEST(BrokenMachine, GarbageBehindEveryAnswer_IsNotRecorded) {
    const machine::Description description = machine::LoadDescription(kExamples / "uefi-workstation");
    const std::string clean = [&] {
        const machine::Session session(description);
        return recorder::ObservationsText(ObserveCurrent());
    }();
    const recordings::GuardedBlocks guarded;
    EXPECT_EQ(recorder::ObservationsText(ObserveLying(description, "", &faults::AppendGarbage)), clean);
}

}  // namespace
