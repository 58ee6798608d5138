#include "documents/report/report.h"

#include "documents/report/disk_section.h"
#include "documents/report/page_template.h"
#include "documents/report/summary.h"
#include "documents/report/verdict_section.h"
#include "documents/report/volume_section.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <utility>

namespace documents {

namespace {

std::string Counted(std::ptrdiff_t count, const std::string& noun) {
    return std::to_string(count) + ' ' + noun + (count == 1 ? "" : "s");
}

PageData StateOf(const char* look, const char* title, const std::string& text, const char* target = nullptr,
                 const char* link = "") {
    PageData state;
    state["state_look"] = look;
    state["state_title"] = title;
    state["state_text"] = text;
    state["state_target"] = target == nullptr ? PageData(false) : PageData(target);
    state["state_link"] = link;
    return state;
}

PageData StateOf(const std::vector<Finding>& findings) {
    const auto errors = std::count_if(findings.begin(), findings.end(), [](const Finding& finding) {
        return finding.severity == Severity::kError;
    });
    const auto notes = static_cast<std::ptrdiff_t>(findings.size()) - errors;
    if (errors > 0) {
        return StateOf("bad", "Document:",
                       Counted(errors, "error") + (notes > 0 ? " and " + Counted(notes, "note") : "") +
                           "; not everything can be restored from it.",
                       "findings", "See the findings");
    }
    if (notes > 0) {
        return StateOf("note", "Document:", "no errors, " + Counted(notes, "note") + ".", "findings",
                       "See the findings");
    }
    return StateOf("good", "Document:", "no errors.");
}

template <class List>
std::ptrdiff_t Fit(const List& list) {
    return std::count_if(list.begin(), list.end(),
                         [](const auto& item) { return item.verdict.can_backup.value_or(false); });
}

// "3 of 4 volumes can be backed up."
template <class List>
PageData StateOf(const List& list, const char* noun) {
    const std::ptrdiff_t fit = Fit(list);
    const auto all = static_cast<std::ptrdiff_t>(list.size());
    return StateOf(fit == all ? "good" : "note",
                   "Backup check:", std::to_string(fit) + " of " + Counted(all, noun) + " can be backed up.",
                   "check", "See the check");
}

PageData StatesOf(const ReportInput& input) {
    PageList states = {StateOf(input.findings)};
    if (input.verdicts != nullptr && !input.verdicts->selected.empty()) {
        states.push_back(StateOf(input.verdicts->selected, "selected volume"));
    } else if (input.verdicts != nullptr && input.verdicts->volumes) {
        states.push_back(StateOf(*input.verdicts->volumes, "volume"));
    } else if (input.verdicts != nullptr) {
        states.push_back(StateOf("bad", "Backup check:", "the volumes could not be listed."));
    }
    return states;
}

PageData FindingsOf(const std::vector<Finding>& findings) {
    PageList rows;
    for (const Finding& finding : findings) {
        const bool error = finding.severity == Severity::kError;
        PageData row;
        row["finding_code"] = std::string(finding.code);
        row["finding_severity"] = std::string(NameOf(finding.severity));
        row["finding_look"] = error ? "bad" : "note";
        row["finding_place"] = finding.place;
        row["finding_text"] = finding.text;
        rows.push_back(std::move(row));
    }
    return rows;
}

// All but the disks and the volumes.
PageData PageOf(const ReportInput& input, const MachineParts& parts) {
    PageData page;
    page["style"] = kPageStyle;
    page["computer"] = ComputerOf(input.machine);
    page["page_title"] = ComputerOf(input.machine) + ": disks and volumes";
    page["windows"] = TextOrNone(WindowsOf(input.machine));
    page["states"] = StatesOf(input);
    page["summary"] = SummaryOf(input.machine, parts, input.document);
    page["has_disks"] = PageData(!input.machine.disks.empty());
    page["has_volumes"] = PageData(!input.machine.volumes.empty());
    page["has_verdicts"] = PageData(input.verdicts != nullptr);
    if (input.verdicts != nullptr) {
        page["verdict_tables"] = VerdictTablesOf(*input.verdicts);
    }
    page["has_findings"] = PageData(!input.findings.empty());
    page["findings"] = FindingsOf(input.findings);
    page["fact_sections"] = FactSectionsOf(input.machine);
    page["document_name"] = input.document;
    return page;
}

}  // namespace

std::string ReportPage(const ReportInput& input) {
    const MachineParts parts(input.machine);
    const PageData data = PageOf(input, parts);
    std::string page;
    PageTemplate(kBeginTemplate).AppendTo(page, data);
    AppendDisks(page, input.machine, parts);
    PageTemplate(kMiddleTemplate).AppendTo(page, data);
    AppendVolumes(page, input.machine, parts, input.verdicts);
    PageTemplate(kEndTemplate).AppendTo(page, data);
    return page;
}

}  // namespace documents
