#include "common/xml/xml_values.h"

#include "com_thread.h"

#include <gmock/gmock.h>

#include <cstdint>
#include <limits>
#include <string>

namespace {

class XmlValues : public ComThread {
protected:
    void SetUp() override {
        ComThread::SetUp();
        ASSERT_TRUE(document_.LoadXML("<root></root>"));
        root_ = document_.GetRoot();
    }
    std::wstring Xml() const { return Flat(root_.GetXML()); }

    CMSXmlDoc document_;
    CMSXmlNode root_;
};

TEST_F(XmlValues, AddNumberElement_Numbers_AreInPlainDecimal) {
    AddNumberElement(root_, "A", std::numeric_limits<std::uint64_t>::max());
    AddNumberElement(root_, "B", std::numeric_limits<std::int64_t>::min());
    AddNumberElement(root_, "C", std::uint32_t{4294967295});
    AddNumberElement(root_, "D", 0);
    EXPECT_EQ(
        Xml(),
        L"<root><A>18446744073709551615</A><B>-9223372036854775808</B><C>4294967295</C><D>0</D></root>");
}

TEST(XmlTruth, TrueOrFalse_IsCapitalised) {
    EXPECT_STREQ(TrueOrFalse(true), L"True");
    EXPECT_STREQ(TrueOrFalse(false), L"False");
}

}  // namespace
