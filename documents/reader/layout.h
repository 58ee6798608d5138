#pragma once

#include "documents/model/machine.h"
#include "documents/reader/row.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace documents {

// What a layout expects in the documents of a format: elements with child elements, by their section (the
// child of BMREnvInfo) and depth (1: root).
class Layout;

struct ElementRule {
    std::string_view section;
    std::size_t depth;
    std::string_view name;  // or the part of the name before the number
    bool numbered;          // "x0"; `first` is the first number
    std::size_t first;
    std::string_view count;      // the value in the parent that says how many there are; empty: none does
    void (Layout::*take)(Row&);  // called at the element's end, after the elements in it
};

// Fills a machine from the elements of a document.
class Layout {
public:
    explicit Layout(Machine& machine) : machine_(machine) {}
    virtual ~Layout() = default;
    Layout(const Layout&) = delete;
    Layout& operator=(const Layout&) = delete;

    virtual std::span<const ElementRule> Rules() const = 0;
    // After the last element. Throws ReadError.
    virtual void Finish() = 0;

protected:
    Machine& machine_;
};

// The numbered values of a row, "MountPoint1" ... in any order, and the value that says how many there are. A
// wrong count becomes a fault of the form.
std::vector<std::string> NumberedTexts(Machine& machine, Row& row, std::string_view count,
                                       std::string_view name, std::size_t first);

// A document has no more faults of its form than these; further ones are not noted.
inline constexpr std::size_t kMostFaults = 100;

// Notes a fault of an element in `parent`.
void NoteFault(Machine& machine, FormFault::Kind kind, const Row& parent, std::string_view name,
               std::string text);

// Compares a count with the elements that are there.
void NoteWrongCount(Machine& machine, const Row& row, std::string_view count, std::uint64_t said,
                    std::uint64_t there);

}  // namespace documents
