// Runs the example agent's main(), renamed AgentMain, on a described machine. The library that the agent is
// linked to is redirected to the simulation.
// usage: described_agent MACHINE [VOLUME]...

#include "machine/session/session.h"
#include "machine/simulation/redirect.h"

#include <cstdio>
#include <exception>

extern "C" int AgentMain(int argc, char** argv);

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fputs("usage: described_agent MACHINE [VOLUME]...\n", stderr);
        return 2;
    }
    try {
        if (!machine::PutModuleOnSimulation(GetModuleHandleW(L"Orvane.dll"))) {
            std::fputs("the library cannot be put on a described machine\n", stderr);
            return 2;
        }
        const machine::Session session(machine::LoadDescription(argv[1]));
        return AgentMain(argc - 1, argv + 1);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 2;
    }
}
