#pragma once

#include "common/text/decimal_text.h"
#include "common/xml/ms_xml.h"

#include <concepts>

// Appends a child element that contains a number in decimal.
template <std::integral Number>
requires(!std::same_as<Number, bool>) void AddNumberElement(CMSXmlNode& parent, const char* name,
                                                            Number value) {
    parent.AddTextChild(name, DecimalDigits(value).view());
}

// A boolean as the disk model writes it: compatibility C89
inline const wchar_t* TrueOrFalse(bool value) {
    return value ? L"True" : L"False";
}
