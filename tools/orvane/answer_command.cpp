#include "common/windows.h"
#include "machine/recorder/observe/ask.h"
#include "machine/recorder/observe/observations_file.h"
#include "machine/session/session.h"
#include "machine/simulation/redirect.h"
#include "tools/orvane/asking_process.h"
#include "tools/orvane/options.h"

#include <objbase.h>

#include <iostream>
#include <stdexcept>

namespace host {

namespace {

class ComScope {
public:
    ComScope() {
        if (FAILED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) {
            throw std::runtime_error("COM cannot be initialised");
        }
        // As the library does; a later failure of WMI says what this one meant.
        CoInitializeSecurity(nullptr, -1, nullptr, nullptr, RPC_C_AUTHN_LEVEL_DEFAULT,
                             RPC_C_IMP_LEVEL_IMPERSONATE, nullptr, EOAC_NONE, nullptr);
    }
    ~ComScope() { CoUninitialize(); }
    ComScope(const ComScope&) = delete;
    ComScope& operator=(const ComScope&) = delete;
};

void AnswerLines(const recorder::SystemFunctions& functions) {
    for (std::string line; std::getline(std::cin, line);) {
        recorder::Observation observation = recorder::ParseObservation(line);
        observation.answer = recorder::Ask(functions, observation.question);
        std::cout << recorder::ObservationLine(observation) << '\n' << std::flush;
    }
}

}  // namespace

int AnswerQuestions(const std::optional<std::filesystem::path>& machine) {
    // No box about an empty drive or a crash may wait for a user.
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX | SEM_NOOPENFILEERRORBOX);
    const ComScope com;
    if (machine) {
        const machine::Session session(machine::LoadDescription(*machine), machine::SessionCom::kCallers);
        AnswerLines(recorder::SystemFunctions(&machine::SimulatedProcAddress));
    } else {
        AnswerLines(recorder::SystemFunctions(&::GetProcAddress));
    }
    return kExitDone;
}

}  // namespace host
