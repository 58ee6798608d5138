// Whether the document has the form of its format, and does not contradict itself.

#include "documents/verify/rules.h"

#include <algorithm>
#include <string_view>
#include <unordered_map>

namespace documents {

namespace {

void ReportFaults(const Subject& subject, FormFault::Kind kind, Report& report, Severity severity) {
    for (const FormFault& fault : subject.machine.form_faults) {
        if (fault.kind != kind) {
            continue;
        }
        std::string text = fault.text + ".";
        text[0] = static_cast<char>(text[0] >= 'a' && text[0] <= 'z' ? text[0] - 'a' + 'A' : text[0]);
        if (severity == Severity::kError) {
            report.Error(fault.place, std::move(text));
        } else {
            report.Note(fault.place, std::move(text));
        }
    }
}

void Counts(const Subject& subject, Report& report) {
    ReportFaults(subject, FormFault::Kind::kWrongCount, report, Severity::kError);
}

void Order(const Subject& subject, Report& report) {
    ReportFaults(subject, FormFault::Kind::kWrongOrder, report, Severity::kError);
}

void Repeated(const Subject& subject, Report& report) {
    ReportFaults(subject, FormFault::Kind::kRepeated, report, Severity::kError);
}

void Unknown(const Subject& subject, Report& report) {
    ReportFaults(subject, FormFault::Kind::kUnknown, report, Severity::kNote);
}

// The row of a volume repeats the place of its first extent. The length is the volume's.
void FirstExtents(const Subject& subject, Report& report) {
    for (const Volume& volume : subject.machine.volumes) {
        if (!volume.first_extent || !volume.extents) {
            continue;
        }
        const Extent& said = *volume.first_extent;
        if (volume.extents->empty()) {
            report.Error(PlaceOf(volume), "Its row has a place on disk " + std::to_string(said.disk) +
                                              ", but it has no extent.");
            continue;
        }
        const Extent& first = volume.extents->front();
        if (said.disk != first.disk || said.place.start != first.place.start) {
            report.Error(PlaceOf(volume), "Its row says disk " + std::to_string(said.disk) + ", offset " +
                                              std::to_string(said.place.start) +
                                              "; its first extent says disk " + std::to_string(first.disk) +
                                              ", offset " + std::to_string(first.place.start) + ".");
        }
    }
}

void DriveLetters(const Subject& subject, Report& report) {
    std::unordered_map<std::string_view, const Volume*> by_reference;
    for (const Volume& volume : subject.machine.volumes) {
        if (volume.reference) {
            by_reference.emplace(*volume.reference, &volume);
        }
    }
    for (std::size_t row = 0; row < subject.machine.drive_letters.size(); ++row) {
        const DriveLetter& letter = subject.machine.drive_letters[row];
        const std::string place = "DriveLetterTable/Drive" + std::to_string(row);
        const auto found = by_reference.find(letter.reference);
        if (found == by_reference.end()) {
            report.Error(place, "It names a volume that the document does not have.");
        } else if (found->second->letter.value_or("") != letter.drive) {
            report.Error(place, "Its letter is \"" + letter.drive + "\", that of the volume is \"" +
                                    found->second->letter.value_or("") + "\".");
        }
    }
}

constexpr Rule kRules[] = {
    {{"D001", "a count differs from the elements that are there"}, Counts},
    {{"D002", "numbered elements are not in their order"}, Order},
    {{"D003", "an element is there more than once"}, Repeated},
    {{"D004", "an element that the format does not have"}, Unknown},
    {{"D005", "a volume's row and its first extent contradict each other"}, FirstExtents},
    {{"D006", "the table of drive letters and the volumes contradict each other"}, DriveLetters},
};

}  // namespace

std::span<const Rule> FormRules() {
    return kRules;
}

}  // namespace documents
