#pragma once

#include "common/platform/com_pointer.h"
#include "common/platform/unique_bstr.h"

#include <msxml.h>

#include <string_view>

// The platform's DOM, as far as documents are built with it. To be used on one thread, with COM initialised
// there. A text ends at its first zero character: XML cannot hold one. A failed interface call throws
// _com_error; the empty node throws E_POINTER.

using XmlDocumentPtr = ComPointer<IXMLDOMDocument, &IID_IXMLDOMDocument>;
using XmlElementPtr = ComPointer<IXMLDOMElement, &IID_IXMLDOMElement>;
using XmlNodePtr = ComPointer<IXMLDOMNode, &IID_IXMLDOMNode>;

// One node of a document; shares its ownership with the document.
class CMSXmlNode {
public:
    CMSXmlNode() = default;  // the empty node
    explicit CMSXmlNode(const XmlNodePtr& node);
    virtual ~CMSXmlNode() = default;
    CMSXmlNode(const CMSXmlNode&) = default;
    CMSXmlNode& operator=(const CMSXmlNode&) = default;

    // Whether there is a node at all.
    explicit operator bool() const { return node_ != nullptr; }

    // Appends a new element of that name (ASCII) as the last child and returns it; the empty node where there
    // is no owner document.
    CMSXmlNode AddChild(const char* name);
    // Appends a new element that holds that text and nothing else. Throws E_POINTER where there is no owner
    // document.
    void AddTextChild(const char* name, std::wstring_view text);
    void SetText(std::wstring_view text);
    // This node and everything below it as text, without an XML declaration.
    UniqueBstr GetXML() const;

private:
    IXMLDOMNode& Node() const;
    XmlNodePtr Append(const char* name);

    XmlNodePtr node_;
    XmlDocumentPtr document_;  // that owns the node, once it was asked for
};

// A document. A failed creation leaves it without one, which LoadXML tells.
class CMSXmlDoc {
public:
    CMSXmlDoc();
    virtual ~CMSXmlDoc() = default;
    CMSXmlDoc(const CMSXmlDoc&) = delete;
    CMSXmlDoc& operator=(const CMSXmlDoc&) = delete;

    // Replaces the content by `text`, XML in the system's ANSI code page, whatever encoding it declares.
    // False when it cannot be loaded.
    bool LoadXML(const char* text);
    // The document element; the empty node when there is none.
    CMSXmlNode GetRoot() const;

private:
    XmlDocumentPtr document_;
};
