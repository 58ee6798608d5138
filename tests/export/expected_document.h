#pragma once

#include "machine/description/description.h"
#include "support/xml_tree.h"

// The format 3 document expected for the described machine. It is computed only from the description and the
// documented layout, without any code of the library. The description must not contain "errors": all calls
// must succeed where the described objects allow it. A GPT disk's "GUID" has no expected value; remove it
// with WithoutAddresses before comparing.
XmlTree ExpectedDocument(const machine::Description& machine);

// Checks that every disk's "GUID" is a hexadecimal number, and empties it.
XmlTree WithoutAddresses(XmlTree document);
