#pragma once

#include <kainjow/mustache.hpp>

#include <optional>
#include <string>
#include <vector>

// The page's template shows what these hold. An absent value is false, so that its section of the template is
// left out, and no value of the same name in an outer section takes its place. Data for many rows is
// filled again for each of them, which is faster than to make it anew.
namespace documents {

using PageData = kainjow::mustache::data;
using PageList = kainjow::mustache::list;

inline PageData TextOrNone(const std::string& text) {
    return text.empty() ? PageData(false) : PageData(text);
}

inline PageData TextOrNone(const std::optional<std::string>& text) {
    return TextOrNone(text.value_or(""));
}

inline PageData TextsOf(const std::vector<std::string>& texts) {
    return PageList(texts.begin(), texts.end());
}

}  // namespace documents
