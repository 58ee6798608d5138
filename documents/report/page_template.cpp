#include "documents/report/page_template.h"

#include "documents/text/utf8.h"

#include <stdexcept>

namespace documents {

PageTemplate::PageTemplate(const char* text) : template_(std::string(text)) {
    if (!template_.is_valid()) {
        throw std::logic_error("template of the report: " + template_.error_message());
    }
    template_.set_custom_escape(
        [](const std::string& value) { return kainjow::mustache::html_escape(Escaped(value)); });
}

void PageTemplate::AppendTo(std::string& page, const PageData& data) {
    template_.render(data, [&](const std::string& piece) { page += piece; });
}

}  // namespace documents
