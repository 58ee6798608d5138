#include "common/xml/ms_xml.h"

#include "common/platform/unique_bstr.h"

#include <objbase.h>

#include <algorithm>
#include <cstring>

namespace {

constexpr CLSID kDomDocument30 = {
    0xF5078F32, 0xC551, 0x11D3, {0x89, 0xB9, 0x00, 0x00, 0xF8, 0x1F, 0xE2, 0x21}};

// Throws for a failed call. The error carries its code alone: error information is an object of the
// component, which on the way to the export could outlive COM.
void Require(HRESULT result) {
    if (FAILED(result)) {
        throw _com_error(result);
    }
}

UniqueBstr Owned(BSTR text) {
    if (text == nullptr) {
        throw _com_error(E_OUTOFMEMORY);
    }
    return UniqueBstr(text);
}

UniqueBstr Bstr(const std::wstring& text) {
    return Owned(SysAllocString(text.c_str()));
}

// ASCII, as all names of elements are.
UniqueBstr WideOf(const char* text) {
    const std::size_t length = std::strlen(text);
    UniqueBstr wide = Owned(SysAllocStringLen(nullptr, static_cast<UINT>(length)));
    std::copy(text, text + length, wide.get());
    return wide;
}

}  // namespace

CMSXmlNode::CMSXmlNode(const XmlNodePtr& node) : node_(node) {}

IXMLDOMNode& CMSXmlNode::Node() const {
    if (node_ == nullptr) {
        throw _com_error(E_POINTER);
    }
    return *node_;
}

CMSXmlNode CMSXmlNode::AddChild(const char* name) {
    if (document_ == nullptr) {
        Require(Node().get_ownerDocument(&document_));
    }
    if (document_ == nullptr) {
        return {};
    }
    XmlNodePtr created;
    Require(document_->createNode(_variant_t(static_cast<long>(NODE_ELEMENT)), WideOf(name).get(), nullptr,
                                  &created));
    CMSXmlNode child;
    Require(Node().appendChild(created, &child.node_));
    child.document_ = document_;
    return child;
}

void CMSXmlNode::SetText(const std::wstring& text) {
    Require(Node().put_text(Bstr(text).get()));
}

std::wstring CMSXmlNode::GetXML() const {
    BSTR xml = nullptr;
    Require(Node().get_xml(&xml));
    const UniqueBstr owner(xml);
    return xml == nullptr ? std::wstring() : std::wstring(xml, SysStringLen(xml));
}

CMSXmlDoc::CMSXmlDoc() {
    UnknownPtr unknown;
    if (SUCCEEDED(CoCreateInstance(kDomDocument30, nullptr, CLSCTX_SERVER, IID_IUnknown,
                                   reinterpret_cast<void**>(&unknown))) &&
        unknown != nullptr && SUCCEEDED(OleRun(unknown))) {
        unknown->QueryInterface(IID_IXMLDOMDocument, reinterpret_cast<void**>(&document_));
    }
}

bool CMSXmlDoc::LoadXML(const char* text) {
    if (document_ == nullptr) {
        return false;
    }
    VARIANT_BOOL loaded = VARIANT_FALSE;
    Require(document_->loadXML(WideOf(text).get(), &loaded));
    return loaded == VARIANT_TRUE;
}

CMSXmlNode CMSXmlDoc::GetRoot() const {
    if (document_ == nullptr) {
        return {};
    }
    XmlElementPtr element;
    Require(document_->get_documentElement(&element));
    if (element == nullptr) {
        return {};
    }
    XmlNodePtr root;
    element->QueryInterface(IID_IXMLDOMNode, reinterpret_cast<void**>(&root));
    return CMSXmlNode(root);
}
