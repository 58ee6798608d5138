#pragma once

// The contents of page.mustache and page.css.
namespace documents {

extern const char* const kPageTemplate;
extern const char* const kPageStyle;

}  // namespace documents
