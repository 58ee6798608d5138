#include "bench/document_floor.h"

#include "common/windows.h"

#include <comdef.h>
#include <msxml2.h>

#include <stdexcept>

namespace bench {

namespace {

template <class Interface, const IID* kIid>
using Pointer = _com_ptr_t<_com_IIID<Interface, kIid>>;

using Document = Pointer<IXMLDOMDocument, &IID_IXMLDOMDocument>;
using Element = Pointer<IXMLDOMElement, &IID_IXMLDOMElement>;
using Node = Pointer<IXMLDOMNode, &IID_IXMLDOMNode>;

constexpr CLSID kDomDocument30 = {
    0xF5078F32, 0xC551, 0x11D3, {0x89, 0xB9, 0x00, 0x00, 0xF8, 0x1F, 0xE2, 0x21}};

class OwnedText {
public:
    explicit OwnedText(const std::string& text)
        : text_(SysAllocStringLen(nullptr, static_cast<UINT>(text.size()))) {
        for (std::size_t i = 0; i < text.size(); ++i) {
            text_[i] = static_cast<unsigned char>(text[i]);
        }
    }
    ~OwnedText() { SysFreeString(text_); }
    OwnedText(const OwnedText&) = delete;
    OwnedText& operator=(const OwnedText&) = delete;
    BSTR get() const { return text_; }

private:
    BSTR text_;
};

void Require(HRESULT result) {
    if (FAILED(result)) {
        throw std::runtime_error("the XML component failed");
    }
}

void Append(IXMLDOMDocument* document, IXMLDOMNode* parent, const XmlTree& tree) {
    Element element;
    Require(document->createElement(OwnedText(tree.name).get(), &element));
    Node added;
    Require(parent->appendChild(element, &added));
    if (tree.children.empty()) {
        Require(added->put_text(OwnedText(tree.text).get()));
    }
    for (const XmlTree& child : tree.children) {
        Append(document, added, child);
    }
}

}  // namespace

std::size_t BuildDocument(const XmlTree& root) {
    Document document;
    Require(CoCreateInstance(kDomDocument30, nullptr, CLSCTX_SERVER, IID_IXMLDOMDocument,
                             reinterpret_cast<void**>(&document)));
    Append(document, document, root);
    Element element;
    Require(document->get_documentElement(&element));
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
