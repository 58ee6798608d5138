#pragma once

#include <ostream>
#include <string>

namespace host {

// One line on a terminal that says what goes on, overwritten by the next one and removed in the end. Shows
// nothing if standard error is no terminal.
class ProgressLine {
public:
    explicit ProgressLine(std::ostream& errors);
    ~ProgressLine();
    ProgressLine(const ProgressLine&) = delete;
    ProgressLine& operator=(const ProgressLine&) = delete;

    // Shows at most ten texts a second.
    void Show(const std::string& text);

private:
    void Overwrite(const std::string& text);

    std::ostream& errors_;
    bool shown_;
    unsigned long long next_time_ = 0;  // in milliseconds
};

}  // namespace host
