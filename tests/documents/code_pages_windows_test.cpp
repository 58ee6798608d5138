// The tables of the code pages against those of the system. The native build has none to compare with.
#ifdef _WIN32

#include "common/windows.h"
#include "documents/text/code_pages.h"

#include <gtest/gtest.h>

namespace {

TEST(CodePages, Characters_AreThoseOfTheSystem) {
    for (const documents::CodePage& page : documents::CodePages()) {
        for (unsigned index = 0; index < page.upper.size(); ++index) {
            const char byte = static_cast<char>(index + 0x80U);
            wchar_t wide = 0;
            ASSERT_EQ(MultiByteToWideChar(page.number, 0, &byte, 1, &wide, 1), 1);
            // Characters for private use stand for bytes that the code page does not have.
            const bool none = wide >= 0xE000 && wide < 0xF900;
            if (page.upper.at(index) != 0 || !none) {
                EXPECT_EQ(page.upper.at(index), static_cast<char16_t>(wide))
                    << page.number << ' ' << index + 0x80U;
            }
        }
    }
}

}  // namespace

#endif
