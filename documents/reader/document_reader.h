#pragma once

#include "documents/reader/layout.h"
#include "documents/xml/events.h"

#include <array>
#include <memory>
#include <set>
#include <string>

namespace documents {

// Turns the elements of a document into a machine: finds out the format, gives every element with child
// elements to its layout, and notes what is wrong with the form.
class DocumentReader final : public XmlEvents {
public:
    void Open(std::string_view name) override;
    void Close() override;
    void Value(std::string_view name, std::string_view text) override;

    // Throws ReadError if something is missing.
    Machine Finish();

private:
    // An element that is open.
    struct Level {
        Row row;
        const ElementRule* rule = nullptr;   // none: facts, startup options, root and BMREnvInfo
        const ElementRule* child = nullptr;  // the child elements that have children
        std::size_t children = 0;
        bool skipped = false;
    };

    Level& Top() { return levels_.at(depth_ - 1); }
    void OpenSection(std::string_view name);
    void OpenChild(std::string_view name);
    void Skip(std::string_view name);
    void ChooseLayout();
    const ElementRule* RuleAt(std::string_view section, std::size_t depth) const;
    void TakeStartupOptions(Row& row);
    void CheckCount(Level& level);
    void NoteUnread(const Row& row);

    Machine machine_;
    std::unique_ptr<Layout> layout_;
    std::array<Level, 64> levels_;  // the scanner refuses more
    std::size_t depth_ = 0;
    std::set<std::string, std::less<>> sections_;
};

}  // namespace documents
