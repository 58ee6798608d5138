#pragma once

#include "common/xml/ms_xml.h"

#include <string>

// A document before its elements are written, and as text after that. Both throw _com_error.

// Loads the empty document, which has a root element. False where the XML component refuses it.
bool LoadEmptyDocument(CMSXmlDoc& document);

// The root element and everything in it as text in the ANSI code page; empty where it could not be converted.
std::string DocumentText(const CMSXmlNode& root);
