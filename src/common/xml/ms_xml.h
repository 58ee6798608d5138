#pragma once

#include "common/platform/com_pointer.h"
#include "common/platform/unique_bstr.h"

#include <msxml.h>

#include <string_view>

// A wrapper for the platform's DOM, with the functions needed to build documents. Use it on one thread only,
// with COM initialised on that thread. A text ends at its first null character; every other character that
// XML cannot contain becomes U+FFFD. A failed interface call throws _com_error; a call on an empty node
// throws E_POINTER as _com_error.

using XmlDocumentPtr = ComPointer<IXMLDOMDocument, &IID_IXMLDOMDocument>;
using XmlElementPtr = ComPointer<IXMLDOMElement, &IID_IXMLDOMElement>;
using XmlNodePtr = ComPointer<IXMLDOMNode, &IID_IXMLDOMNode>;

// One node of a document. Shares ownership of the node with the document.
class CMSXmlNode {
public:
    CMSXmlNode() = default;  // an empty node
    explicit CMSXmlNode(const XmlNodePtr& node);
    virtual ~CMSXmlNode() = default;
    CMSXmlNode(const CMSXmlNode&) = default;
    CMSXmlNode& operator=(const CMSXmlNode&) = default;

    // Whether the node is not empty.
    explicit operator bool() const { return node_ != nullptr; }

    // Appends a new element with that name (ASCII) as the last child and returns it. Returns an empty node if
    // there is no owner document.
    CMSXmlNode AddChild(const char* name);
    // Appends a new element that contains only that text. Throws E_POINTER if there is no owner document.
    void AddTextChild(const char* name, std::wstring_view text);
    void SetText(std::wstring_view text);
    // This node and everything below it as XML text, without an XML declaration.
    UniqueBstr GetXML() const;

private:
    IXMLDOMNode& Node() const;
    XmlNodePtr Append(const char* name);

    XmlNodePtr node_;
    XmlDocumentPtr document_;  // the owner document; null until first needed
};

// An XML document. If it could not be created, LoadXML returns false.
class CMSXmlDoc {
public:
    CMSXmlDoc();
    virtual ~CMSXmlDoc() = default;
    CMSXmlDoc(const CMSXmlDoc&) = delete;
    CMSXmlDoc& operator=(const CMSXmlDoc&) = delete;

    // Replaces the content with `text`, XML in the system's ANSI code page, regardless of the encoding it
    // declares. Returns false if the text cannot be loaded.
    bool LoadXML(const char* text);
    // The document element, or an empty node if there is none.
    CMSXmlNode GetRoot() const;

private:
    XmlDocumentPtr document_;
};
