#include "common/xml/ms_xml.h"

#include "common/platform/unique_bstr.h"

#include <objbase.h>

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

UniqueBstr Bstr(const std::wstring& text) {
    UniqueBstr copy(SysAllocString(text.c_str()));
    if (copy == nullptr) {
        throw _com_error(E_OUTOFMEMORY);
    }
    return copy;
}

UniqueBstr WideOf(const char* text) {
    const int length = MultiByteToWideChar(CP_ACP, 0, text, -1, nullptr, 0);
    std::wstring wide(static_cast<std::size_t>(length > 0 ? length : 1), L'\0');
    MultiByteToWideChar(CP_ACP, 0, text, -1, wide.data(), length);
    wide.pop_back();
    return Bstr(wide);
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
    XmlDocumentPtr document;
    Require(Node().get_ownerDocument(&document));
    if (document == nullptr) {
        return {};
    }
    XmlNodePtr created;
    Require(document->createNode(_variant_t(static_cast<long>(NODE_ELEMENT)), WideOf(name).get(),
                                 Bstr(L"").get(), &created));
    XmlNodeListPtr children;
    Require(Node().get_childNodes(&children));
    XmlNodePtr successor;  // there is no item at -1: the element always goes to the end
    Require(children->get_item(-1, &successor));
    XmlNodePtr added;
    if (successor == nullptr) {
        Require(Node().appendChild(created, &added));
    } else {
        Require(Node().insertBefore(created, _variant_t(successor.GetInterfacePtr()), &added));
    }
    return CMSXmlNode(added);
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
