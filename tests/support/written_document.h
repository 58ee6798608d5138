#pragma once

#include "common/platform/com_enabler.h"
#include "common/xml/ms_xml.h"
#include "support/text.h"
#include "support/xml_tree.h"

#include <stdexcept>

// Calls `write` with the root of an empty document, and returns the result as a tree.
template <class Write>
XmlTree Written(Write&& write) {
    bmr_common::COMEnabler com;
    if (!com.InitializeCOM(L"Written")) {
        throw std::runtime_error("no COM");
    }
    CMSXmlDoc document;
    if (!document.LoadXML("<root></root>")) {
        throw std::runtime_error("no document");
    }
    CMSXmlNode root = document.GetRoot();
    write(root);
    return XmlTree::Of(support::Utf8(std::wstring(::TextOf(root.GetXML()))));
}
