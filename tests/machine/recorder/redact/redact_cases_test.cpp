// What holds for the recording of every example machine.

#include "machine/description/text.h"
#include "machine/recorder/observe/answer_texts.h"
#include "machine/recorder/observe/ask.h"
#include "machine/recorder/observe/observations_file.h"
#include "machine/recorder/observe/observe.h"
#include "machine/recorder/redact/everyday_words.h"
#include "machine/recorder/redact/leak_search.h"
#include "machine/recorder/redact/letters.h"
#include "machine/recorder/redact/redact.h"
#include "machine/session/session.h"
#include "machine/simulation/redirect.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <map>

namespace {

using recorder::Observation;
using recorder::Observations;
using recorder::Replacements;

std::vector<std::string> CaseNames() {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(ORVANE_SOURCE_DIR "/examples/machines")) {
        if (entry.is_directory()) {
            names.push_back(entry.path().filename().string());
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

struct Recorded {
    machine::Description machine;
    Observations original;
    Observations redacted;
    Replacements replacements;
};

Recorded RecordCase(const std::string& name) {
    Recorded recorded;
    recorded.machine =
        machine::LoadDescription(std::filesystem::path(ORVANE_SOURCE_DIR "/examples/machines") / name);
    machine::Session session(recorded.machine);
    const recorder::SystemFunctions functions(&machine::SimulatedProcAddress);
    recorded.original = recorder::Observe(
        [&](const recorder::Question& question) { return recorder::Ask(functions, question); },
        [](std::size_t, const recorder::Question&) {});
    recorded.redacted = recorder::Redact(recorded.original, recorded.replacements);
    return recorded;
}

class RedactedCase : public testing::TestWithParam<std::string> {
protected:
    // Each machine is recorded once.
    const Recorded& recorded() const {
        static std::map<std::string, Recorded> known;
        const auto found = known.find(GetParam());
        return found != known.end() ? found->second
                                    : known.emplace(GetParam(), RecordCase(GetParam())).first->second;
    }
    const machine::Description& machine_ = recorded().machine;
    const Observations& original_ = recorded().original;
    const Observations& redacted_ = recorded().redacted;
    const Replacements& replacements_ = recorded().replacements;
};

TEST_P(RedactedCase, Search_FindsNothing) {
    const auto leaks = recorder::FindLeaks(replacements_, recorder::SearchedTexts(redacted_));
    for (const auto& leak : leaks) {
        ADD_FAILURE() << leak.value << " in " << leak.place;
    }
}

// Knows the private values from the description and not from the tables of the redaction.
TEST_P(RedactedCase, PrivateValuesOfTheDescription_AreGone) {
    const auto all = recorder::SearchedTexts(redacted_);
    const auto leaves = [&](const std::wstring& text) {
        for (const auto& searched : all) {
            const bool short_text = text.size() < 6 || recorder::IsEveryday(text);
            const bool found = short_text
                                   ? searched.text == recorder::FoldedUnits(text)
                                   : searched.text.find(recorder::FoldedUnits(text)) != std::wstring::npos;
            EXPECT_FALSE(found && !recorder::TellsNothing(text))
                << machine::Narrow(text) << " in " << searched.place;
        }
    };
    const auto guid = [&](const GUID& own) {
        if (own.Data2 != 0) {
            leaves(machine::Widen(machine::GuidText(own)).substr(1, 36));
        }
    };
    for (const machine::Volume& volume : machine_.volumes) {
        leaves(volume.label);
        if (const auto own = machine::ParseGuid(machine::Narrow(volume.guid))) {
            guid(*own);
        }
    }
    for (const machine::Disk& disk : machine_.disks) {
        guid(disk.disk_id);
        for (const machine::Partition& partition : disk.partitions) {
            guid(partition.id);
        }
    }
    for (const wchar_t* name : {L"WIN32_OPERATINGSYSTEM", L"WIN32_COMPUTERSYSTEM"}) {
        const auto own = machine_.wmi.find(name);
        for (const auto& instance :
             own == machine_.wmi.end() ? std::vector<machine::WmiInstance>() : own->second.instances) {
            for (const machine::WmiProperty& property : instance) {
                const bool secret = property.name == L"CSName" || property.name == L"UserName" ||
                                    property.name == L"RegisteredUser" || property.name == L"SerialNumber";
                if (secret) {
                    leaves(property.value.text);
                }
            }
        }
    }
}

TEST_P(RedactedCase, QuestionsErrorsAndLengths_Stay) {
    ASSERT_EQ(redacted_.all().size(), original_.all().size());
    EXPECT_TRUE(redacted_.circumstances.redacted);
    for (std::size_t i = 0; i < original_.all().size(); ++i) {
        const Observation& own = original_.all()[i];
        const Observation& made = redacted_.all()[i];
        SCOPED_TRACE(own.question.call + " " + machine::Narrow(own.question.object));
        EXPECT_EQ(made.question.call, own.question.call);
        EXPECT_EQ(made.question.object.size(), own.question.object.size());
        EXPECT_EQ(made.question.size, own.question.size);
        EXPECT_EQ(made.answer.error, own.answer.error);
        EXPECT_EQ(made.answer.step, own.answer.step);
        EXPECT_EQ(made.answer.value, own.answer.value);
        EXPECT_EQ(made.answer.returned, own.answer.returned);
        EXPECT_EQ(made.answer.bytes.size(), own.answer.bytes.size());
        ASSERT_EQ(made.answer.parts.size(), own.answer.parts.size());
        for (std::size_t part = 0; part < own.answer.parts.size(); ++part) {
            EXPECT_EQ(made.answer.parts[part].type, own.answer.parts[part].type);
            EXPECT_EQ(made.answer.parts[part].bytes.size(), own.answer.parts[part].bytes.size());
        }
    }
}

// What the library sorts by: the devices to which the names of volumes lead.
TEST_P(RedactedCase, OrderOfVolumeDevices_Stays) {
    std::vector<std::pair<std::wstring, std::wstring>> devices;
    for (std::size_t i = 0; i < original_.all().size(); ++i) {
        const Observation& own = original_.all()[i];
        if (own.question.call == "QueryDosDeviceW" && own.question.object.starts_with(L"Volume{") &&
            own.answer.succeeded()) {
            devices.emplace_back(recorder::TextsOf(own.answer.bytes).front(),
                                 recorder::TextsOf(redacted_.all()[i].answer.bytes).front());
        }
    }
    for (const auto& [left, made_left] : devices) {
        for (const auto& [right, made_right] : devices) {
            EXPECT_EQ(left < right, made_left < made_right) << machine::Narrow(made_left);
        }
    }
}

TEST_P(RedactedCase, SameInput_GivesTheSameOutput) {
    Replacements again;
    EXPECT_EQ(recorder::ObservationsText(recorder::Redact(original_, again)),
              recorder::ObservationsText(redacted_));
}

INSTANTIATE_TEST_SUITE_P(Examples, RedactedCase, testing::ValuesIn(CaseNames()), [](const auto& param) {
    std::string name = param.param;
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
});

}  // namespace
