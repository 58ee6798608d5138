#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace documents {

// The values of one element, by name. The functions look for a name behind the one that was found last first,
// so that reading the values in their order is fast. They throw ReadError.
class Row {
public:
    // Forgets the values. The path becomes "PARENT/NAME".
    void Clear(std::string_view parent, std::string_view name);
    void Add(std::string_view name, std::string_view text);

    // "DiskDrives/x0"
    const std::string& path() const { return path_; }
    std::size_t size() const { return fields_.size(); }
    std::string_view NameAt(std::size_t index) const;
    std::string_view TextAt(std::size_t index) const;
    // Whether one of the functions below has found the value.
    bool WasRead(std::size_t index) const { return fields_[index].read; }

    bool Has(std::string_view name) const;
    // Marks values that nobody needs as read.
    void ReadTheRest();
    // The text of a value that is read later; empty if it is missing.
    std::string_view Peek(std::string_view name) const;
    // The text as it is.
    std::string_view Text(std::string_view name);
    std::uint64_t Unsigned(std::string_view name, std::uint64_t largest = UINT64_MAX);
    std::uint32_t Unsigned32(std::string_view name);
    std::int64_t Signed(std::string_view name);
    // Large sizes are written as negative numbers.
    std::uint64_t SizeWrittenSigned(std::string_view name);
    bool Truth(std::string_view name, std::string_view yes, std::string_view no);
    // The texts of NAME1, NAME2 ... up to the first number that is missing; `first` is the first number.
    std::vector<std::string> Numbered(std::string_view name, std::size_t first);
    // Upper case with braces; none for the zero GUID.
    std::optional<std::string> Guid(std::string_view name);

    [[noreturn]] void Refuse(std::string_view name, const std::string& reason) const;

private:
    struct Field {
        std::size_t name;
        std::size_t text;
        std::size_t end;
        bool read;
    };

    const Field* Find(std::string_view name);
    std::string_view TextOf(const Field& field) const;
    template <class Number>
    Number NumberOf(std::string_view name, Number smallest, Number largest);

    std::string path_;
    std::string texts_;  // names and texts, one behind the other
    std::vector<Field> fields_;
    std::size_t next_ = 0;
};

// The text, or none if it is empty.
std::optional<std::string> NotEmpty(std::string_view text);

// The number, or none if it is 0.
template <class Number>
std::optional<Number> NotZero(Number number) {
    return number == 0 ? std::nullopt : std::optional<Number>(number);
}

}  // namespace documents
