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
               ? ErrorsOf(simulation, simulation.names().Resolve(names[static_cast<std::size_t>(position)]))
               : nullptr;
}

}  // namespace

HANDLE WINAPI FindFirstVolumeW(LPWSTR name, DWORD size) {
    Simulation* simulation = Simulation::Current();
    if (simulation == nullptr) {
        return ::FindFirstVolumeW(name, size);
    }
    return Guarded(INVALID_HANDLE_VALUE, [&] {
        const Answer answer = simulation->Perform(
            {CallFamily::kWin32, "FindFirstVolumeW", {}, ErrorsOfName(*simulation, 0)}, [&] {
                OpenObject search;
                search.kind = OpenObject::Kind::kVolumeSearch;
                Answer next = NextName(*simulation, search.position, size);
                if (!next.failed) {
                    next.value = reinterpret_cast<std::uintptr_t>(simulation->handles().Open(search));
                }
                return next;
            });
        const auto handle = reinterpret_cast<HANDLE>(static_cast<std::uintptr_t>(answer.value));
        if (Deliver(answer)) {
            CopyBytes(answer, name, size);
            return handle;
        }
        if (handle != nullptr) {
            simulation->handles().Close(handle);
        }
        return INVALID_HANDLE_VALUE;
    });
}

BOOL WINAPI FindNextVolumeW(HANDLE search, LPWSTR name, DWORD size) {
    Simulation* simulation = Simulation::Current();
    if (simulation == nullptr) {
        return ::FindNextVolumeW(search, name, size);
    }
    return Guarded(FALSE, [&]() -> BOOL {
        OpenObject* object = simulation->handles().Find(search, OpenObject::Kind::kVolumeSearch);
        const CallErrors* errors = object == nullptr ? nullptr : ErrorsOfName(*simulation, object->position);
        const Answer answer = simulation->Perform({CallFamily::kWin32, "FindNextVolumeW", {}, errors}, [&] {
            return object == nullptr ? Answer::Failure(ERROR_INVALID_HANDLE)
                                     : NextName(*simulation, object->position, size);
        });
        if (Deliver(answer)) {
            CopyBytes(answer, name, size);
            return TRUE;
        }
        return FALSE;
    });
}

BOOL WINAPI FindVolumeClose(HANDLE search) {
    Simulation* simulation = Simulation::Current();
    if (simulation == nullptr) {
        return ::FindVolumeClose(search);
    }
    return Guarded(FALSE, [&]() -> BOOL {
        const bool known = simulation->handles().Find(search, OpenObject::Kind::kVolumeSearch) != nullptr;
        if (known) {
            simulation->handles().Close(search);
        }
        return Deliver(simulation->Perform({CallFamily::kWin32, "FindVolumeClose", {}, nullptr}, [&] {
            return known ? Answer{} : Answer::Failure(ERROR_INVALID_HANDLE);
        }));
    });
}

}  // namespace machine::simulated
