#pragma once

#include "machine/recorder/redact/replacements.h"

#include <cstdint>
#include <map>
#include <string>

namespace recorder {

// Replaces in the library's outputs, which show values as words of their own.
class OutputReplacement {
public:
    // Replacements::Settle must have been called.
    explicit OutputReplacement(const Replacements& replacements);

    // A line in UTF-8. Replaces in the value of an element or of "Name: value", else in the whole line.
    std::string InLine(const std::string& line) const;

    std::string InText(const std::string& utf8) const;

private:
    void AddExactly(const std::wstring& from, const std::wstring& to);
    void AddNumber(std::uint32_t from, std::uint32_t to);

    // The longest text that begins at `start`: its size, 0 if there is none, and what replaces it.
    std::size_t FindLongest(const std::wstring& text, std::size_t start, std::wstring& made) const;

    std::map<std::wstring, std::wstring> texts_;  // folded
    std::map<std::wstring, std::wstring> exact_;
};

}  // namespace recorder
