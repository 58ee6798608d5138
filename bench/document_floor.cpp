#include "bench/document_floor.h"

#include "common/platform/com_pointer.h"
#include "common/platform/unique_bstr.h"

#include <algorithm>
#include <stdexcept>
#include <string>

namespace bench {

namespace {

using Document = ComPointer<IXMLDOMDocument, &IID_IXMLDOMDocument>;
using Element = ComPointer<IXMLDOMElement, &IID_IXMLDOMElement>;
using NodePtr = ComPointer<IXMLDOMNode, &IID_IXMLDOMNode>;

constexpr CLSID kDomDocument30 = {
    0xF5078F32, 0xC551, 0x11D3, {0x89, 0xB9, 0x00, 0x00, 0xF8, 0x1F, 0xE2, 0x21}};

std::wstring Wide(const std::string& text) {
    std::wstring wide(text.size(), L'\0');
    std::transform(text.begin(), text.end(), wide.begin(),
                   [](char letter) { return static_cast<wchar_t>(static_cast<unsigned char>(letter)); });
    return wide;
}

class SystemText {
public:
    explicit SystemText(const std::wstring& text)
        : text_(SysAllocStringLen(text.data(), static_cast<UINT>(text.size()))) {}
    BSTR get() const { return text_.get(); }

private:
    UniqueBstr text_;
};

void Require(HRESULT result) {
    if (FAILED(result)) {
        throw std::runtime_error("the XML component failed");
    }
}

// Creates the document as the library does: this cost belongs to the platform.
Document NewDocument(const std::wstring& root) {
    UnknownPtr unknown;
    Require(CoCreateInstance(kDomDocument30, nullptr, CLSCTX_SERVER, IID_IUnknown,
                             reinterpret_cast<void**>(&unknown)));
    Require(OleRun(unknown));
    Document document;
    Require(unknown->QueryInterface(IID_IXMLDOMDocument, reinterpret_cast<void**>(&document)));
    VARIANT_BOOL loaded = VARIANT_FALSE;
    Require(document->loadXML(SystemText(L"<" + root + L"></" + root + L">").get(), &loaded));
    return document;
}

}  // namespace

DocumentFloor::DocumentFloor(const XmlTree& root) : root_(NodeOf(root)) {}

DocumentFloor::Node DocumentFloor::NodeOf(const XmlTree& tree) {
    Node node{Wide(tree.name), Wide(tree.text), {}};
    for (const XmlTree& child : tree.children) {
        node.children.push_back(NodeOf(child));
    }
    return node;
}

void DocumentFloor::AppendChildren(IXMLDOMDocument* document, IXMLDOMNode* parent, const Node& node) {
    for (const Node& child : node.children) {
        Element element;
        Require(document->createElement(SystemText(child.name).get(), &element));
        NodePtr added;
        Require(parent->appendChild(element, &added));
        if (child.children.empty()) {
            Require(added->put_text(SystemText(child.text).get()));
        }
        AppendChildren(document, added, child);
    }
}

std::size_t DocumentFloor::Build() const {
    const Document document = NewDocument(root_.name);
    Element element;
    Require(document->get_documentElement(&element));
    AppendChildren(document, element, root_);
    BSTR xml = nullptr;
    Require(element->get_xml(&xml));
    const int characters = static_cast<int>(SysStringLen(xml));
    std::string bytes(static_cast<std::size_t>(
                          WideCharToMultiByte(CP_ACP, 0, xml, characters, nullptr, 0, nullptr, nullptr)),
                      '\0');
    WideCharToMultiByte(CP_ACP, 0, xml, characters, bytes.data(), static_cast<int>(bytes.size()), nullptr,
                        nullptr);
    SysFreeString(xml);
    return bytes.size();
}

}  // namespace bench
