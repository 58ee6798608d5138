// Makes each call to a node's interface fail in turn.

#include "com_thread.h"
#include "common/xml/ms_xml.h"

#include <gmock/gmock.h>

#include <array>
#include <optional>
#include <string>

namespace {

constexpr GUID kDocument30 = {0xF5078F32, 0xC551, 0x11D3, {0x89, 0xB9, 0x00, 0x00, 0xF8, 0x1F, 0xE2, 0x21}};
constexpr auto kFailure = static_cast<HRESULT>(0x80020009);

// Methods of IXMLDOMNode by their index in the function table.
enum NodeMethod : std::size_t {
    kAppendChild = 21,
    kGetOwnerDocument = 23,
    kPutText = 27,
    kGetXml = 34,
    kNodeMethods = 43,
};

using Method = HRESULT(STDMETHODCALLTYPE*)(void* self, void** result);

HRESULT STDMETHODCALLTYPE Fail(void* /*self*/, void** /*result*/) {
    return kFailure;
}

HRESULT STDMETHODCALLTYPE GiveNothing(void* /*self*/, void** result) {
    *result = nullptr;
    return S_FALSE;
}

// Replaces a method of one object for the lifetime of this one.
class ReplacedMethod {
public:
    ReplacedMethod(IXMLDOMNode* node, NodeMethod place, Method method)
        : table_(*reinterpret_cast<const Table**>(node)), methods_(*table_), object_(node) {
        methods_[place] = method;
        *reinterpret_cast<const Table**>(object_) = &methods_;
    }
    ~ReplacedMethod() { *reinterpret_cast<const Table**>(object_) = table_; }

    ReplacedMethod(const ReplacedMethod&) = delete;
    ReplacedMethod& operator=(const ReplacedMethod&) = delete;

private:
    using Table = std::array<Method, kNodeMethods>;

    const Table* table_;
    Table methods_;
    IXMLDOMNode* object_;
};

class MsXmlNodeCalls : public ComThread {
protected:
    void SetUp() override {
        ComThread::SetUp();
        ASSERT_EQ(CoCreateInstance(kDocument30, nullptr, CLSCTX_ALL, IID_IXMLDOMDocument,
                                   reinterpret_cast<void**>(&document_)),
                  S_OK);
        VARIANT_BOOL loaded = VARIANT_FALSE;
        ASSERT_EQ(document_->loadXML(_bstr_t(L"<root></root>"), &loaded), S_OK);
        XmlElementPtr element;
        ASSERT_EQ(document_->get_documentElement(&element), S_OK);
        ASSERT_EQ(element->QueryInterface(IID_IXMLDOMNode, reinterpret_cast<void**>(&node_)), S_OK);
        root_ = CMSXmlNode(node_);
    }

    template <class Body>
    void ExpectFailure(NodeMethod place, Body&& body) {
        std::optional<HRESULT> error;
        {
            const ReplacedMethod failing(node_.GetInterfacePtr(), place, &Fail);
            try {
                body();
            } catch (const _com_error& raised) {
                error = raised.Error();
            }
        }
        EXPECT_EQ(error, kFailure);
        EXPECT_EQ(Flat(root_.GetXML()).find(L"child"), std::wstring::npos);
    }

    XmlDocumentPtr document_;
    XmlNodePtr node_;
    CMSXmlNode root_;
};

TEST_F(MsXmlNodeCalls, AddChild_NodeWithoutOwnerDocument_IsTheEmptyNode) {
    const ReplacedMethod ownerless(node_.GetInterfacePtr(), kGetOwnerDocument, &GiveNothing);
    EXPECT_FALSE(root_.AddChild("child"));
}

TEST_F(MsXmlNodeCalls, AddChild_OwnerDocumentFails_RaisesItsCode) {
    ExpectFailure(kGetOwnerDocument, [this] { root_.AddChild("child"); });
}

TEST_F(MsXmlNodeCalls, AddChild_AppendingFails_RaisesItsCode) {
    ExpectFailure(kAppendChild, [this] { root_.AddChild("child"); });
}

TEST_F(MsXmlNodeCalls, SetText_PuttingFails_RaisesItsCode) {
    ExpectFailure(kPutText, [this] { root_.SetText(L"child"); });
}

TEST_F(MsXmlNodeCalls, GetXML_GettingFails_RaisesItsCode) {
    ExpectFailure(kGetXml, [this] { root_.GetXML(); });
}

}  // namespace
