#include "tools/orvane/dump_command.h"

#include "tools/orvane/delivery.h"
#include "tools/orvane/library_session.h"
#include "tools/orvane/message_printer.h"
#include "tools/orvane/whole_file.h"

#include <algorithm>
#include <iterator>

namespace host {

namespace {

using DumpExport = void (*)();

// The export that makes a dump; the prefix of lines that appear only in a dump that found its subject; the
// error line of a dump that failed with an exception.
struct DumpRow {
    DumpKind kind;
    DumpExport OrvaneLibrary::*call;
    const char* subject;
    const char* exception;
};

const DumpRow kDumps[] = {
    {DumpKind::kWmi, &OrvaneLibrary::WMIDumpInfo, "[", "WMIDumpInfo Exception"},
    {DumpKind::kDisks, &OrvaneLibrary::DiskDumpInfo, "[Device Information]", "DiskDumpInfo Exception"},
    {DumpKind::kVolumes, &OrvaneLibrary::VolumeDumpInfo, "[Volume Information]", "VolumeDumpInfo Exception"},
    {DumpKind::kFirmware, &OrvaneLibrary::FirmwareDumpInfo, "Firmware type: ", "FirmwareDumpInfo Exception"},
};

const DumpRow& RowOf(DumpKind kind) {
    return *std::find_if(std::begin(kDumps), std::end(kDumps),
                         [&](const DumpRow& row) { return row.kind == kind; });
}

}  // namespace

DumpLines::DumpLines(DumpKind kind) : subject_(RowOf(kind).subject), exception_(RowOf(kind).exception) {}

bool DumpLines::IsLine(const LogMessage& message) {
    return message.level == ORVANE_LEVEL_INFORMATION;
}

void DumpLines::Take(const LogMessage& message) {
    if (IsLine(message)) {
        told_ = told_ || message.text.starts_with(subject_);
        text_ += message.text + '\n';
    }
    broken_ = broken_ || (message.level == ORVANE_LEVEL_ERROR && message.text == exception_);
}

int Dump(const DumpOptions& options, std::ostream& out, std::ostream& errors) {
    const Existing existing = options.force ? Existing::kReplaced : Existing::kKept;
    if (options.output) {
        RequireFree(*options.output, existing);
    }
    const LibrarySession session(options.machine);
    const OrvaneLibrary& library = session.library();
    DumpLines lines(options.kind);
    MessagePrinter printer(errors, options.verbose);
    LogSink log(library.SetEventFunc, options.log, [&](const LogMessage& message) {
        lines.Take(message);
        if (DumpLines::IsLine(message) && !options.output) {
            out << message.text << '\n';
        }
        if (printer.Shows(message)) {
            out.flush();  // keeps the order of the lines if both are the same file
            printer.Print(message);
        }
    });
    (library.*RowOf(options.kind).call)();
    log.RequireWritten();
    if (!options.output) {
        DeliverToStream(out, "", "the dump");
    }
    if (!lines.told()) {
        errors << "orvane: the dump failed\n";
        return kExitFailed;
    }
    if (options.output) {
        WriteWholeFiles({{*options.output, lines.text()}}, existing);
    }
    return kExitDone;
}

}  // namespace host
