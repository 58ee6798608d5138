#pragma once

#include <string>

namespace bench {

// Prints a table of figures row by row.
class Report {
public:
    void Section(const std::string& title);
    // Prints a figure that should be at most `goal`.
    void Ratio(const std::string& name, double figure, double goal);
    // Prints a figure without a goal.
    void Figure(const std::string& name, double figure, const std::string& unit);

    bool met() const { return missed_ == 0; }
    std::size_t missed() const { return missed_; }

private:
    std::size_t missed_ = 0;
};

}  // namespace bench
