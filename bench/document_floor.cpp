#include "bench/document_floor.h"

#include "common/platform/com_pointer.h"
#include "common/platform/unique_bstr.h"

#include <msxml2.h>

#include <algorithm>
#include <stdexcept>

namespace bench {

namespace {

using Document = ComPointer<IXMLDOMDocument, &IID_IXMLDOMDocument>;
using Element = ComPointer<IXMLDOMElement, &IID_IXMLDOMElement>;
using Node = ComPointer<IXMLDOMNode, &IID_IXMLDOMNode>;

constexpr CLSID kDomDocument30 = {
    0xF5078F32, 0xC551, 0x11D3, {0x89, 0xB9, 0x00, 0x00, 0xF8, 0x1F, 0xE2, 0x21}};

UniqueBstr Bstr(const std::string& text) {
    UniqueBstr wide(SysAllocStringLen(nullptr, static_cast<UINT>(text.size())));
    std::transform(text.begin(), text.end(), wide.get(),
                   [](char letter) { return static_cast<wchar_t>(static_cast<unsigned char>(letter)); });
    return wide;
}

void Require(HRESULT result) {
    if (FAILED(result)) {
        throw std::runtime_error("the XML component failed");
    }
}

// Made as the library makes it: that is the platform's part too.
Document NewDocument(const std::string& root) {
    UnknownPtr unknown;
    Require(CoCreateInstance(kDomDocument30, nullptr, CLSCTX_SERVER, IID_IUnknown,
                             reinterpret_cast<void**>(&unknown)));
    Require(OleRun(unknown));
    Document document;
    Require(unknown->QueryInterface(IID_IXMLDOMDocument, reinterpret_cast<void**>(&document)));
    VARIANT_BOOL loaded = VARIANT_FALSE;
    Require(document->loadXML(Bstr("<" + root + "></" + root + ">").get(), &loaded));
    return document;
}

void AppendChildren(IXMLDOMDocument* document, IXMLDOMNode* parent, const XmlTree& tree) {
    for (const XmlTree& child : tree.children) {
        Element element;
        Require(document->createElement(Bstr(child.name).get(), &element));
        Node added;
        Require(parent->appendChild(element, &added));
        if (child.children.empty()) {
            Require(added->put_text(Bstr(child.text).get()));
        }
        AppendChildren(document, added, child);
    }
}

}  // namespace

std::size_t BuildDocument(const XmlTree& root) {
    const Document document = NewDocument(root.name);
    Element element;
    Require(document->get_documentElement(&element));
    AppendChildren(document, element, root);
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
