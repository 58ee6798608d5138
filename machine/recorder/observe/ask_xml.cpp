// The XML component, which makes the library's documents.

#include "machine/recorder/observe/ask_calls.h"
#include "machine/recorder/observe/com_values.h"

#include <msxml.h>
#include <objbase.h>

namespace recorder {
namespace {

constexpr CLSID kDomDocument30 = {
    0xF5078F32, 0xC551, 0x11D3, {0x89, 0xB9, 0x00, 0x00, 0xF8, 0x1F, 0xE2, 0x21}};

// What a component may write in one way or another: the declaration, an element without content, and the
// characters of a text.
constexpr std::wstring_view kDocument =
    L"<?xml version=\"1.0\" encoding=\"UTF-8\"?><root><text/><empty/></root>";
constexpr std::wstring_view kText = L"<&>\"' \t\r\n\x00E4\x20AC";

// Null if there is none; `failure` then says why.
Pointer<IXMLDOMDocument> NewDocument(Answer& failure) {
    void* made = nullptr;
    const HRESULT result =
        CoCreateInstance(kDomDocument30, nullptr, CLSCTX_SERVER, IID_IXMLDOMDocument, &made);
    if (FAILED(result)) {
        failure = Failure(static_cast<std::uint32_t>(result), "CoCreateInstance");
    }
    return Pointer<IXMLDOMDocument>(static_cast<IXMLDOMDocument*>(made));
}

// Stores the document's text in `bytes`.
HRESULT WriteDocument(IXMLDOMDocument& document, Bytes& bytes) {
    VARIANT_BOOL loaded = VARIANT_FALSE;
    HRESULT result = document.loadXML(ComTextOf(kDocument).get(), &loaded);
    IXMLDOMElement* element = nullptr;
    if (FAILED(result) || FAILED(result = document.get_documentElement(&element)) || element == nullptr) {
        return FAILED(result) ? result : E_POINTER;
    }
    const Pointer<IXMLDOMElement> root(element);
    IXMLDOMNode* child = nullptr;
    if (FAILED(result = root->get_firstChild(&child)) || child == nullptr) {
        return FAILED(result) ? result : E_POINTER;
    }
    const Pointer<IXMLDOMNode> text(child);
    BSTR xml = nullptr;
    if (SUCCEEDED(result = text->put_text(ComTextOf(kText).get()))) {
        result = document.get_xml(&xml);
    }
    const ComText owned(xml);
    bytes = BytesOfText(ViewOf(xml));
    return result;
}

}  // namespace

// Whether the document of the component can be created.
Answer AskXmlComponent(const SystemFunctions& /*functions*/, const Question& /*question*/) {
    Answer answer;
    NewDocument(answer);
    answer.step.clear();  // it is the question itself
    return answer;
}

// What the component makes of a small document.
Answer AskXmlText(const SystemFunctions& /*functions*/, const Question& /*question*/) {
    Answer answer;
    if (const auto document = NewDocument(answer)) {
        answer.error = static_cast<std::uint32_t>(WriteDocument(*document, answer.bytes));
    }
    return answer;
}

}  // namespace recorder
