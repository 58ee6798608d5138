#include "faults/case_runner.h"

#include "faults/watch_case.h"

#include <cstdio>
#include <exception>

namespace faults {

namespace {

// A hash that spreads the chosen cases evenly and chooses others for every seed.
std::size_t Scattered(std::size_t index, std::size_t seed) {
    std::size_t value = (index + 1) * 0x9E3779B97F4A7C15ULL + seed * 0xBF58476D1CE4E5B9ULL;
    value ^= value >> 31;
    value *= 0x94D049BB133111EBULL;
    return value ^ (value >> 29);
}

}  // namespace

bool CaseRunner::IsChosen() {
    const std::size_t index = index_++;
    return index >= choice_.from && Scattered(index, choice_.seed) % choice_.stride == 0;
}

void CaseRunner::Run(const std::string& arguments, const std::string& call,
                     const std::function<std::vector<std::string>()>& body) {
    if (!IsChosen()) {
        return;
    }
    const std::string name = "--machine " + choice_.machine + " --part " + choice_.part + " --entry " +
                             choice_.entry + " --seed " + std::to_string(choice_.seed) + " " + arguments +
                             " (" + call + ")";
    const WatchedCase watched(name, index_ - 1);
    ++tally_.injected;
    std::vector<std::string> failures;
    try {
        failures = body();
    } catch (const std::exception& error) {
        failures = {std::string("exception: ") + error.what()};
    } catch (...) {
        failures = {"exception"};
    }
    for (const std::string& failure : failures) {
        ++tally_.failures[failure];
        std::printf("FAIL %s: %s\n", failure.c_str(), name.c_str());
        std::fflush(stdout);
    }
}

}  // namespace faults
