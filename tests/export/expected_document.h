#pragma once

#include "machine/description.h"
#include "support/xml_tree.h"

// The document of format 3 that a capture of the described machine must give, made from the description
// alone and by the layout's tables alone: no line of the library has a part in it. The machine's calls must
// all succeed where the described objects allow it (no "errors"). A GPT disk's "GUID" has no expected value;
// WithoutAddresses takes it out of a document before the two are compared.
XmlTree ExpectedDocument(const machine::Description& machine);

// Checks that every "GUID" of a disk is a hexadecimal number and empties it.
XmlTree WithoutAddresses(XmlTree document);
