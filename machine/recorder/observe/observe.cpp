#include "machine/recorder/observe/observe.h"

#include "machine/recorder/observe/question_table.h"

#include <algorithm>

namespace recorder {
namespace {

constexpr std::uint32_t kLargestSize = 16U << 20;

bool IsTooSmall(const Answer& answer) {
    return !answer.blocks && !answer.crashed && answer.step.empty() &&
           (answer.error == ERROR_INSUFFICIENT_BUFFER || answer.error == ERROR_MORE_DATA);
}

class Walk {
public:
    Walk(const Asker& ask, const Progress& progress) : ask_(ask), progress_(progress) {}

    void Rows(Subject subject) {
        if (subject == Subject::kMachine) {
            for (const QuestionRow& row : QuestionTable()) {
                if (row.subject == subject) {
                    Row(row, row.object);
                }
            }
            return;
        }
        for (const std::wstring& object : ObjectsOf(subject, observations_)) {
            for (const QuestionRow& row : QuestionTable()) {
                if (row.subject == subject) {
                    Row(row, object);
                }
            }
        }
    }

    Observations Take() { return std::move(observations_); }

private:
    void Row(const QuestionRow& row, const std::wstring& object) {
        if (!row.opens) {
            Sizes(row, object, 0);
            return;
        }
        for (const std::uint32_t access : {static_cast<std::uint32_t>(GENERIC_READ), 0U}) {
            if (std::string_view(row.call) == "CreateFileW" || Opens(object, access)) {
                Sizes(row, object, access);
            }
        }
    }

    // What cannot be opened is not asked, and what does not answer is not asked twice.
    bool Opens(const std::wstring& object, std::uint32_t access) const {
        const auto openings = observations_.Find("CreateFileW", object);
        return std::any_of(openings.begin(), openings.end(), [&](const Observation* opening) {
            return opening->question.access == access && opening->answer.succeeded();
        });
    }

    void Sizes(const QuestionRow& row, const std::wstring& object, std::uint32_t access) {
        Answer answer;
        std::uint32_t size = 0;
        for (const std::uint32_t listed : row.sizes.listed) {
            size = listed;
            answer = Put({row.call, object, access, size});
            if (answer.blocks) {
                return;
            }
        }
        while (IsTooSmall(answer) && size != 0 && size < kLargestSize) {
            size *= 2;
            answer = Put({row.call, object, access, size});
        }
        const auto told = static_cast<std::uint32_t>(std::min<std::uint64_t>(answer.returned, size));
        if (row.sizes.exact && answer.succeeded() && told > 1) {
            Put({row.call, object, access, told - 1});
            Put({row.call, object, access, told});
        }
    }

    Answer Put(const Question& question) {
        for (const Observation* known : observations_.Find(question.call, question.object)) {
            if (known->question == question) {
                return known->answer;
            }
        }
        progress_(observations_.all().size(), question);
        Answer answer = ask_(question);
        observations_.Add({question, answer});
        return answer;
    }

    const Asker& ask_;
    const Progress& progress_;
    Observations observations_;
};

}  // namespace

Observations Observe(const Asker& ask, const Progress& progress) {
    Walk walk(ask, progress);
    for (const Subject subject : Subjects()) {
        walk.Rows(subject);
    }
    return walk.Take();
}

Observations ObserveAgain(const Observations& first, const Asker& ask, const Progress& progress) {
    Observations again;
    again.circumstances = first.circumstances;
    for (const Observation& observation : first.all()) {
        progress(again.all().size(), observation.question);
        again.Add({observation.question, ask(observation.question)});
    }
    return again;
}

}  // namespace recorder
