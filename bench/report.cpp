#include "bench/report.h"

#include <cstdio>

namespace bench {

void Report::Section(const std::string& title) {
    std::printf("\n%s\n", title.c_str());
}

void Report::Ratio(const std::string& name, double figure, double goal) {
    const bool met = figure <= goal;
    missed_ += met ? 0 : 1;
    std::printf("  %-63s %9.2f   at most %5.2f  %s\n", name.c_str(), figure, goal, met ? "met" : "MISSED");
    std::fflush(stdout);
}

void Report::Figure(const std::string& name, double figure, const std::string& unit) {
    std::printf("  %-63s %9.2f   %s\n", name.c_str(), figure, unit.c_str());
    std::fflush(stdout);
}

}  // namespace bench
