#include "documents/diff/output.h"

#include "documents/diff/machines.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <utility>

namespace documents::diff {

namespace {

using Json = nlohmann::json;

struct Sentence {
    std::function<void(Machine& machine)> change;
    std::vector<std::string> sentences;
};

const std::vector<Sentence> kSentences = {
    {[](Machine& machine) { machine.disks[1].size = 1536 * kGiB; },
     {"Disk 1: resized from 200 GiB to 1.5 TiB"}},
    // Alike in human units.
    {[](Machine& machine) { *machine.disks[1].size += 512; },
     {"Disk 1: resized from 214748364800 bytes to 214748365312 bytes"}},
    {[](Machine& machine) { machine.disks[1].size.reset(); },
     {"Disk 1: size changed from 200 GiB to unknown"}},
    {[](Machine& machine) { machine.disks[0].signature = 0xB00U; },
     {"Disk 0: signature changed from 0x00000A00 to 0x00000B00 (a guess, by what lies on it)"}},
    {[](Machine& machine) { machine.disks[0].style = Style::kRaw; },
     {"Disk 0: converted from MBR, signature 0x00000A00 to none, signature 0x00000A00"}},
    {[](Machine& machine) { machine.disks[0].dynamic = true; }, {"Disk 0: is dynamic now"}},
    {[](Machine& machine) {
         machine.disks[1].number = 4;
         machine.volumes[2].extents->front().disk = 4;
         machine.volumes[3].extents->front() = machine.volumes[2].extents->front();
         machine.disks[1].partitions->back().place.start = 70 * kGiB;
     },
     {"Disk 1 (now 4): renumbered from 1 to 4",
      "Disk 1 (now 4), partition at 60 GiB: moved from 60 GiB to 70 GiB",
      "Volume E:\\: moved from disk 1 at 60 GiB (60 GiB) to disk 4 at 1 MiB (50 GiB)"}},
    {[](Machine& machine) {
         machine.disks[0].partitions->back().active = true;
         machine.disks[0].partitions->back().mbr_type = std::uint8_t{0x27};
     },
     {"Disk 0, partition at 501 MiB: retyped from 0x07 to 0x27",
      "Disk 0, partition at 501 MiB: is active now"}},
    {[](Machine& machine) { machine.disks[1].partitions->pop_back(); },
     {"Disk 1, partition at 60 GiB: removed (identifier {PART-B}, at 60 GiB, size 60 GiB, type " +
      std::string(kBasicData) + ")"}},
    {[](Machine& machine) {
         machine.disks[1].id = "{DISK-9}";
         machine.disks[1].size = 300 * kGiB;
         machine.volumes.resize(3);
         machine.volumes[2].extents->front().disk = 0;
     },
     {"Disk 1: replaced (size 200 GiB, GPT, identifier {DISK-1}) by another (size 300 GiB, GPT, identifier "
      "{DISK-9})",
      "Volume D:\\: moved from disk 1 at 1 MiB (50 GiB) to disk 0 at 1 MiB (50 GiB)",
      "Volume E:\\: removed (size 60 GiB, label \"Label of e\", file system NTFS, serial number 0000-0004, "
      "drive "
      "letter E:\\, disk 1 at 60 GiB (60 GiB))"}},
    {[](Machine& machine) { machine.volumes[2].label = ""; },
     {"Volume D:\\: relabelled from \"Label of d\" to \"\""}},
    {[](Machine& machine) { machine.volumes[2].letter = ""; },
     {"Volume D:\\: remounted from D:\\ to nothing"}},
    {[](Machine& machine) {
         machine.volumes[0].serial = 0x8E17A45DU;
         machine.volumes[0].file_system = "FAT32";
         machine.volumes[0].boot = false;
     },
     {"Volume \\\\?\\Volume{boot}\\: reformatted from file system NTFS, serial number 0000-0001 to file "
      "system "
      "FAT32, serial number 8E17-A45D",
      "Volume \\\\?\\Volume{boot}\\: is no longer the boot volume"}},
    {[](Machine& machine) { machine.facts[3].value = "10.0.22631"; },
     {"Machine: OS/Version changed from 10.0.19045 to 10.0.22631"}},
};

TEST(Output, Sentences) {
    for (const Sentence& expected : kSentences) {
        Machine after = TwoDisks();
        expected.change(after);
        std::vector<std::string> sentences;
        for (const Change& change : Compare(TwoDisks(), after, {})) {
            sentences.push_back(SentenceOf(change));
        }
        EXPECT_EQ(sentences, expected.sentences);
    }
}

Json CompareAsJson(const Machine& before, const Machine& after) {
    return JsonOf(Compare(before, after, {}), {"a.xml", before.format}, {std::nullopt, after.format});
}

TEST(Output, JsonOfTheSame_HasNoChanges) {
    EXPECT_EQ(CompareAsJson(TwoDisks(), TwoDisksInFormat3()), Json::parse(R"({
        "schema": 1,
        "old": {"file": "a.xml", "format": 2},
        "new": {"file": null, "format": 3},
        "same": true,
        "changes": []
    })"));
}

TEST(Output, Json_HasTheValuesThatTheKindIsAbout) {
    Machine after = TwoDisks();
    after.disks[1].size.reset();
    after.disks[0].partitions->pop_back();
    after.volumes[2].label = "\"\xC3\x9C";
    after.volumes[3].extents->front().place.start = 61 * kGiB;
    const Json json = CompareAsJson(TwoDisks(), after);
    EXPECT_EQ(json["same"], false);
    EXPECT_EQ(json["changes"], Json::parse(R"([
        {"object": "partition", "kind": "removed", "id": "0x00000A00@525336576", "guess": false,
         "old": {"start": 525336576, "length": 85899345920, "mbrType": 7}, "new": null},
        {"object": "disk", "kind": "changed", "id": "{DISK-1}", "guess": false,
         "old": {"size": 214748364800}, "new": {"size": null}},
        {"object": "volume", "kind": "relabelled", "id": "\\\\?\\Volume{d}\\", "guess": false,
         "old": {"label": "Label of d"}, "new": {"label": "\"Ü"}},
        {"object": "volume", "kind": "moved", "id": "\\\\?\\Volume{e}\\", "guess": false,
         "old": {"extents": [{"disk": 1, "start": 64424509440, "length": 64424509440}]},
         "new": {"extents": [{"disk": 1, "start": 65498251264, "length": 64424509440}]}}
    ])"));
}

TEST(Output, Json_DescribesWhatWasAdded) {
    Machine before = TwoDisks();
    before.disks.pop_back();
    before.volumes.resize(2);
    const Json changes = CompareAsJson(before, TwoDisks())["changes"];
    ASSERT_EQ(changes.size(), 3U);
    EXPECT_EQ(changes[0], Json::parse(R"({
        "object": "disk", "kind": "added", "id": "{DISK-1}", "guess": false, "old": null,
        "new": {"number": 1, "size": 214748364800, "style": "GPT", "id": "{DISK-1}",
                "partitions": [{"start": 1048576, "length": 53687091200},
                               {"start": 64424509440, "length": 64424509440}]}
    })"));
    EXPECT_EQ(changes[1], Json::parse(R"({
        "object": "volume", "kind": "added", "id": "\\\\?\\Volume{d}\\", "guess": false, "old": null,
        "new": {"path": "\\\\?\\Volume{d}\\", "size": 53687091200, "label": "Label of d", "fileSystem": "NTFS",
                "serial": 3, "letter": "D:\\",
                "extents": [{"disk": 1, "start": 1048576, "length": 53687091200}]}
    })"));
}

}  // namespace

}  // namespace documents::diff
