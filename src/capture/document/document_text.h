#pragma once

#include "common/xml/ms_xml.h"

#include <string>

// Creates the empty document and converts the finished one to text. Both functions throw _com_error.

// Loads a document that contains only a root element. Returns false if the XML component cannot load it.
bool LoadEmptyDocument(CMSXmlDoc& document);

// Returns the root element with all its content as text in the ANSI code page; empty if the conversion fails.
std::string DocumentText(const CMSXmlNode& root);
