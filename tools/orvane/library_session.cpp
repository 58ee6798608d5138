#include "tools/orvane/library_session.h"

#include "common/windows.h"
#include "machine/session/session.h"
#include "machine/simulation/redirect.h"

#include <objbase.h>

#include <stdexcept>

namespace host {

namespace {

class ComScope {
public:
    ComScope() {
        const HRESULT result = CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
        if (FAILED(result)) {
            throw std::runtime_error("COM cannot be initialised, error " +
                                     std::to_string(static_cast<unsigned long>(result)));
        }
    }
    ~ComScope() { CoUninitialize(); }
    ComScope(const ComScope&) = delete;
    ComScope& operator=(const ComScope&) = delete;
};

std::optional<machine::Description> LoadMachine(const std::optional<std::filesystem::path>& file) {
    return file ? std::optional(machine::LoadDescription(*file)) : std::nullopt;
}

}  // namespace

class LibrarySession::Parts {
public:
    // Redirects the shipped library to the described machine before the first call of an export.
    explicit Parts(std::optional<machine::Description> description) : library_(LibraryPath()) {
        if (description) {
            if (!machine::PutModuleOnSimulation(library_.module())) {
                throw std::runtime_error("the library cannot be put on a described machine");
            }
            session_.emplace(std::move(*description), machine::SessionCom::kCallers);
        }
    }

    const OrvaneLibrary& library() const { return library_; }

private:
    OrvaneLibrary library_;
    ComScope com_;
    std::optional<machine::Session> session_;
};

LibrarySession::LibrarySession(const std::optional<std::filesystem::path>& description)
    : parts_(std::make_unique<Parts>(LoadMachine(description))) {}

LibrarySession::~LibrarySession() = default;

const OrvaneLibrary& LibrarySession::library() const {
    return parts_->library();
}

}  // namespace host
