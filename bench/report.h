#pragma once

#include <string>

namespace bench {

// One table of figures, printed row by row.
class Report {
public:
    void Section(const std::string& title);
    // A figure with a goal: at most `goal`.
    void Ratio(const std::string& name, double figure, double goal);
    // A figure that is only told.
    void Figure(const std::string& name, double figure, const std::string& unit);

    bool met() const { return missed_ == 0; }
    std::size_t missed() const { return missed_; }

private:
    std::size_t missed_ = 0;
};

}  // namespace bench
