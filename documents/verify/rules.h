#pragma once

#include "documents/model/lookup.h"
#include "documents/verify/verify.h"

#include <span>
#include <string>
#include <string_view>

// The rules of `verify`, one for each code. A rule asks one question of a document and reports what it finds.
namespace documents {

struct Subject {
    explicit Subject(const Machine& m) : machine(m), extents(m) {}

    const Machine& machine;
    ExtentsByDisk extents;
};

class Report {
public:
    Report(std::string_view code, std::vector<Finding>& findings) : code_(code), findings_(findings) {}

    void Error(std::string place, std::string text) {
        Add(Severity::kError, std::move(place), std::move(text));
    }
    void Note(std::string place, std::string text) {
        Add(Severity::kNote, std::move(place), std::move(text));
    }
    // What the document leaves out of a disk keeps volumes on it from being restored.
    void ByVolumes(const Subject& subject, const Disk& disk, std::string text);

private:
    void Add(Severity severity, std::string place, std::string text) {
        findings_.push_back({code_, severity, std::move(place), std::move(text)});
    }

    std::string_view code_;
    std::vector<Finding>& findings_;
};

struct Rule {
    FindingCode code;
    void (*check)(const Subject& subject, Report& report);
};

std::span<const Rule> FormRules();
std::span<const Rule> DiskRules();
std::span<const Rule> PartitionRules();
std::span<const Rule> VolumeRules();
std::span<const Rule> RoleRules();

std::string PlaceOf(const Disk& disk);
std::string PlaceOf(const Disk& disk, const Partition& partition);
// By letter, else by GUID path, else by device name.
std::string PlaceOf(const Volume& volume);
// "1048576 to 525336575"
std::string TextOf(const Range& range);
// "1, 3 to 7"; the numbers are sorted
std::string ListOf(const std::vector<std::uint32_t>& numbers);
// "0x7A3C91E8"
std::string SignatureText(std::uint32_t signature);

}  // namespace documents
