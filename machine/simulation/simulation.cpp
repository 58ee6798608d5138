#include "machine/simulation/simulation.h"

#include <new>
#include <stdexcept>
#include <utility>

namespace machine {
namespace {

Simulation* current = nullptr;

constexpr FaultCodes kOutOfMemory = {ERROR_NOT_ENOUGH_MEMORY, 0xC0000017, 0x8007000E};

Answer Computed(CallFamily family, const AnswerBody& body) {
    try {
        return body();
    } catch (const std::bad_alloc&) {
        return Answer::Failure(kOutOfMemory.For(family));
    }
}

}  // namespace

Simulation::Simulation(Description description)
    : description_(std::move(description)), object_count_(std::make_shared<std::size_t>(0)) {
    if (current != nullptr) {
        throw std::logic_error("another simulation is current");
    }
    current = this;
}

Simulation::~Simulation() {
    current = nullptr;
}

Simulation* Simulation::Current() noexcept {
    return current;
}

Description& Simulation::description() noexcept {
    names_valid_ = false;
    return description_;
}

std::size_t Simulation::live_objects() const noexcept {
    return *object_count_;
}

const NameIndex& Simulation::names() {
    if (!names_valid_) {
        names_ = NameIndex(description_);
        names_valid_ = true;
    }
    return names_;
}

Disk* Simulation::FindDisk(std::uint32_t index) {
    const auto position = names().FindDisk(index);
    return position ? &description_.disks[*position] : nullptr;
}

Volume* Simulation::FindVolume(const std::wstring& device) {
    const NameIndex::Target target = names().FindDevice(device);
    return target.kind == NameIndex::Target::Kind::kVolume ? &description_.volumes[target.position] : nullptr;
}

const CallErrors* Simulation::ErrorsOf(const NameIndex::Target& target) const {
    switch (target.kind) {
        case NameIndex::Target::Kind::kDisk:
            return &description_.disks[target.position].errors;
        case NameIndex::Target::Kind::kVolume:
            return &description_.volumes[target.position].errors;
        case NameIndex::Target::Kind::kNone:
            break;
    }
    return nullptr;
}

Answer Simulation::Open(OpenObject object) {
    return Answer::Success(reinterpret_cast<std::uintptr_t>(handles_.Open(std::move(object))));
}

void Simulation::CloseIfFailed(const Answer& answer) {
    if (answer.failed && answer.value != 0) {
        handles_.Close(reinterpret_cast<HANDLE>(static_cast<std::uintptr_t>(answer.value)));
    }
}

std::optional<std::uint32_t> Simulation::DescribedError(const Call& call) const {
    std::optional<std::uint32_t> error;
    if (call.errors != nullptr) {
        error = call.errors->Find(call.name);
    }
    return error ? error : description_.errors.Find(call.name);
}

Answer Simulation::Perform(const Call& call, const AnswerBody& body) {
    CallRecord record;
    record.ordinal = calls_.NextOrdinal();
    record.family = FamilyOf(call.name);
    record.name = call.name;
    record.object = call.object;

    const FaultPlan::Verdict verdict = faults_.Judge(record.family, call.name, call.object);
    std::optional<std::uint32_t> error = verdict.error;
    if (!error) {
        error = DescribedError(call);
        described_errors_met_ += error ? 1 : 0;
    }
    Answer answer = error ? Answer::Failure(*error) : Computed(record.family, body);
    for (const auto& action : verdict.actions) {
        action(answer);
    }

    record.failed = answer.failed;
    record.error = answer.error;
    record.value = answer.value != 0 ? answer.value : answer.returned;
    calls_.Add(std::move(record));
    return answer;
}

}  // namespace machine
