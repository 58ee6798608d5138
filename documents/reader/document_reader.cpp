#include "documents/reader/document_reader.h"

#include "documents/reader/facts.h"
#include "documents/reader/flat_layout.h"
#include "documents/reader/model_layout.h"
#include "documents/text/read_error.h"

#include <algorithm>

namespace documents {

namespace {

constexpr std::size_t kRootDepth = 1;
constexpr std::size_t kRecordDepth = 2;
constexpr std::size_t kSectionDepth = 3;

constexpr std::string_view kRoot = "root";
constexpr std::string_view kRecord = "BMREnvInfo";
constexpr std::string_view kStartupOptions = "SystemStartupOptions";

constexpr std::string_view kFactSections[] = {"Processor", "ComputerSystem", "BootConfiguration", "OS"};

// Whether the name is the rule's, or begins with it and ends in a number.
bool Fits(const ElementRule& rule, std::string_view name) {
    if (!rule.numbered) {
        return name == rule.name;
    }
    return name.size() > rule.name.size() && name.starts_with(rule.name) &&
           std::all_of(name.begin() + static_cast<std::ptrdiff_t>(rule.name.size()), name.end(),
                       [](char c) { return c >= '0' && c <= '9'; });
}

}  // namespace

void DocumentReader::Open(std::string_view name) {
    const bool skipped = depth_ > 0 && Top().skipped;
    // A row's path begins behind BMREnvInfo.
    const std::string_view parent =
        depth_ > kRecordDepth ? std::string_view(Top().row.path()) : std::string_view();
    Level& level = levels_.at(depth_);
    level.row.Clear(parent, depth_ < kRecordDepth ? std::string_view() : name);
    level.rule = nullptr;
    level.child = nullptr;
    level.children = 0;
    level.skipped = skipped;
    ++depth_;
    if (skipped) {
        return;
    }
    if (depth_ <= kRecordDepth) {
        const std::string_view expected = depth_ == kRootDepth ? kRoot : kRecord;
        if (name != expected || (depth_ == kRecordDepth && layout_)) {
            throw ReadError(std::string(name),
                            "not an environment document: " + std::string(expected) + " was expected here");
        }
    } else if (depth_ == kSectionDepth) {
        OpenSection(name);
    } else {
        OpenChild(name);
    }
}

void DocumentReader::OpenSection(std::string_view name) {
    if (!layout_) {
        ChooseLayout();
    }
    Level& level = Top();
    level.rule = RuleAt(name, kSectionDepth);
    if (level.rule == nullptr && !IsFactSection(name)) {
        Skip(name);
        return;
    }
    if (!sections_.emplace(name).second) {
        throw ReadError(std::string(name), "the section is there twice");
    }
    level.child = RuleAt(name, kSectionDepth + 1);
}

void DocumentReader::OpenChild(std::string_view name) {
    Level& parent = levels_.at(depth_ - 2);
    if (depth_ == kSectionDepth + 1 && name == kStartupOptions && parent.row.path() == "ComputerSystem") {
        return;
    }
    if (parent.child == nullptr || !Fits(*parent.child, name)) {
        Skip(name);
        return;
    }
    Level& level = Top();
    level.rule = parent.child;
    level.child = RuleAt(level.rule->section, depth_ + 1);
    if (level.rule->numbered) {
        const std::string number = std::to_string(level.rule->first + parent.children);
        if (name.substr(level.rule->name.size()) != number) {
            NoteFault(machine_, FormFault::Kind::kWrongOrder, parent.row, name,
                      "the element with the number " + number + " was expected here");
        }
    }
    ++parent.children;
}

void DocumentReader::Skip(std::string_view name) {
    Top().skipped = true;
    NoteFault(machine_, FormFault::Kind::kUnknown, levels_.at(depth_ - 2).row, name,
              "the format has no such element here");
}

// The version comes before all sections.
void DocumentReader::ChooseLayout() {
    Row& record = levels_.at(kRecordDepth - 1).row;
    const std::uint64_t version = record.Unsigned("Version");
    if (version == 7) {
        machine_.format = Format::kThree;
        layout_ = std::make_unique<ModelLayout>(machine_);
        return;
    }
    if (version != 3 && version != 5) {
        record.Refuse("Version", std::to_string(version) + " is none of the versions 3, 5 and 7");
    }
    machine_.format = version == 3 ? Format::kOne : Format::kTwo;
    layout_ = std::make_unique<FlatLayout>(machine_);
}

const ElementRule* DocumentReader::RuleAt(std::string_view section, std::size_t depth) const {
    const std::span<const ElementRule> rules = layout_->Rules();
    const auto found = std::find_if(rules.begin(), rules.end(), [&](const ElementRule& rule) {
        return rule.section == section && rule.depth == depth;
    });
    return found == rules.end() ? nullptr : &*found;
}

void DocumentReader::Value(std::string_view name, std::string_view text) {
    if (depth_ == 0) {
        throw ReadError(std::string(name), "not an environment document: it is empty");
    }
    Level& level = Top();
    if (level.skipped) {
        return;
    }
    // An empty element in the place of one with child elements.
    if (level.child != nullptr && Fits(*level.child, name)) {
        Open(name);
        Close();
        return;
    }
    level.row.Add(name, text);
}

void DocumentReader::Close() {
    Level& level = Top();
    if (!level.skipped && depth_ >= kSectionDepth) {
        CheckCount(level);
        if (level.rule != nullptr) {
            (layout_.get()->*level.rule->take)(level.row);
        }
        if (depth_ == kSectionDepth) {
            TakeFacts(machine_, level.row.path(), level.row);
        } else if (level.rule == nullptr) {
            TakeStartupOptions(level.row);
        }
        NoteUnread(level.row);
    } else if (depth_ == kRecordDepth && layout_) {
        machine_.library_version = level.row.Text("DllVersion");
        if (level.row.Has("BootIniContents")) {
            level.row.Text("BootIniContents");
        }
        NoteUnread(level.row);
    }
    --depth_;
}

void DocumentReader::TakeStartupOptions(Row& row) {
    machine_.startup_options = NumberedTexts(machine_, row, "size", "child", 0);
}

void DocumentReader::CheckCount(Level& level) {
    if (level.child == nullptr || level.child->count.empty()) {
        return;
    }
    // Some elements of format 3 have it only with what it counts.
    const std::string_view count = level.child->count;
    if (level.children > 0 || level.row.Has(count) || depth_ == kSectionDepth) {
        NoteWrongCount(machine_, level.row, count, level.row.Unsigned(count), level.children);
    }
}

void DocumentReader::NoteUnread(const Row& row) {
    for (std::size_t index = 0; index < row.size() && machine_.form_faults.size() < kMostFaults; ++index) {
        if (row.WasRead(index)) {
            continue;
        }
        bool repeated = false;
        for (std::size_t other = 0; other < row.size() && !repeated; ++other) {
            repeated = row.WasRead(other) && row.NameAt(other) == row.NameAt(index);
        }
        NoteFault(machine_, repeated ? FormFault::Kind::kRepeated : FormFault::Kind::kUnknown, row,
                  row.NameAt(index),
                  repeated ? "the element is there more than once" : "the format has no such element here");
    }
}

Machine DocumentReader::Finish() {
    if (!layout_) {
        throw ReadError(std::string(kRecord), "not an environment document: it has no sections");
    }
    const auto require = [&](std::string_view section) {
        if (!sections_.contains(section)) {
            throw ReadError(std::string(section), "the section is missing");
        }
    };
    for (const std::string_view section : kFactSections) {
        require(section);
    }
    for (const ElementRule& rule : layout_->Rules()) {
        if (rule.depth == kSectionDepth) {
            require(rule.name);
        }
    }
    layout_->Finish();
    return std::move(machine_);
}

}  // namespace documents
