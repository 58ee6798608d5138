#include "common/xml/ms_xml.h"

#include "common/platform/system_query.h"
#include "common/xml/bstr_argument.h"

#include <objbase.h>

#include <cstddef>
#include <limits>

namespace {

constexpr CLSID kDomDocument30 = {
    0xF5078F32, 0xC551, 0x11D3, {0x89, 0xB9, 0x00, 0x00, 0xF8, 0x1F, 0xE2, 0x21}};

// Throws if the call failed. The exception contains only the code: an error information object belongs to the
// component and could outlive COM while the exception propagates to the export.
void Require(HRESULT result) {
    if (FAILED(result)) {
        throw _com_error(result);
    }
}

IXMLDOMNode& Existing(const XmlNodePtr& node) {
    if (node == nullptr) {
        throw _com_error(E_POINTER);
    }
    return *node;
}

void PutText(IXMLDOMNode& node, std::wstring_view text) {
    Require(node.put_text(BstrArgument(text).get()));
}

int ConvertAnsi(std::string_view text, wchar_t* wide, int room) {
    if (text.empty()) {
        return 0;
    }
    const int length = MultiByteToWideChar(CP_ACP, 0, text.data(), static_cast<int>(text.size()), wide, room);
    if (length <= 0) {
        throw _com_error(HRESULT_FROM_WIN32(win::LastFailure()));
    }
    return length;
}

// Converts a text in the system's ANSI code page to a BSTR.
UniqueBstr BstrOfAnsi(std::string_view text) {
    if (text.size() > static_cast<std::size_t>(std::numeric_limits<int>::max())) {
        throw _com_error(E_INVALIDARG);
    }
    const int length = ConvertAnsi(text, nullptr, 0);
    UniqueBstr bstr(SysAllocStringLen(nullptr, static_cast<UINT>(length)));
    if (!bstr) {
        throw _com_error(E_OUTOFMEMORY);
    }
    ConvertAnsi(text, bstr.get(), length);
    return bstr;
}

}  // namespace

CMSXmlNode::CMSXmlNode(const XmlNodePtr& node) : node_(node) {}

IXMLDOMNode& CMSXmlNode::Node() const {
    return Existing(node_);
}

// Returns the new element, or null if the node has no owner document.
XmlNodePtr CMSXmlNode::Append(const char* name) {
    if (document_ == nullptr) {
        Require(Node().get_ownerDocument(&document_));
    }
    if (document_ == nullptr) {
        return {};
    }
    XmlNodePtr created;
    Require(document_->createNode(_variant_t(static_cast<long>(NODE_ELEMENT)), BstrArgument(name).get(),
                                  nullptr, &created));
    XmlNodePtr appended;
    Require(Node().appendChild(created, &appended));
    return appended;
}

CMSXmlNode CMSXmlNode::AddChild(const char* name) {
    CMSXmlNode child;
    child.node_ = Append(name);
    child.document_ = document_;
    return child;
}

void CMSXmlNode::AddTextChild(const char* name, std::wstring_view text) {
    const XmlNodePtr child = Append(name);
    PutText(Existing(child), text);
}

void CMSXmlNode::SetText(std::wstring_view text) {
    PutText(Node(), text);
}

UniqueBstr CMSXmlNode::GetXML() const {
    BSTR xml = nullptr;
    Require(Node().get_xml(&xml));
    return UniqueBstr(xml);
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
    Require(document_->loadXML(BstrOfAnsi(text).get(), &loaded));
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
