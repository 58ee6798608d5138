// The text of a document in code pages other than that of the tests.

#include "capture/document/document_text.h"

#include "common/platform/com_enabler.h"
#include "support/stub.h"

#include <gtest/gtest.h>

namespace {

// Converts with the Thai code page, which has no section sign and no arrows: the system's best fits for them
// are control characters.
TEST(DocumentText, CharactersThatBecomeControls_AreWrittenByTheirNumbers) {
    const support::StubImport stub(
        "WideCharToMultiByte", &::WideCharToMultiByte,
        [](UINT, DWORD flags, LPCWCH wide, int length, LPSTR text, int size, LPCCH substitute, LPBOOL used) {
            return ::WideCharToMultiByte(874, flags, wide, length, text, size, substitute, used);
        });
    char fit = 0;
    ASSERT_EQ(::WideCharToMultiByte(874, 0, L"\u00A7", 1, &fit, 1, nullptr, nullptr), 1);
    bmr_common::COMEnabler com;
    ASSERT_TRUE(com.InitializeCOM(L"DocumentText"));
    CMSXmlDoc document;
    ASSERT_TRUE(LoadEmptyDocument(document));
    CMSXmlNode root = document.GetRoot();
    root.AddTextChild("Label", L"\u00A7 3 \u2192 \u0E01");
    EXPECT_EQ(DocumentText(root), "<root><Label>&#167; 3 &#8594; \xA1</Label></root>");
}

}  // namespace
