// A redacted recording proves as well as the original, and the library makes the same of it, but for what was
// replaced.

#include "cases/case_folder.h"
#include "cases/case_outputs.h"
#include "cases/line_diff.h"
#include "machine/recorder/describe/describe.h"
#include "machine/recorder/redact/leak_search.h"
#include "machine/recorder/redact/output_replacement.h"
#include "machine/recorder/redact/redact.h"
#include "recordings/recording.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <clocale>
#include <fstream>
#include <sstream>

namespace {

const std::filesystem::path kExamples = ORVANE_SOURCE_DIR "/examples/machines";
const std::filesystem::path kScratch = ORVANE_BINARY_DIR "/redacted";

recordings::Recording Redacted(const recordings::Recording& recording, recorder::Replacements& replacements) {
    recordings::Recording redacted;
    redacted.observations = recorder::Redact(recording.observations, replacements);
    redacted.text = machine::WriteDescription(recorder::Describe(redacted.observations));
    redacted.machine = machine::ParseDescription(redacted.text, "the redacted recording");
    return redacted;
}

std::vector<std::string> LinesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

class RedactedRecording : public testing::TestWithParam<std::filesystem::path> {
protected:
    RedactedRecording() { std::setlocale(LC_CTYPE, ""); }
    ~RedactedRecording() override { std::setlocale(LC_CTYPE, "C"); }
};

TEST_P(RedactedRecording, Recording_ProvesAsWellAndShowsTheLibraryTheSameMachine) {
    const recordings::Recording recording = recordings::Record(machine::LoadDescription(GetParam()));
    recorder::Replacements replacements;
    const recordings::Recording redacted = Redacted(recording, replacements);
    EXPECT_EQ(recordings::Unexplained(redacted), recordings::Unexplained(recording));
    const auto json = nlohmann::ordered_json::parse(redacted.text);
    EXPECT_EQ(json["recording"], "redacted");
    for (const auto& leak : recorder::FindLeaks(replacements, recorder::SearchedTexts(json))) {
        ADD_FAILURE() << leak.value << " in " << leak.place;
    }

    const recorder::OutputReplacement replace(replacements);
    const std::filesystem::path plain_folder = kScratch / "plain" / GetParam().filename();
    const std::filesystem::path redacted_folder = kScratch / "redacted" / GetParam().filename();
    recordings::WriteFolder(plain_folder, recording.text, GetParam());
    recordings::WriteFolder(redacted_folder, redacted.text, kScratch / "nothing selected");
    if (std::filesystem::exists(GetParam() / cases::kSelectedFile)) {
        std::ofstream(redacted_folder / cases::kSelectedFile, std::ios::binary)
            << replace.InText(cases::ReadText(GetParam() / cases::kSelectedFile));
    }
    for (const std::string& subject : cases::Subjects()) {
        const cases::Output own = cases::MakeOutput(plain_folder, subject);
        const cases::Output other = cases::MakeOutput(redacted_folder, subject);
        EXPECT_EQ(own.file, other.file);
        const std::vector<std::string> own_lines = LinesOf(own.text);
        const std::vector<std::string> other_lines = LinesOf(other.text);
        ASSERT_EQ(own_lines.size(), other_lines.size()) << cases::Difference(own.text, other.text);
        for (std::size_t i = 0; i < own_lines.size(); ++i) {
            // A text that stays may hold a replaced one.
            if (other_lines[i] != own_lines[i]) {
                EXPECT_EQ(replace.InLine(own_lines[i]), other_lines[i]) << own.file << ", line " << i + 1;
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Machines, RedactedRecording, testing::ValuesIn(cases::FoldersOf(kExamples)),
                         [](const auto& folder) { return recordings::TestName(folder.param); });

}  // namespace
