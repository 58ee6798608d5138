#include "tools/orvane/capture_command.h"

#include "common/windows.h"
#include "machine/redirect.h"
#include "machine/session.h"
#include "machine/text.h"
#include "tools/orvane/indented_xml.h"
#include "tools/orvane/log_sink.h"
#include "tools/orvane/machine_choice.h"
#include "tools/orvane/orvane_library.h"
#include "tools/orvane/text_encoding.h"

#include <objbase.h>

#include <fstream>
#include <stdexcept>

namespace host {

namespace {

// COM on this thread, which the library relies on.
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

// Puts the library on the described machine, before its first export is called. The library itself is as
// shipped.
class MachineUnderLibrary {
public:
    MachineUnderLibrary(HMODULE library, std::optional<machine::Description> description) {
        if (description) {
            if (!machine::PutModuleOnSimulation(library)) {
                throw std::runtime_error("the library cannot be put on a described machine");
            }
            session_.emplace(std::move(*description), machine::SessionCom::kCallers);
        }
    }

private:
    ComScope com_;
    std::optional<machine::Session> session_;
};

std::string Readable(const std::string& document) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n" + IndentXml(FromAnsi(document));
}

void DeliverToFile(const std::filesystem::path& file, const std::string& text) {
    std::ofstream out(file, std::ios::binary);
    out.write(text.data(), static_cast<std::streamsize>(text.size()));
    out.close();
    if (!out) {
        throw std::runtime_error(machine::Narrow(file.wstring()) + ": the document cannot be written");
    }
}

void DeliverToStream(std::ostream& out, const std::string& text) {
    out.write(text.data(), static_cast<std::streamsize>(text.size()));
    if (!out.flush()) {
        throw std::runtime_error("the document cannot be written to standard output");
    }
}

}  // namespace

std::optional<std::string> FetchDocument(const CaptureFunction& capture) {
    constexpr int kMostCalls = 8;  // a document that grows for ever is given up
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

int Capture(const CaptureOptions& options, std::ostream& out, std::ostream& errors) {
    std::optional<machine::Description> description = ChooseMachine(options.machine);
    const OrvaneLibrary library(LibraryPath());
    const MachineUnderLibrary machine(library.module(), std::move(description));
    LogSink log(library.SetEventFunc, errors, options.verbose, options.log);

    library.SetXmlFormat(options.format);
    if (!options.volumes.empty()) {
        const std::wstring list = MultiStringOf(options.volumes);
        library.SetupSelectedVolumesList(list.data(), list.size());
    }
    const std::optional<std::string> document = FetchDocument(library.CaptureSystemRestorePointInfo);
    if (!log.file_written()) {
        throw std::runtime_error("the log cannot be written");
    }
    if (!document) {
        errors << "orvane: the capture failed\n";
        return kExitFailed;
    }
    const std::string text = options.raw ? *document : Readable(*document);
    if (options.output) {
        DeliverToFile(*options.output, text);
    } else {
        DeliverToStream(out, text);
    }
    return kExitDone;
}

}  // namespace host
