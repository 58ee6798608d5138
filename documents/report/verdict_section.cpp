#include "documents/report/verdict_section.h"

#include <string>
#include <utility>
#include <vector>

namespace documents {

namespace {

std::string Joined(const std::vector<std::string>& texts) {
    std::string joined;
    for (const std::string& text : texts) {
        joined += (joined.empty() ? "" : ", ") + text;
    }
    return joined;
}

PageData RowOf(const Verdict& verdict, const std::string& title, const std::string& under) {
    PageData row = WordOf(verdict);
    row["verdict_title"] = title;
    row["verdict_under"] = TextOrNone(under);
    PageList reasons;
    for (const Reason& reason : verdict.reasons) {
        reasons.emplace_back(reason.code.empty() ? reason.text : reason.code + ": " + reason.text);
    }
    row["reasons"] = reasons;
    return row;
}

PageData RowOf(const DiskVerdict& disk) {
    return RowOf(disk.verdict, "Disk " + std::to_string(disk.number), "");
}

PageData RowOf(const VolumeVerdict& volume) {
    const std::string mounted = Joined(volume.mount_points);
    return RowOf(volume.verdict, mounted.empty() ? volume.device : mounted + " (" + volume.device + ")",
                 volume.path);
}

PageData RowOf(const SelectedVerdict& selected) {
    return RowOf(selected.verdict, selected.volume, "");
}

struct TableTexts {
    const char* heading;
    const char* caption;
    const char* object;
};

template <class List>
PageData TableOf(const TableTexts& texts, const List* list) {
    PageList rows;
    if (list != nullptr) {
        for (const auto& verdict : *list) {
            rows.push_back(RowOf(verdict));
        }
    }
    PageData table;
    table["verdict_heading"] = texts.heading;
    table["verdict_caption"] = texts.caption;
    table["verdict_object"] = texts.object;
    table["verdict_note"] = TextOrNone(std::string(list == nullptr ? "They could not be listed."
                                                   : rows.empty()  ? "None found."
                                                                   : ""));
    table["has_rows"] = PageData(!rows.empty());
    table["verdict_rows"] = rows;
    return table;
}

template <class List>
const List* AddressOf(const std::optional<List>& list) {
    return list ? &*list : nullptr;
}

}  // namespace

PageData WordOf(const Verdict& verdict) {
    PageData word;
    word["verdict_word"] = !verdict.can_backup   ? "not judged"
                           : *verdict.can_backup ? "can be backed up"
                                                 : "cannot be backed up";
    word["verdict_look"] = !verdict.can_backup ? "note" : *verdict.can_backup ? "good" : "bad";
    return word;
}

PageData VerdictTablesOf(const Verdicts& verdicts) {
    PageList tables;
    tables.push_back(
        TableOf({"Disks checked", "Whether each disk can be backed up", "Disk"}, AddressOf(verdicts.disks)));
    tables.push_back(TableOf({"Volumes checked", "Whether each volume can be backed up", "Volume"},
                             AddressOf(verdicts.volumes)));
    if (!verdicts.selected.empty()) {
        tables.push_back(
            TableOf({"Selected volumes", "Whether each selected volume can be backed up", "Volume"},
                    &verdicts.selected));
    }
    return tables;
}

}  // namespace documents
