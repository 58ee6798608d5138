#include "machine/simulation/simulated_functions.h"

namespace machine::simulated {
namespace {

// Returns the name at the search position. Advances the position only if the name fits the buffer.
Answer NextName(Simulation& simulation, std::uint64_t& position, DWORD size) {
    const std::vector<std::wstring>& names = simulation.names().volume_names();
    if (position >= names.size()) {
        return Answer::Failure(ERROR_NO_MORE_FILES);
    }
    const std::wstring& name = names[static_cast<std::size_t>(position)];
    if (size < name.size() + 1) {
        return Answer::Failure(ERROR_FILENAME_EXCED_RANGE);
    }
    ++position;
    Answer answer;
    AppendText(answer.bytes, name);
    return answer;
}

const CallErrors* ErrorsOfName(Simulation& simulation, std::uint64_t position) {
    const std::vector<std::wstring>& names = simulation.names().volume_names();
    return position < names.size()
               ? simulation.ErrorsOf(simulation.names().Resolve(names[static_cast<std::size_t>(position)]))
               : nullptr;
}

}  // namespace

HANDLE WINAPI FindFirstVolumeW(LPWSTR name, DWORD size) {
    return Simulated(
        Simulation::Current(), "FindFirstVolumeW", INVALID_HANDLE_VALUE,
        [&] { return ::FindFirstVolumeW(name, size); },
        [&](CallFrame& frame) {
            Simulation& simulation = frame.simulation();
            const Answer answer = frame.Perform({}, ErrorsOfName(simulation, 0), [&] {
                OpenObject search;
                search.kind = OpenObject::Kind::kVolumeSearch;
                Answer next = NextName(simulation, search.position, size);
                if (!next.failed) {
                    next.value = simulation.Open(search).value;
                }
                return next;
            });
            simulation.CloseIfFailed(answer);
            if (answer.failed) {
                return INVALID_HANDLE_VALUE;
            }
            CopyBytes(answer, name, size);
            return HandleIn(answer);
        });
}

BOOL WINAPI FindNextVolumeW(HANDLE search, LPWSTR name, DWORD size) {
    return Simulated(
        Simulation::Current(), "FindNextVolumeW", FALSE,
        [&] { return ::FindNextVolumeW(search, name, size); },
        [&](CallFrame& frame) {
            Simulation& simulation = frame.simulation();
            OpenObject* object = simulation.handles().Find(search, OpenObject::Kind::kVolumeSearch);
            const CallErrors* errors =
                object == nullptr ? nullptr : ErrorsOfName(simulation, object->position);
            const Answer answer = frame.Perform({}, errors, [&] {
                return object == nullptr ? Answer::Failure(ERROR_INVALID_HANDLE)
                                         : NextName(simulation, object->position, size);
            });
            if (!answer.failed) {
                CopyBytes(answer, name, size);
            }
            return Succeeded(answer);
        });
}

BOOL WINAPI FindVolumeClose(HANDLE search) {
    return Simulated(
        Simulation::Current(), "FindVolumeClose", FALSE, [&] { return ::FindVolumeClose(search); },
        [&](CallFrame& frame) {
            HandleTable& handles = frame.simulation().handles();
            const bool known = handles.Find(search, OpenObject::Kind::kVolumeSearch) != nullptr;
            if (known) {
                handles.Close(search);
            }
            return Succeeded(frame.Perform(
                {}, nullptr, [&] { return known ? Answer{} : Answer::Failure(ERROR_INVALID_HANDLE); }));
        });
}

}  // namespace machine::simulated
