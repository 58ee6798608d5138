#include "tools/orvane/capture_command.h"

#include "tools/orvane/delivery.h"
#include "tools/orvane/indented_xml.h"
#include "tools/orvane/library_session.h"
#include "tools/orvane/log_sink.h"
#include "tools/orvane/message_printer.h"
#include "tools/orvane/text_encoding.h"
#include "tools/orvane/whole_file.h"

namespace host {

namespace {

std::string Readable(const std::string& document) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n" + IndentXml(FromAnsi(document));
}

}  // namespace

std::optional<std::string> FetchDocument(const CaptureFunction& capture) {
    constexpr int kMostCalls = 8;  // gives up on a document that keeps growing
    std::string document;
    for (int call = 0; call < kMostCalls; ++call) {
        std::uint32_t needed = 0;
        const std::uint32_t status =
            capture(document.data(), static_cast<std::uint32_t>(document.size()), &needed);
        if (status == ORVANE_SUCCESS && needed > 0 && needed <= document.size()) {
            document.resize(needed);
            return document;
        }
        if (status != ORVANE_BUFFER_TOO_SMALL || needed <= document.size()) {
            return std::nullopt;
        }
        document.resize(needed);
    }
    return std::nullopt;
}

std::wstring MultiStringOf(const std::vector<std::wstring>& volumes) {
    std::wstring list;
    for (const std::wstring& volume : volumes) {
        list += volume + L'\0';
    }
    return list + L'\0';
}

std::optional<std::string> CaptureDocument(const CaptureOptions& options, std::ostream& errors) {
    const LibrarySession session(options.machine);
    const OrvaneLibrary& library = session.library();
    // FetchDocument captures more than once, and each call logs the same errors.
    MessagePrinter printer(errors, options.verbose);
    LogSink log(library.SetEventFunc, options.log,
                [&](const LogMessage& message) { printer.PrintOnce(message); });

    library.SetXmlFormat(options.format);
    if (!options.volumes.empty()) {
        const std::wstring list = MultiStringOf(options.volumes);
        library.SetupSelectedVolumesList(list.data(), list.size());
    }
    std::optional<std::string> document = FetchDocument(library.CaptureSystemRestorePointInfo);
    log.RequireWritten();
    if (!document || options.raw) {
        return document;
    }
    return Readable(*document);
}

int Capture(const CaptureOptions& options, std::ostream& out, std::ostream& errors) {
    const Existing existing = options.force ? Existing::kReplaced : Existing::kKept;
    if (options.output) {
        RequireFree(*options.output, existing);
    }
    const std::optional<std::string> text = CaptureDocument(options, errors);
    if (!text) {
        errors << "orvane: the capture failed\n";
        return kExitFailed;
    }
    if (options.output) {
        WriteWholeFiles({{*options.output, *text}}, existing);
    } else {
        DeliverToStream(out, *text, "the document");
    }
    return kExitDone;
}

}  // namespace host
