#include "documents/report/page_template.h"

#include "documents/text/utf8.h"

#include <algorithm>
#include <stdexcept>

namespace documents {

namespace {

// Most texts of a page are plain.
bool IsPlain(const std::string& text) {
    return std::all_of(text.begin(), text.end(), [](char c) {
        return c >= ' ' && c <= '~' && c != '&' && c != '<' && c != '>' && c != '"' && c != '\'';
    });
}

std::string EscapedForPage(const std::string& text) {
    return IsPlain(text) ? text : kainjow::mustache::html_escape(Escaped(text));
}

}  // namespace

PageTemplate::PageTemplate(const char* text) : template_(std::string(text)) {
    if (!template_.is_valid()) {
        throw std::logic_error("template of the report: " + template_.error_message());
    }
    template_.set_custom_escape(EscapedForPage);
}

void PageTemplate::AppendTo(std::string& page, const PageData& data) {
    template_.render(data, [&](const std::string& piece) { page += piece; });
}

}  // namespace documents
