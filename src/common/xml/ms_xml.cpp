#include "common/xml/ms_xml.h"

#include <objbase.h>

namespace {

constexpr CLSID kDomDocument30 = {
    0xF5078F32, 0xC551, 0x11D3, {0x89, 0xB9, 0x00, 0x00, 0xF8, 0x1F, 0xE2, 0x21}};

using SupportErrorInfoPtr = ComPointer<ISupportErrorInfo, &IID_ISupportErrorInfo>;

// Throws for a failed call, with the error information that the interface offers for itself.
void Require(HRESULT result, IUnknown* object, REFIID iid) {
    if (SUCCEEDED(result)) {
        return;
    }
    SupportErrorInfoPtr support;
    IErrorInfo* information = nullptr;  // handed over to the error object, which releases it
    if (SUCCEEDED(object->QueryInterface(IID_ISupportErrorInfo, reinterpret_cast<void**>(&support))) &&
        support->InterfaceSupportsErrorInfo(iid) == S_OK) {
        GetErrorInfo(0, &information);
    }
    throw _com_error(result, information);
}

_bstr_t Bstr(const std::wstring& text) {
    BSTR copy = SysAllocString(text.c_str());
    if (copy == nullptr) {
        throw _com_error(E_OUTOFMEMORY);
    }
    return {copy, false};
}

_bstr_t WideOf(const char* text) {
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
    Require(Node().get_ownerDocument(&document), node_, IID_IXMLDOMNode);
    if (document == nullptr) {
        return {};
    }
    XmlNodePtr created;
    Require(document->createNode(_variant_t(static_cast<long>(NODE_ELEMENT)), WideOf(name), _bstr_t(L""),
                                 &created),
            document, IID_IXMLDOMDocument);
    XmlNodeListPtr children;
    Require(Node().get_childNodes(&children), node_, IID_IXMLDOMNode);
    XmlNodePtr successor;  // there is no item at -1: the element always goes to the end
    Require(children->get_item(-1, &successor), children, IID_IXMLDOMNodeList);
    XmlNodePtr added;
    if (successor == nullptr) {
        Require(Node().appendChild(created, &added), node_, IID_IXMLDOMNode);
    } else {
        Require(Node().insertBefore(created, _variant_t(successor.GetInterfacePtr()), &added), node_,
                IID_IXMLDOMNode);
    }
    return CMSXmlNode(added);
}

void CMSXmlNode::SetText(const std::wstring& text) {
    Require(Node().put_text(Bstr(text)), node_, IID_IXMLDOMNode);
}

std::wstring CMSXmlNode::GetXML() const {
    BSTR xml = nullptr;
    Require(Node().get_xml(&xml), node_, IID_IXMLDOMNode);
    const _bstr_t owner(xml, false);
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
    Require(document_->loadXML(WideOf(text), &loaded), document_, IID_IXMLDOMDocument);
    return loaded == VARIANT_TRUE;
}

CMSXmlNode CMSXmlDoc::GetRoot() const {
    if (document_ == nullptr) {
        return {};
    }
    XmlElementPtr element;
    Require(document_->get_documentElement(&element), document_, IID_IXMLDOMDocument);
    if (element == nullptr) {
        return {};
    }
    XmlNodePtr root;
    element->QueryInterface(IID_IXMLDOMNode, reinterpret_cast<void**>(&root));
    return CMSXmlNode(root);
}
