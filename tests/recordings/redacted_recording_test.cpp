// A redacted recording proves as well as the original, and the library makes the same of it, but for what was
// replaced.

#include "cases/case_folder.h"
#include "cases/case_outputs.h"
#include "cases/line_diff.h"
#include "machine/description/text.h"
#include "machine/recorder/describe/describe.h"
#include "machine/recorder/redact/leak_search.h"
#include "machine/recorder/redact/letters.h"
#include "machine/recorder/redact/redact.h"
#include "recordings/recording.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <clocale>
#include <cstdio>
#include <fstream>
#include <map>
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

std::wstring Hexadecimal(std::uint32_t number) {
    char digits[12] = {};
    std::snprintf(digits, sizeof(digits), "0x%x", static_cast<unsigned>(number));
    return machine::Widen(digits);
}

// Replaces in the library's output, which shows values as words of their own.
class OutputReplacement {
public:
    explicit OutputReplacement(const recorder::Replacements& replacements) {
        for (const auto& [original, made] : replacements.texts()) {
            texts_[recorder::FoldedUnits(original)] = recorder::FoldedUnits(made);
        }
        for (const auto& [original, made] : replacements.guids()) {
            AddExactly(machine::Widen(machine::GuidText(original)).substr(1, kGuidSize),
                       machine::Widen(machine::GuidText(made)).substr(1, kGuidSize));
            AddNumber(static_cast<std::uint32_t>(original.Data1), static_cast<std::uint32_t>(made.Data1));
        }
        for (const auto& [original, made] : replacements.ids()) {
            AddNumber(original, made);
        }
    }

    // In the value of an element or of a line "Name: value"; else in the whole line.
    std::string InLine(const std::string& line) const {
        const bool element =
            line.find_first_not_of(' ') == line.find('<') && line.find("</") != std::string::npos;
        const std::size_t colon = line.find(": ");
        const bool named = std::all_of(
            line.begin(), line.begin() + static_cast<std::ptrdiff_t>(std::min(colon, line.size())),
            [](char c) { return c == ' ' || IsPartOfWord(static_cast<unsigned char>(c)); });
        const std::size_t name = element ? line.find('>') : named ? colon : std::string::npos;
        const std::size_t start = name == std::string::npos ? 0 : name + 1;
        const std::size_t end = element ? line.rfind("</") : line.size();
        const std::string value = Changed(line.substr(start, end - start), "&amp;", "&");
        return line.substr(0, start) + (element ? Changed(InText(value), "&", "&amp;") : InText(value)) +
               line.substr(end);
    }

    std::string InText(const std::string& utf8) const {
        const std::wstring text = machine::Widen(utf8);
        std::wstring replaced;
        for (std::size_t start = 0; start < text.size();) {
            std::size_t size = 0;
            std::wstring made;
            if (start == 0 || !IsPartOfWord(text[start - 1])) {
                FindLongest(text, start, size, made);
            }
            replaced += size == 0 ? text.substr(start, 1) : made;
            start += std::max<std::size_t>(size, 1);
        }
        return machine::Narrow(replaced);
    }

private:
    static constexpr std::size_t kGuidSize = 36;  // without braces

    static std::string Changed(std::string text, const std::string& from, const std::string& to) {
        for (std::size_t at = text.find(from); at != std::string::npos;
             at = text.find(from, at + to.size())) {
            text.replace(at, from.size(), to);
        }
        return text;
    }

    static bool IsPartOfWord(wchar_t unit) {
        const wchar_t folded = recorder::FoldedUnit(unit);
        return (folded >= L'0' && folded <= L'9') || (folded >= L'A' && folded <= L'Z');
    }

    void AddExactly(const std::wstring& from, const std::wstring& to) {
        exact_[from] = to;
        exact_[recorder::FoldedUnits(from)] = recorder::FoldedUnits(to);
    }

    void AddNumber(std::uint32_t from, std::uint32_t to) {
        AddExactly(std::to_wstring(from), std::to_wstring(to));
        AddExactly(Hexadecimal(from), Hexadecimal(to));
    }

    void FindLongest(const std::wstring& text, std::size_t start, std::size_t& size,
                     std::wstring& made) const {
        const auto find = [&](const std::wstring& form, const std::map<std::wstring, std::wstring>& pairs,
                              bool cased) {
            for (const auto& [from, to] : pairs) {
                const std::size_t end = start + from.size();
                if (from.size() > size && form.compare(start, from.size(), from) == 0 &&
                    (end >= text.size() || !IsPartOfWord(text[end]))) {
                    size = from.size();
                    made = cased ? recorder::WithCaseOf(text.substr(start, size), to) : to;
                }
            }
        };
        find(recorder::FoldedUnits(text.substr(0, std::min(text.size(), start + 300))), texts_, true);
        find(text, exact_, false);
    }

    std::map<std::wstring, std::wstring> texts_;
    std::map<std::wstring, std::wstring> exact_;
};

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

    const OutputReplacement replace(replacements);
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
