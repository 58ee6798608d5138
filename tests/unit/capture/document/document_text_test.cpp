// The text of a document in code pages other than that of the tests.

#include "capture/document/document_text.h"

#include "common/platform/com_enabler.h"
#include "support/stub.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

// Converts with the Thai code page, which has no section sign and no arrows: the system's best fits for them
// are control characters.
TEST(DocumentText, CharactersThatBecomeControls_AreWrittenByTheirNumbers) {
    char fit = 0;
    const auto convert = &::WideCharToMultiByte;  // the system's, before it is replaced
    ASSERT_EQ(convert(874, 0, L"\u00A7", 1, &fit, 1, nullptr, nullptr), 1);
    ASSERT_LT(fit, ' ');
    const support::StubImport stub(
        "WideCharToMultiByte", &::WideCharToMultiByte,
        [&](UINT, DWORD flags, LPCWCH wide, int length, LPSTR text, int size, LPCCH substitute, LPBOOL used) {
            return convert(874, flags, wide, length, text, size, substitute, used);
        });
    bmr_common::COMEnabler com;
    ASSERT_TRUE(com.InitializeCOM(L"DocumentText"));
    CMSXmlDoc document;
    ASSERT_TRUE(LoadEmptyDocument(document));
    CMSXmlNode root = document.GetRoot();
    root.AddTextChild("Label", L"\u00A7 3 \u2192 \u0E01");
    EXPECT_THAT(DocumentText(root), testing::HasSubstr("<Label>&#167; 3 &#8594; \xA1</Label>"));
}

}  // namespace
