#include "tools/orvane/check_command.h"

#include "machine/description/text.h"
#include "tools/orvane/capture_command.h"
#include "tools/orvane/check_report.h"
#include "tools/orvane/delivery.h"
#include "tools/orvane/dump_parsers.h"
#include "tools/orvane/library_session.h"
#include "tools/orvane/message_printer.h"
#include "tools/orvane/refusal_parser.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace host {

namespace {

// VolumeDumpInfo collects as format 3 does: one cannot succeed where the other fails.
constexpr std::uint32_t kJudgingFormat = 3;

// Receives the library's log during a check: passes it to the parser of the current call and keeps the
// errors.
class CheckLog {
public:
    CheckLog(const CheckOptions& options, const OrvaneLibrary& library, std::ostream& errors)
        : verbose_(options.verbose),
          printer_(errors, options.verbose),
          sink_(library.SetEventFunc, options.log, [this](const LogMessage& message) { Take(message); }) {}

    template <class Parser, class Call>
    void Read(Parser& parser, Call&& call) {
        reader_ = [&](const LogMessage& message) { parser.Take(message); };
        call();
        reader_ = nullptr;
    }

    void RequireWritten() { sink_.RequireWritten(); }

    bool complained() const { return !complaints_.empty(); }

    // With --verbose they have already been printed.
    void ShowComplaints() {
        if (!verbose_) {
            for (const LogMessage& message : complaints_) {
                printer_.PrintOnce(message);
            }
        }
    }

private:
    void Take(const LogMessage& message) {
        if (verbose_) {
            printer_.Print(message);
        }
        if (message.level >= ORVANE_LEVEL_ERROR) {
            complaints_.push_back(message);
        }
        if (reader_) {
            reader_(message);
        }
    }

    bool verbose_;
    MessagePrinter printer_;
    std::vector<LogMessage> complaints_;
    LogSink::Listener reader_;
    LogSink sink_;
};

std::optional<Verdict> Judge(const OrvaneLibrary& library, CheckLog& log, const std::wstring& volume) {
    const std::wstring list = MultiStringOf({volume});
    library.SetXmlFormat(kJudgingFormat);
    library.SetupSelectedVolumesList(list.data(), list.size());
    RefusalParser parser;
    std::uint32_t status = ORVANE_FAILED;
    log.Read(parser, [&] { status = library.CaptureSystemRestorePointInfo(nullptr, 0, nullptr); });
    return parser.Result(status);
}

// Returns the report, and whether any part of it could not be determined.
std::pair<CheckReport, bool> Inspect(const CheckOptions& options, const OrvaneLibrary& library,
                                     CheckLog& log) {
    CheckReport report;
    DiskDumpParser disks;
    log.Read(disks, library.DiskDumpInfo);
    report.disks = disks.Result();
    bool failed = !report.disks || (report.disks->empty() && log.complained());
    VolumeDumpParser volumes;
    log.Read(volumes, library.VolumeDumpInfo);
    report.volumes = volumes.Result();
    failed = failed || !report.volumes;
    for (const std::wstring& volume : options.volumes) {
        report.selected.push_back({machine::Narrow(volume), Judge(library, log, volume)});
        failed = failed || !report.selected.back().verdict;
    }
    return {std::move(report), failed};
}

bool AllCanBackup(const std::vector<SelectedVerdict>& selected) {
    return std::all_of(selected.begin(), selected.end(),
                       [](const SelectedVerdict& one) { return one.verdict && one.verdict->can_backup; });
}

}  // namespace

int Check(const CheckOptions& options, std::ostream& out, std::ostream& errors, bool colour) {
    const LibrarySession session(options.machine);
    CheckLog log(options, session.library(), errors);
    const auto [report, failed] = Inspect(options, session.library(), log);
    log.RequireWritten();
    DeliverToStream(out, options.json ? JsonOf(report) : TableOf(report, colour), "the report");
    if (failed) {
        log.ShowComplaints();
        errors << "orvane: the check failed\n";
        return kExitFailed;
    }
    return AllCanBackup(report.selected) ? kExitDone : kExitFailed;
}

}  // namespace host
