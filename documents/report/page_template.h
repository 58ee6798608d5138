#pragma once

#include "documents/report/page_data.h"

#include <string>

namespace documents {

// The contents of the files of the same names in this folder. The page is begin.mustache, the disks,
// middle.mustache, the volumes, end.mustache.
extern const char* const kBeginTemplate;
extern const char* const kMiddleTemplate;
extern const char* const kEndTemplate;
extern const char* const kDiskTemplate;
extern const char* const kPieceTemplate;
extern const char* const kPartTemplate;
extern const char* const kVolumeTemplate;
extern const char* const kPageStyle;

// A template that can be filled in many times. What is filled in is escaped, for HTML and so that it cannot
// change the direction of other texts.
//
// A page is made piece by piece: all data of a large machine in one tree would take most of the time and of
// the memory.
class PageTemplate {
public:
    explicit PageTemplate(const char* text);

    void AppendTo(std::string& page, const PageData& data);

private:
    kainjow::mustache::mustache template_;
};

}  // namespace documents
