#pragma once

#include "machine/description/description.h"
#include "support/xml_tree.h"

// The format 3 document expected for the described machine. It is computed only from the description and the
// documented layout, without any code of the library. Of the described "errors", those of volumes in the
// calls that open them or ask them for information, space, length or extents are followed, and those of
// opening a disk and of asking it for its geometry; others must not be described. A GPT disk's "GUID" has no
// expected value; remove it with WithoutAddresses before comparing.
XmlTree ExpectedDocument(const machine::Description& machine);

// Checks that every disk's "GUID" is a hexadecimal number, and empties it.
XmlTree WithoutAddresses(XmlTree document);
