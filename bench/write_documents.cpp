#include "bench/captures.h"
#include "bench/machines.h"
#include "bench/sections.h"
#include "machine/session/session.h"
#include "tools/orvane/whole_file.h"

#include <string>

namespace bench {

void WriteDocuments(const host::OrvaneLibrary& library, const std::filesystem::path& folder) {
    std::filesystem::create_directories(folder);
    for (const Size& size : {Size{16, 1000, 1, 0}, Size{160, 10'000, 1, 0}}) {
        machine::Session session(MachineOf(size));
        session.simulation().calls().SetKept(false);
        for (const std::uint32_t format : {2U, 3U}) {
            const std::string name =
                std::to_string(size.volumes) + "-format" + std::to_string(format) + ".xml";
            host::WriteWholeFiles({{folder / name, Captures(library, format).Document()}},
                                  host::Existing::kReplaced);
        }
    }
}

}  // namespace bench
