// The wrapper without a document, without a node, and when an interface call fails.

#include "com_thread.h"
#include "common/xml/ms_xml.h"
#include "support/logger_capture.h"
#include "support/stub.h"

#include <gmock/gmock.h>

#include <optional>
#include <string>

namespace {

using support::LoggerCapture;
using support::StubImport;
using testing::IsEmpty;

// The code of the COM error that `body` throws; none if it does not throw.
template <class Body>
std::optional<std::uint32_t> ComErrorOf(Body&& body) {
    try {
        body();
    } catch (const _com_error& error) {
        return static_cast<std::uint32_t>(error.Error());
    }
    return std::nullopt;
}

constexpr std::uint32_t kPointer = 0x80004003;
constexpr std::uint32_t kOutOfMemory = 0x8007000E;

class MsXmlFailures : public ComThread {
protected:
    LoggerCapture log_;
};

TEST_F(MsXmlFailures, EmptyNode_EveryOperation_RaisesTheNullPointer) {
    CMSXmlNode node;

    EXPECT_FALSE(node);
    EXPECT_EQ(ComErrorOf([&] { node.AddChild("a"); }), kPointer);
    EXPECT_EQ(ComErrorOf([&] { node.SetText(L"a"); }), kPointer);
    EXPECT_EQ(ComErrorOf([&] { node.AddTextChild("A", L"a"); }), kPointer);
    EXPECT_EQ(ComErrorOf([&] { node.GetXML(); }), kPointer);
    EXPECT_THAT(log_.all(), IsEmpty());
}

class MsXmlCreation : public MsXmlFailures {
protected:
    void ExpectNoDocument() {
        CMSXmlDoc document;
        EXPECT_FALSE(document.LoadXML("<root></root>"));
        EXPECT_FALSE(document.GetRoot());
        EXPECT_THAT(log_.all(), IsEmpty()) << log_;
    }
};

TEST_F(MsXmlCreation, Construction_ClassIsNotThere_LeavesNoDocumentWithoutAWord) {
    GUID clsid{};
    GUID iid{};
    DWORD context = 0;
    int calls = 0;
    const StubImport create("CoCreateInstance", &::CoCreateInstance,
                            [&](REFCLSID asked_clsid, IUnknown*, DWORD asked_context, REFIID asked_iid,
                                void** object) -> HRESULT {
                                ++calls;
                                clsid = asked_clsid;
                                iid = asked_iid;
                                context = asked_context;
                                *object = nullptr;
                                return REGDB_E_CLASSNOTREG;
                            });

    ExpectNoDocument();

    constexpr GUID kDocument30 = {
        0xF5078F32, 0xC551, 0x11D3, {0x89, 0xB9, 0x00, 0x00, 0xF8, 0x1F, 0xE2, 0x21}};
    EXPECT_EQ(calls, 1);
    EXPECT_TRUE(IsEqualGUID(clsid, kDocument30));
    EXPECT_TRUE(IsEqualGUID(iid, IID_IUnknown));
    EXPECT_EQ(context & CLSCTX_SERVER, DWORD{CLSCTX_SERVER});
}

TEST_F(MsXmlCreation, Construction_NoPointerComes_LeavesNoDocument) {
    const StubImport create("CoCreateInstance", &::CoCreateInstance,
                            [](REFCLSID, IUnknown*, DWORD, REFIID, void** object) -> HRESULT {
                                *object = nullptr;
                                return S_OK;
                            });
    ExpectNoDocument();
}

TEST_F(MsXmlCreation, Construction_ObjectDoesNotRun_LeavesNoDocument) {
    int calls = 0;
    const StubImport run("OleRun", &::OleRun, [&](IUnknown*) -> HRESULT {
        ++calls;
        return E_FAIL;
    });
    ExpectNoDocument();
    EXPECT_EQ(calls, 1);
}

TEST(MsXmlWithoutCom, Construction_ThreadHasNoCom_LeavesNoDocument) {
    ULONG_PTR context = 0;
    ASSERT_EQ(CoGetContextToken(&context), CO_E_NOTINITIALIZED) << "a test before this one left COM behind";
    CMSXmlDoc document;
    EXPECT_FALSE(document.LoadXML("<root></root>"));
    EXPECT_FALSE(document.GetRoot());
}

class MsXmlCalls : public MsXmlFailures {
protected:
    void SetUp() override {
        MsXmlFailures::SetUp();
        ASSERT_TRUE(document_.LoadXML("<root></root>"));
        root_ = document_.GetRoot();
    }

    CMSXmlDoc document_;
    CMSXmlNode root_;
};

TEST_F(MsXmlCalls, AddChild_NoName_RaisesTheFailureAndAddsNothing) {
    const std::wstring before = Flat(root_.GetXML());

    const std::optional<std::uint32_t> error = ComErrorOf([&] { root_.AddChild(""); });

    ASSERT_TRUE(error);
    EXPECT_TRUE(FAILED(static_cast<HRESULT>(*error)));
    EXPECT_EQ(Flat(root_.GetXML()), before);
    EXPECT_THAT(log_.all(), IsEmpty());
}

// During its lifetime, SysAllocStringLen is out of memory. It is called for texts too long for the built-in
// buffer.
class NoTextMemory {
private:
    using Function = decltype(&::SysAllocStringLen);
    support::StubImport<Function, BSTR (*)(const OLECHAR*, UINT)> stub_{
        "SysAllocStringLen", &::SysAllocStringLen, [](const OLECHAR*, UINT) -> BSTR { return nullptr; }};
};

const std::string kLong(200, 'a');

TEST_F(MsXmlCalls, SetText_NoMemoryForTheText_RaisesOutOfMemory) {
    const NoTextMemory none;
    EXPECT_EQ(ComErrorOf([&] { root_.SetText(std::wstring(200, L'a')); }), kOutOfMemory);
}

TEST_F(MsXmlCalls, LoadXML_NoMemoryForTheText_RaisesOutOfMemory) {
    const NoTextMemory none;
    EXPECT_EQ(ComErrorOf([&] { document_.LoadXML(("<" + kLong + "></" + kLong + ">").c_str()); }),
              kOutOfMemory);
}

TEST_F(MsXmlCalls, LoadXML_TextCannotBeConverted_RaisesTheSystemsCodeAndKeepsTheContent) {
    const std::wstring before = Flat(root_.GetXML());
    {
        const StubImport refuse("MultiByteToWideChar", &::MultiByteToWideChar,
                                [](UINT, DWORD, const char*, int, wchar_t*, int) -> int {
                                    SetLastError(ERROR_NO_UNICODE_TRANSLATION);
                                    return 0;
                                });
        EXPECT_EQ(ComErrorOf([&] { document_.LoadXML("<other></other>"); }), 0x80070459U);  // error 1113
    }
    EXPECT_EQ(Flat(document_.GetRoot().GetXML()), before);
}

TEST_F(MsXmlCalls, AddChild_NoMemoryForTheName_RaisesOutOfMemory) {
    const NoTextMemory none;
    EXPECT_EQ(ComErrorOf([&] { root_.AddChild(kLong.c_str()); }), kOutOfMemory);
}

}  // namespace
