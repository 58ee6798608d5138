// Compares the documents of formats 1 and 2 of the example machines with expected files. Those were written
// from the documented layout and the machines' descriptions.

#include "export/capture_fixture.h"
#include "support/text.h"
#include "support/xml_tree.h"

#include <fstream>
#include <map>
#include <regex>
#include <sstream>

namespace {

std::string Contents(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    if (!file) {
        throw std::runtime_error(path + " cannot be read");
    }
    return text.str();
}

// Replaces the GUIDs that a format 2 capture generates for its volumes with "generated 1", "generated 2" and
// so on, in order of appearance. Volume names, which are paths, are kept.
class GeneratedGuids {
public:
    XmlTree Without(XmlTree document) {
        for (XmlTree& child : document.children) {
            child = Without(std::move(child));
        }
        if (std::regex_match(document.text, guid_) && document.name.starts_with("m_")) {
            const auto [entry, added] = numbers_.try_emplace(document.text, numbers_.size() + 1);
            document.text = "generated " + std::to_string(entry->second);
        }
        return document;
    }

private:
    std::regex guid_{R"(\{[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}\})"};
    std::map<std::string, std::size_t> numbers_;
};

struct FlatCase {
    const char* machine;
    std::uint32_t format;
};

void PrintTo(const FlatCase& flat_case, std::ostream* out) {
    *out << flat_case.machine << " in format " << flat_case.format;
}

class FlatDocument : public CaptureTest, public testing::WithParamInterface<FlatCase> {
protected:
    FlatDocument() : CaptureTest(Machine(GetParam().machine)) { library_.SetXmlFormat(GetParam().format); }
};

TEST_P(FlatDocument, EveryElement_IsAsExpected) {
    const std::string file = std::string(ORVANE_SOURCE_DIR "/examples/machines/") + GetParam().machine +
                             "/expected/format" + std::to_string(GetParam().format) + ".xml";
    const XmlTree document = XmlTree::Of(support::Utf8(support::Wide(Document())));
    // Compared as indented lines, so that a failure shows only the differences.
    EXPECT_EQ(Lines(GeneratedGuids().Without(document)), Lines(XmlTree::Of(Contents(file))));
}

INSTANTIATE_TEST_SUITE_P(Machines, FlatDocument,
                         testing::Values(FlatCase{"uefi-workstation", 2}, FlatCase{"bios-laptop", 2},
                                         FlatCase{"server-many-disks", 2}, FlatCase{"spanned-dynamic", 2},
                                         FlatCase{"large-4kn", 2}, FlatCase{"bios-laptop", 1},
                                         FlatCase{"spanned-dynamic", 1}),
                         [](const auto& flat_case) {
                             std::string name = flat_case.param.machine;
                             std::replace(name.begin(), name.end(), '-', '_');
                             return name + "_format" + std::to_string(flat_case.param.format);
                         });

}  // namespace
