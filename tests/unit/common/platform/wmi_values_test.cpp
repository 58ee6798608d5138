#include "wmi_machine.h"

#include <string>
#include <vector>

namespace {

using testing::ElementsAre;

struct Value {
    const char* name;
    const char* json;
    int whole;
    int low;  // expected from the call that keeps 16 bits of VT_UI4
};

const Value kValues[] = {
    {"I2", R"({"type": "VT_I2", "value": -5})", -5, -5},
    {"I2Lowest", R"({"type": "VT_I2", "value": -32768})", -32768, -32768},
    {"BoolTrue", "true", -1, -1},
    {"BoolFalse", "false", 0, 0},
    {"I4", R"({"type": "VT_I4", "value": -70000})", -70000, -70000},
    {"Int", R"({"type": "VT_INT", "value": 70000})", 70000, 70000},
    {"Uint", R"({"type": "VT_UINT", "value": 70000})", 70000, 70000},
    {"UintHighest", R"({"type": "VT_UINT", "value": 4294967295})", -1, -1},
    {"Ui2", R"({"type": "VT_UI2", "value": 65535})", 65535, 65535},
    {"Ui4", R"({"type": "VT_UI4", "value": 70000})", 70000, 4464},
    {"Ui4Highest", R"({"type": "VT_UI4", "value": 4294967295})", -1, 65535},
    {"Ui1", R"({"type": "VT_UI1", "value": 7})", 0, 0},
    {"I1", R"({"type": "VT_I1", "value": 7})", 0, 0},
    {"I8", R"({"type": "VT_I8", "value": 7})", 0, 0},
    {"Ui8", R"({"type": "VT_UI8", "value": 7})", 0, 0},
    {"R4", R"({"type": "VT_R4", "value": 7.5})", 0, 0},
    {"R8", R"({"type": "VT_R8", "value": 7.5})", 0, 0},
    {"Text", R"("7")", 0, 0},
    {"Null", "null", 0, 0},
    {"Empty", R"({"type": "VT_EMPTY"})", 0, 0},
    {"Array", R"(["7"])", 0, 0},
};

void PrintTo(const Value& value, std::ostream* out) {
    *out << value.name;
}

std::string Instance() {
    std::string instance;
    for (const Value& value : kValues) {
        instance += (instance.empty() ? "{\"" : ", \"") + std::string(value.name) + "\": " + value.json;
    }
    return instance + R"(, "Broken": {"error": 2147749891}, "Five": ["a", "b", "", "d", "e"],
                         "Letters": "\u00e4\u4e2d"})";
}

class WmiValues : public WmiMachine {
protected:
    WmiValues() : WmiMachine(Instance()) { found_ = wmi_.FindFirstObject(); }

    void SetUp() override { ASSERT_TRUE(found_) << log_; }
    void TearDown() override { wmi_.FindNextObject(); }

    // Replaces the property's value. The simulation takes ownership of `value`.
    void Put(const wchar_t* property, const VARIANT& value) {
        simulation().faults().Alter(
            "IWbemClassObject::Get",
            [value](machine::Answer& answer) {
                VariantClear(answer.variant);
                *answer.variant = value;
            },
            std::wstring(L"Test_Class.") + property);
    }
    void Put(const wchar_t* property, SAFEARRAY* array) {
        VARIANT value{};
        value.vt = VT_ARRAY | VT_BSTR;
        value.parray = array;
        Put(property, value);
    }

    CWmi wmi_{kQuery};
    bool found_ = false;
};

class WmiIntegers : public WmiValues, public testing::WithParamInterface<Value> {
protected:
    std::wstring Property() const {
        const std::string name = GetParam().name;
        return {name.begin(), name.end()};
    }
};

TEST_P(WmiIntegers, GetInteger_EachType_IsReadOrZero) {
    int number = 99;
    EXPECT_TRUE(wmi_.Get(Property().c_str(), number));
    EXPECT_EQ(number, GetParam().whole);
}

TEST_P(WmiIntegers, GetLowInteger_EachType_KeepsTheLowHalfOfUnsignedOnes) {
    int number = 99;
    EXPECT_TRUE(wmi_.GetLowInteger(Property().c_str(), number));
    EXPECT_EQ(number, GetParam().low);
}

TEST_P(WmiIntegers, GetText_EachTypeButText_IsTrueAndKeepsTheText) {
    std::wstring text = L"kept";
    EXPECT_TRUE(wmi_.Get(Property().c_str(), text));
    EXPECT_EQ(text, Property() == L"Text" ? L"7" : L"kept");
}

TEST_P(WmiIntegers, GetList_EachTypeButAList_IsTrueAndKeepsTheList) {
    std::vector<std::wstring> list = {L"kept"};
    EXPECT_TRUE(wmi_.Get(Property().c_str(), list));
    if (Property() == L"Array") {
        EXPECT_THAT(list, ElementsAre(L"kept", L"7"));
    } else {
        EXPECT_THAT(list, ElementsAre(L"kept"));
    }
}

INSTANTIATE_TEST_SUITE_P(Types, WmiIntegers, testing::ValuesIn(kValues),
                         [](const auto& tested) { return std::string(tested.param.name); });

class WmiUnreadable : public WmiValues, public testing::WithParamInterface<const wchar_t*> {};

TEST_P(WmiUnreadable, Get_PropertyThatCannotBeRead_IsFalse) {
    int number = 99;
    int low = 99;
    std::wstring text = L"kept";
    std::vector<std::wstring> list = {L"kept"};

    EXPECT_FALSE(wmi_.Get(GetParam(), number));
    EXPECT_FALSE(wmi_.GetLowInteger(GetParam(), low));
    EXPECT_FALSE(wmi_.Get(GetParam(), text));
    EXPECT_FALSE(wmi_.Get(GetParam(), list));

    EXPECT_EQ(number, 0);
    EXPECT_EQ(low, 99);
    EXPECT_EQ(text, L"kept");
    EXPECT_THAT(list, ElementsAre(L"kept"));
}

INSTANTIATE_TEST_SUITE_P(MissingAndFailing, WmiUnreadable, testing::Values(L"NoSuchProperty", L"Broken"));

TEST_F(WmiValues, GetText_TextWithoutMemory_IsEmpty) {
    VARIANT value{};
    value.vt = VT_BSTR;
    Put(L"Text", value);
    std::wstring text = L"before";

    EXPECT_TRUE(wmi_.Get(L"Text", text));

    EXPECT_EQ(text, L"");
}

TEST_F(WmiValues, GetList_SeveralTexts_AreAppendedInTheirOrder) {
    std::vector<std::wstring> list = {L"before"};
    EXPECT_TRUE(wmi_.Get(L"Five", list));
    EXPECT_THAT(list, ElementsAre(L"before", L"a", L"b", L"", L"d", L"e"));
}

TEST_F(WmiValues, GetList_LowerBoundBesideZero_IsReadFromThereOn) {
    for (const LONG lower : {-3L, 1L, 1000L}) {
        SAFEARRAY* const array = SafeArrayCreateVector(VT_BSTR, lower, 2);
        LONG index = lower;
        for (const wchar_t* text : {L"x", L"y"}) {
            _bstr_t element(text);
            SafeArrayPutElement(array, &index, element.GetBSTR());
            ++index;
        }
        simulation().faults().Clear();
        Put(L"Five", array);
        std::vector<std::wstring> list;

        EXPECT_TRUE(wmi_.Get(L"Five", list));

        EXPECT_THAT(list, ElementsAre(L"x", L"y")) << lower;
    }
}

TEST_F(WmiValues, GetList_EmptyArray_ChangesNothing) {
    Put(L"Five", SafeArrayCreateVector(VT_BSTR, 0, 0));
    std::vector<std::wstring> list = {L"kept"};
    EXPECT_TRUE(wmi_.Get(L"Five", list));
    EXPECT_THAT(list, ElementsAre(L"kept"));
}

TEST_F(WmiValues, GetList_NoArrayBehindTheType_ChangesNothing) {
    Put(L"Five", static_cast<SAFEARRAY*>(nullptr));
    std::vector<std::wstring> list = {L"kept"};
    EXPECT_TRUE(wmi_.Get(L"Five", list));
    EXPECT_THAT(list, ElementsAre(L"kept"));
}

}  // namespace
