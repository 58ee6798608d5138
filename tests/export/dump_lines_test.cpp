// Compares the dumps of the example machines, line by line, with expected files. Those were written from the
// documented dump format and the machines' descriptions.

#include "export/capture_fixture.h"

#include <filesystem>
#include <fstream>
#include <sstream>

namespace {

struct DumpCase {
    std::string machine;
    std::string kind;
};

void PrintTo(const DumpCase& dump_case, std::ostream* out) {
    *out << dump_case.kind << " of " << dump_case.machine;
}

const std::filesystem::path kFolder = ORVANE_SOURCE_DIR "/examples/machines";

std::vector<DumpCase> AllDumps() {
    std::vector<DumpCase> cases;
    for (const auto& entry : std::filesystem::directory_iterator(kFolder)) {
        if (entry.is_directory()) {
            for (const char* kind : {"wmi", "disks", "volumes", "firmware"}) {
                cases.push_back({entry.path().filename().string(), kind});
            }
        }
    }
    return cases;
}

class DumpLines : public CaptureTest, public testing::WithParamInterface<DumpCase> {
protected:
    DumpLines() : CaptureTest(Machine(GetParam().machine)) {}

    void Dump() {
        const std::string& kind = GetParam().kind;
        log_.Clear();
        if (kind == "wmi") {
            library_.WMIDumpInfo();
        } else if (kind == "disks") {
            library_.DiskDumpInfo();
        } else if (kind == "volumes") {
            library_.VolumeDumpInfo();
        } else {
            library_.FirmwareDumpInfo();
        }
    }

    // One message per line: level and text. A line feed at the end of a message is written as \n.
    std::string Messages() const {
        std::string lines;
        for (const support::LogLine& line : log_.Messages()) {
            std::string text = line.text;
            if (text.ends_with('\n')) {
                text.replace(text.size() - 1, 1, "\\n");
            }
            lines += std::to_string(line.level) + ' ' + text + '\n';
        }
        return lines;
    }
};

TEST_P(DumpLines, EveryLine_IsAsExpected) {
    const std::filesystem::path file = kFolder / GetParam().machine / "expected" / (GetParam().kind + ".txt");
    std::ifstream expected(file, std::ios::binary);
    ASSERT_TRUE(expected) << file;
    std::ostringstream text;
    text << expected.rdbuf();
    Dump();
    EXPECT_EQ(Messages(), text.str());
}

INSTANTIATE_TEST_SUITE_P(Machines, DumpLines, testing::ValuesIn(AllDumps()), [](const auto& dump_case) {
    std::string name = dump_case.param.machine + "_" + dump_case.param.kind;
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
});

}  // namespace
