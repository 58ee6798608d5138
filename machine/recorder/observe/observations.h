#pragma once

#include "machine/recorder/observe/question.h"

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace recorder {

// What was true of the recording as a whole.
struct Circumstances {
    bool administrator = false;  // the recorder had administrator's rights
    bool redacted = false;       // values that tell about people and organisations were replaced

    bool operator==(const Circumstances&) const = default;
};

// All questions with their answers, in the order in which they were asked.
class Observations {
public:
    Circumstances circumstances;

    void Add(Observation observation);
    const std::vector<Observation>& all() const noexcept { return all_; }

    // The answers to a call on an object (without regard to case), in the order of asking.
    std::vector<const Observation*> Find(std::string_view call, std::wstring_view object) const;

    // The successful answer with the largest buffer, with read access before none; else the failed one with
    // the longest list, or to the first question; null if the call was not asked.
    const Observation* Best(std::string_view call, std::wstring_view object) const;

    // The bytes of the best answer; null if the call was not asked or failed.
    const Bytes* BytesOf(std::string_view call, std::wstring_view object) const;

    // The objects that a call was asked about, in the order of asking.
    std::vector<std::wstring> ObjectsOf(std::string_view call) const;

private:
    std::vector<Observation> all_;
    std::multimap<std::pair<std::string, std::wstring>, std::size_t> index_;
};

}  // namespace recorder
