#include "faults/run.h"

#include "faults/com_memory.h"
#include "faults/dom_hooks.h"
#include "support/disk_addresses.h"
#include "support/xml_tree.h"

#include <exception>
#include <stdexcept>

namespace faults {

namespace {

constexpr std::uint32_t kUntouched = 0xAAAAAAAA;
constexpr std::size_t kSpareBytes = 4096;  // for a document that a change makes longer
constexpr std::int32_t kError = ORVANE_LEVEL_ERROR;
constexpr std::int32_t kTrace = ORVANE_LEVEL_TRACE;

// The log of the current call.
struct {
    std::string lines;
    std::size_t errors = 0;
    bool keep = false;
} log_of_call;

void Receive(std::int32_t level, const char* text) {
    log_of_call.errors += level >= kError ? 1 : 0;
    if (log_of_call.keep && level != kTrace) {
        log_of_call.lines += static_cast<char>('0' + level);
        log_of_call.lines += text;
        log_of_call.lines += '\n';
    }
}

// Every fixed volume with a mount point and a GUID, as a multi-string.
std::wstring SelectionOf(const machine::Description& machine) {
    std::wstring list;
    for (const machine::Volume& volume : machine.volumes) {
        if (volume.drive_type == DRIVE_FIXED && !volume.mount_points.empty() && !volume.guid.empty()) {
            list += L"\\\\?\\Volume" + volume.guid + L"\\" + L'\0';
        }
    }
    return list + L'\0';
}

bool IsWellFormed(const std::string& document) {
    try {
        XmlTree::Of(document);
        return true;
    } catch (const std::exception&) {
        return false;
    }
}

}  // namespace

Bench::Bench(const Library& library, const EntryPoint& entry, machine::Description description)
    : library_(library), entry_(entry), session_(std::move(description)) {
    session_.simulation().calls().SetKept(false);
    library_.SetEventFunc(&Receive);
    library_.SetXmlFormat(entry.format);
    const std::wstring selection = SelectionOf(session_.simulation().machine());
    library_.SetupSelectedVolumesList(selection.data(), selection.size());
    if (entry_.format != 0) {
        std::uint32_t needed = 0;
        library_.CaptureSystemRestorePointInfo(nullptr, 0, &needed);
        buffer_.resize(needed + kSpareBytes);
    }
    // The first call and the first exceptions allocate memory for the life of the process, which is no leak.
    Call();
    constexpr std::size_t kWarmingFailures = 16;
    for (std::size_t ordinal = 1; ordinal <= kWarmingFailures; ++ordinal) {
        Watch().allocations.Arm(ordinal, ordinal % 2 == 0);
        Call();
    }
    Watch().allocations.Disarm();
    clean_ = Call();
    TakeStock();
}

void Bench::TakeStock() {
    balance_ = Watch().balance;
    references_ = Dom().references;
    com_blocks_ = LiveComBlocks();
    handles_ = simulation().open_handles();
    stale_uses_ = simulation().stale_handle_uses();
    objects_ = simulation().live_objects();
}

Bench::~Bench() {
    library_.SetEventFunc(nullptr);
    library_.SetupSelectedVolumesList(nullptr, 0);
}

Outcome Bench::Call() {
    ResetGuids();
    ForgetRequests();
    log_of_call.lines.clear();
    log_of_call.errors = 0;
    log_of_call.keep = entry_.format == 0;
    Outcome outcome = entry_.format != 0 ? CallCapture() : CallDump();
    outcome.errors = log_of_call.errors;
    return outcome;
}

Outcome Bench::CallCapture() {
    Outcome outcome;
    std::uint32_t needed = kUntouched;
    buffer_.assign(buffer_.size(), '#');
    outcome.status = library_.CaptureSystemRestorePointInfo(
        buffer_.data(), static_cast<std::uint32_t>(buffer_.size()), &needed);
    if (outcome.status == ORVANE_SUCCESS) {
        outcome.output =
            needed <= buffer_.size() ? support::WithoutAddresses(buffer_.substr(0, needed)) : "size";
    } else if (buffer_.find_first_not_of('#') != std::string::npos) {
        outcome.output = "buffer";
    } else if (outcome.status == ORVANE_FAILED && needed != kUntouched) {
        outcome.output = "size";
    }
    return outcome;
}

Outcome Bench::CallDump() {
    (library_.*(entry_.dump))();
    Outcome outcome;
    outcome.output = log_of_call.lines;
    return outcome;
}

std::vector<std::string> Bench::Breaches(const Outcome& outcome) {
    std::vector<std::string> breaches;
    const auto require = [&](bool holds, const char* name) {
        if (!holds) {
            breaches.emplace_back(name);
        }
    };
    const Balance balance = Watch().balance;
    require(simulation().open_handles() == handles_, "handle");
    require(simulation().stale_handle_uses() == stale_uses_, "stale-handle");
    require(simulation().live_objects() == objects_, "object");
    require(Dom().references == references_, "dom-object");
    require(balance.com_initialisations == balance_.com_initialisations, "com");
    require(balance.registry_keys == balance_.registry_keys && balance.tokens == balance_.tokens, "key");
    require(balance.heap_blocks == balance_.heap_blocks, "memory");
    require(LiveComBlocks() == com_blocks_, "com-memory");
    require(AskedOnlyWhatIsDocumented(entry_), "request");
    // Each leak is reported only once.
    TakeStock();
    if (entry_.format == 0) {
        return breaches;
    }
    require(outcome.status <= ORVANE_BUFFER_TOO_SMALL, "status");
    if (outcome.status == ORVANE_SUCCESS) {
        // Format 3 returns an empty document, after an error line, if the text cannot be converted to bytes.
        const bool nothing = entry_.format == 3 && outcome.output.empty() && outcome.errors != 0;
        require(nothing || IsWellFormed(outcome.output), "document");
    } else {
        require(outcome.output.empty(), "buffer");
        require(outcome.status != ORVANE_FAILED || outcome.errors != 0, "silence");
    }
    return breaches;
}

std::vector<machine::CallRecord> Bench::CleanCalls() {
    machine::CallLog& calls = simulation().calls();
    calls.Clear();
    calls.SetKept(true);
    Call();
    std::vector<machine::CallRecord> records = calls.records();
    calls.SetKept(false);
    calls.Clear();
    return records;
}

std::vector<std::string> Bench::BreachesOfNextRun() {
    simulation().faults().Clear();
    Watch().allocations.Disarm();
    Watch().imports.Disarm();
    Dom().calls.Disarm();
    const Outcome again = Call();
    std::vector<std::string> breaches = Breaches(again);
    if (again != clean_) {
        breaches.emplace_back("next-run");
    }
    return breaches;
}

}  // namespace faults
