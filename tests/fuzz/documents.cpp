// Any bytes as a document: it is refused, or everything can be said of it.

#include "documents/diff/compare.h"
#include "documents/plan/plan.h"
#include "documents/reader/reader.h"
#include "documents/report/report.h"
#include "documents/show/show.h"
#include "documents/verify/verify.h"

#include <nlohmann/json.hpp>

#include <cstddef>
#include <cstdint>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    try {
        const documents::Machine machine = documents::ReadDocument(
            std::string(reinterpret_cast<const char*>(data), size), {.code_page = {}});
        const auto findings = documents::Verify(machine);
        documents::TreeOf(machine, {.bytes = false, .colour = true, .width = 40});
        documents::JsonOf("file", machine);
        documents::PlanOf(machine, {.disks = {}, .targets = {}});
        documents::ReportPage({machine, "file", findings, nullptr});
        documents::diff::Compare(machine, machine, {.all = true});
    } catch (const documents::ReadError&) {
        return 0;
    }
    return 0;
}
