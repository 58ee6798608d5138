// The parser of the Windows build: the SAX reader of the system.

#include "common/windows.h"
#include "documents/text/read_error.h"
#include "documents/text/utf8.h"
#include "documents/xml/parser.h"
#include "documents/xml/scanner.h"

#include <comdef.h>
#include <msxml2.h>
#include <shlwapi.h>

#include <exception>
#include <stdexcept>
#include <string_view>

// The headers of MinGW lack these.
__CRT_UUID_DECL(ISAXXMLReader, 0xA4F96ED0, 0xF829, 0x476E, 0x81, 0xC0, 0xCD, 0xC7, 0xBD, 0x2A, 0x08, 0x02)
__CRT_UUID_DECL(ISAXContentHandler, 0x1545CDFA, 0x9E4E, 0x4497, 0xA8, 0xA4, 0x2B, 0xF7, 0xD0, 0x11, 0x2C,
                0x44)

namespace documents {

namespace {

// SAXXMLReader30 of msxml3, which every Windows has.
constexpr CLSID kSaxReader = {0x3124C396, 0xFB13, 0x4836, {0xA6, 0xAD, 0x13, 0x17, 0xF1, 0x71, 0x36, 0x88}};

_COM_SMARTPTR_TYPEDEF(ISAXXMLReader, __uuidof(ISAXXMLReader));
_COM_SMARTPTR_TYPEDEF(IStream, __uuidof(IStream));

std::string Utf8(std::wstring_view text) {
    return FromUtf16(std::u16string(text.begin(), text.end()));
}

// Turns the reader's calls into events. It lives on the stack of ParseXml, longer than the reader, so its
// references need no count. An exception of the events ends the parsing and is kept.
class Handler final : public ISAXContentHandler {
public:
    explicit Handler(XmlEvents& events) : events_(events) {}

    void RethrowWhatEventsThrew() const {
        if (thrown_) {
            std::rethrow_exception(thrown_);
        }
    }

    HRESULT WINAPI QueryInterface(REFIID id, void** object) override {
        if (id != __uuidof(IUnknown) && id != __uuidof(ISAXContentHandler)) {
            *object = nullptr;
            return E_NOINTERFACE;
        }
        *object = this;
        return S_OK;
    }
    ULONG WINAPI AddRef() override { return 1; }
    ULONG WINAPI Release() override { return 1; }

    HRESULT WINAPI startElement(const wchar_t*, int, const wchar_t*, int, const wchar_t* name, int length,
                                ISAXAttributes*) override {
        return Guarded([&] {
            if (pending_) {
                events_.Open(name_);
            }
            name_ = Utf8({name, static_cast<std::size_t>(length)});
            text_.clear();
            pending_ = true;
        });
    }
    HRESULT WINAPI endElement(const wchar_t*, int, const wchar_t*, int, const wchar_t*, int) override {
        return Guarded([&] {
            if (pending_) {
                events_.Value(name_, Utf8(text_));
            } else {
                events_.Close();
            }
            pending_ = false;
        });
    }
    HRESULT WINAPI characters(const wchar_t* text, int length) override {
        return Guarded([&] {
            if (pending_) {
                text_.append(text, static_cast<std::size_t>(length));
            }
        });
    }
    HRESULT WINAPI ignorableWhitespace(const wchar_t* text, int length) override {
        return characters(text, length);
    }

    HRESULT WINAPI putDocumentLocator(ISAXLocator*) override { return S_OK; }
    HRESULT WINAPI startDocument() override { return S_OK; }
    HRESULT WINAPI endDocument() override { return S_OK; }
    HRESULT WINAPI startPrefixMapping(const wchar_t*, int, const wchar_t*, int) override { return S_OK; }
    HRESULT WINAPI endPrefixMapping(const wchar_t*, int) override { return S_OK; }
    HRESULT WINAPI processingInstruction(const wchar_t*, int, const wchar_t*, int) override { return S_OK; }
    HRESULT WINAPI skippedEntity(const wchar_t*, int) override { return S_OK; }

private:
    template <class Action>
    HRESULT Guarded(Action&& action) {
        try {
            action();
            return S_OK;
        } catch (...) {
            thrown_ = std::current_exception();
            return E_FAIL;
        }
    }

    XmlEvents& events_;
    std::string name_;
    std::wstring text_;     // comes in pieces
    bool pending_ = false;  // the last begun element has no child yet
    std::exception_ptr thrown_;
};

class ComForThisThread {
public:
    ComForThisThread() : result_(CoInitializeEx(nullptr, COINIT_MULTITHREADED)) {}
    ~ComForThisThread() {
        if (SUCCEEDED(result_)) {
            CoUninitialize();
        }
    }
    ComForThisThread(const ComForThisThread&) = delete;
    ComForThisThread& operator=(const ComForThisThread&) = delete;

private:
    HRESULT result_;
};

}  // namespace

void ParseXml(std::string xml, XmlEvents& events) {
    const std::size_t root = RequireWellFormed(xml);
    const ComForThisThread com;
    Handler handler(events);
    ISAXXMLReaderPtr reader;
    const IStreamPtr stream(SHCreateMemStream(reinterpret_cast<const BYTE*>(xml.data() + root),
                                              static_cast<UINT>(xml.size() - root)),
                            false);
    if (stream == nullptr || FAILED(reader.CreateInstance(kSaxReader)) ||
        FAILED(reader->putContentHandler(&handler))) {
        throw std::runtime_error("the XML reader of the system cannot be created");
    }
    const HRESULT result = reader->parse(_variant_t(stream.GetInterfacePtr()));
    handler.RethrowWhatEventsThrew();
    if (FAILED(result)) {
        throw ReadError("line 1, column 1", "the XML reader of the system refuses the document");
    }
}

}  // namespace documents
