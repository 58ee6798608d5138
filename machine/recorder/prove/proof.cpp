#include "machine/recorder/prove/proof.h"

#include "machine/description/text.h"
#include "machine/recorder/observe/agreement.h"
#include "machine/recorder/prove/answer_words.h"

namespace recorder {
namespace {

// "PhysicalDrive1" for "\\.\PhysicalDrive1"; other objects by their whole names.
std::string ShortName(const std::wstring& object) {
    constexpr std::wstring_view kDevices = L"\\\\.\\";
    return machine::Narrow(machine::StartsWith(object, kDevices) ? object.substr(kDevices.size()) : object);
}

std::string ShortCall(const std::string& call) {
    constexpr std::string_view kControl = "DeviceIoControl:";
    return call.starts_with(kControl) ? call.substr(kControl.size()) : call;
}

bool IsControl(const Question& question) {
    return question.call.starts_with("DeviceIoControl:");
}

std::string WordsOf(const Question& question) {
    std::string words = ShortCall(question.call);
    if (!question.object.empty()) {
        words += " on " + ShortName(question.object);
    }
    const bool opens = IsControl(question) || question.call == "CreateFileW";
    return words + (opens && question.access == 0 ? ", no access" : "");
}

// ", 4, 48 and 512 bytes"; empty for a question without a buffer.
std::string SizesInWords(const std::vector<Question>& questions) {
    std::string sizes;
    for (std::size_t i = 0; i < questions.size(); ++i) {
        sizes += (i == 0                      ? ""
                  : i + 1 == questions.size() ? " and "
                                              : ", ") +
                 std::to_string(questions[i].size);
    }
    const bool bytes = IsControl(questions.front()) || questions.front().call.starts_with("Zw");
    return questions.front().size == 0 ? "" : ", " + sizes + (bytes ? " bytes" : " characters");
}

// Free space is all that differs.
bool ChangesByItself(const Observation& own, const Answer& other) {
    if (!own.question.call.starts_with("GetDiskFreeSpace") || own.answer.error != other.error ||
        own.answer.parts.size() != other.parts.size()) {
        return false;
    }
    for (std::size_t i = 0; i < other.parts.size(); ++i) {
        const bool free = machine::StartsWith(other.parts[i].name, L"free");
        if (!free && own.answer.parts[i] != other.parts[i]) {
            return false;
        }
    }
    return true;
}

Finding::Kind KindOf(Agreement agreement, const Observation& own, const Answer& other) {
    if (agreement == Agreement::kExplained) {
        return Finding::Kind::kExplained;
    }
    return ChangesByItself(own, other) ? Finding::Kind::kChanging : Finding::Kind::kUnexplained;
}

// A difference that the same call on the same object has with one or more sizes of the buffer.
struct Group {
    Finding::Kind kind;
    std::vector<Question> questions;
    std::string difference;

    bool Takes(Finding::Kind own_kind, const Question& question, const std::string& own_difference) const {
        const Question& first = questions.front();
        return own_kind == kind && own_difference == difference && question.call == first.call &&
               question.object == first.object && question.access == first.access;
    }

    Finding Whole() const {
        return {kind, WordsOf(questions.front()) + SizesInWords(questions) + ": " + difference};
    }
};

}  // namespace

std::vector<Finding> CompareAnswers(const Observations& recorded, const Observations& described) {
    std::vector<Group> groups;
    for (std::size_t i = 0; i < recorded.all().size(); ++i) {
        const Observation& own = recorded.all()[i];
        const Answer& other = described.all()[i].answer;
        const Agreement agreement = Compare(own, other);
        if (agreement == Agreement::kSame) {
            continue;
        }
        const Finding::Kind kind = KindOf(agreement, own, other);
        const std::string difference = DifferenceInWords(own, other);
        if (groups.empty() || !groups.back().Takes(kind, own.question, difference)) {
            groups.push_back({kind, {}, difference});
        }
        groups.back().questions.push_back(own.question);
    }
    std::vector<Finding> findings;
    findings.reserve(groups.size());
    for (const Group& group : groups) {
        findings.push_back(group.Whole());
    }
    return findings;
}

std::string LineOf(const Finding& finding) {
    switch (finding.kind) {
        case Finding::Kind::kExplained:
            return "explained: " + finding.text;
        case Finding::Kind::kChanging:
            return "changes by itself: " + finding.text;
        case Finding::Kind::kUnexplained:
            break;
    }
    return "unexplained: " + finding.text;
}

}  // namespace recorder
