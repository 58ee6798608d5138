#include "machine/wmi_support.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

namespace machine_test {
namespace {

TEST_F(Wmi, Values_HaveTheTypesOfTheDescription) {
    Start(R"({"wmi": {"Test_Class": [{"Text": "a\u00e4", "Number": -5, "Flag": true, "Nothing": null,
        "List": ["one", "two"], "Big": {"type": "VT_UI4", "value": 70000}, "Small": {"type": "VT_I2", "value": -60},
        "Huge": {"type": "VT_UI8", "value": 18446744073709551615}, "Real": 2.5, "Broken": {"error": "0x80041003"}}]}})");
    First(L"test_class");
    EXPECT_EQ(Value(L"Text").vt, VT_BSTR);
    EXPECT_STREQ(Value(L"text").bstrVal, L"a\u00e4");
    EXPECT_EQ(Value(L"Number").vt, VT_I4);
    EXPECT_EQ(Value(L"Number").lVal, -5);
    EXPECT_EQ(Value(L"Flag").vt, VT_BOOL);
    EXPECT_EQ(Value(L"Flag").boolVal, VARIANT_TRUE);
    EXPECT_EQ(Value(L"Nothing").vt, VT_NULL);
    EXPECT_EQ(Value(L"Big").vt, VT_UI4);
    EXPECT_EQ(Value(L"Big").ulVal, 70000u);
    EXPECT_EQ(Value(L"Small").vt, VT_I2);
    EXPECT_EQ(Value(L"Small").iVal, -60);
    EXPECT_EQ(Value(L"Huge").vt, VT_UI8);
    EXPECT_EQ(Value(L"Huge").ullVal, UINT64_MAX);
    EXPECT_EQ(Value(L"Real").dblVal, 2.5);
    const _variant_t list = Value(L"List");
    ASSERT_EQ(list.vt, VT_ARRAY | VT_BSTR);
    LONG upper = 0;
    ASSERT_EQ(SafeArrayGetUBound(list.parray, 1, &upper), S_OK);
    EXPECT_EQ(upper, 1);
    BSTR second = nullptr;
    ASSERT_EQ(SafeArrayGetElement(list.parray, &upper, &second), S_OK);
    EXPECT_STREQ(second, L"two");
    SysFreeString(second);
    _variant_t value;
    EXPECT_EQ(instance_->Get(L"Broken", 0, &value, nullptr, nullptr), static_cast<HRESULT>(0x80041003));
    EXPECT_EQ(instance_->Get(L"Missing", 0, &value, nullptr, nullptr), kNotFound);
    EXPECT_EQ(value.vt, VT_EMPTY);
}

template <class Number>
std::vector<Number> NumbersIn(const _variant_t& list) {
    LONG upper = -1;
    EXPECT_EQ(SafeArrayGetUBound(list.parray, 1, &upper), S_OK);
    std::vector<Number> numbers(static_cast<std::size_t>(upper + 1));
    for (LONG i = 0; i <= upper; ++i) {
        EXPECT_EQ(SafeArrayGetElement(list.parray, &i, &numbers[static_cast<std::size_t>(i)]), S_OK);
    }
    return numbers;
}

TEST_F(Wmi, ListsOfNumbers_HaveTheTypesOfTheDescription) {
    Start(
        R"({"wmi": {"Test_Class": [{"Plain": [3, -4], "Bytes": {"type": "VT_ARRAY|VT_UI1", "value": [0, 255]},
        "Shorts": {"type": "VT_ARRAY|VT_I2", "value": [-32768]}, "None": {"type": "VT_ARRAY|VT_I4", "value": []}}]}})");
    First(L"Test_Class");
    EXPECT_EQ(Value(L"Plain").vt, VT_ARRAY | VT_I4);
    EXPECT_EQ(NumbersIn<LONG>(Value(L"Plain")), (std::vector<LONG>{3, -4}));
    EXPECT_EQ(Value(L"Bytes").vt, VT_ARRAY | VT_UI1);
    EXPECT_EQ(NumbersIn<BYTE>(Value(L"Bytes")), (std::vector<BYTE>{0, 255}));
    EXPECT_EQ(Value(L"Shorts").vt, VT_ARRAY | VT_I2);
    EXPECT_EQ(NumbersIn<SHORT>(Value(L"Shorts")), (std::vector<SHORT>{-32768}));
    EXPECT_EQ(Value(L"None").vt, VT_ARRAY | VT_I4);
    EXPECT_EQ(NumbersIn<LONG>(Value(L"None")), std::vector<LONG>());
}

TEST_F(Wmi, ReservedFlags_AreRefused) {
    Start(R"({"wmi": {"Test_Class": [{"A": 1}]}})");
    First(L"Test_Class");
    for (const LONG flags : {1L, 0x10L, 0x40L, -1L}) {
        _variant_t value;
        EXPECT_EQ(instance_->Get(L"A", flags, &value, nullptr, nullptr), kInvalidParameter) << flags;
        EXPECT_EQ(value.vt, VT_EMPTY);
    }
}

TEST_F(Wmi, Instance_ListsItsProperties) {
    Start(R"({"wmi": {"Test_Class": [{"A": 1, "B": "two"}]}})");
    First(L"Test_Class");
    SAFEARRAY* names = nullptr;
    ASSERT_EQ(instance_->GetNames(nullptr, 0, nullptr, &names), S_OK);
    LONG upper = -1;
    SafeArrayGetUBound(names, 1, &upper);
    EXPECT_EQ(upper, 1);
    SafeArrayDestroy(names);
    ASSERT_EQ(instance_->BeginEnumeration(0), S_OK);
    BSTR name = nullptr;
    ASSERT_EQ(instance_->Next(0, &name, nullptr, nullptr, nullptr), S_OK);
    EXPECT_STREQ(name, L"A");
    SysFreeString(name);
    ASSERT_EQ(instance_->Next(0, nullptr, nullptr, nullptr, nullptr), S_OK);
    EXPECT_EQ(instance_->Next(0, nullptr, nullptr, nullptr, nullptr), static_cast<HRESULT>(0x00040005));
    EXPECT_STREQ(Value(L"__CLASS").bstrVal, L"Test_Class");
}

TEST_F(Wmi, DiskDrive_FollowsTheDisk) {
    Start(
        R"({"disks": [{"index": 2, "size": "64 GiB", "style": "mbr", "signature": "0xF0000001", "partitions": [
        {"offset": "1 MiB", "size": "1 GiB", "type": "ntfs"}],
        "wmi": {"Model": "Sample Drive", "SerialNumber": "S-1"}}]})");
    First(L"Win32_DiskDrive");
    EXPECT_EQ(Value(L"Index").vt, VT_I4);
    EXPECT_EQ(Value(L"Index").lVal, 2);
    EXPECT_STREQ(Value(L"DeviceID").bstrVal, L"\\\\.\\PHYSICALDRIVE2");
    EXPECT_STREQ(Value(L"Model").bstrVal, L"Sample Drive");
    EXPECT_STREQ(Value(L"Caption").bstrVal, L"Sample Drive");
    EXPECT_EQ(Value(L"Partitions").lVal, 1);
    EXPECT_EQ(static_cast<DWORD>(Value(L"Signature").lVal), 0xF0000001u);
    // WMI counts only whole cylinders of 255 * 63 sectors.
    EXPECT_STREQ(Value(L"Size").bstrVal,
                 std::to_wstring(64LL * 1024 * 1024 * 1024 / 8225280 * 8225280).c_str());
}

TEST_F(Wmi, OperatingSystem_NamesTheVolumesOfTheMachine) {
    Start(SmallMachine());
    First(L"Win32_OperatingSystem");
    EXPECT_STREQ(Value(L"BootDevice").bstrVal, L"\\Device\\HarddiskVolume1");
    EXPECT_STREQ(Value(L"SystemDevice").bstrVal, L"\\Device\\HarddiskVolume2");
    EXPECT_STREQ(Value(L"WindowsDirectory").bstrVal, L"C:\\Windows");
    EXPECT_EQ(Value(L"CurrentTimeZone").vt, VT_I2);
    First(L"Win32_ComputerSystem");
    EXPECT_EQ(Value(L"SystemStartupOptions").vt, VT_NULL);
}

TEST_F(Wmi, DescribedInstance_IsPutOverTheDerivedOne) {
    Start(R"({"wmi": {"Win32_OperatingSystem": [{"CSName": "BUILD-07", "BootDevice": null}]}})");
    First(L"Win32_OperatingSystem");
    EXPECT_STREQ(Value(L"CSName").bstrVal, L"BUILD-07");
    EXPECT_EQ(Value(L"BootDevice").vt, VT_NULL);
    EXPECT_EQ(Value(L"OSType").lVal, 18);
}

TEST_F(Wmi, DescribedErrors_HitTheirCall) {
    Start(R"({"wmi": {"Win32_Processor": {"errors": {"IEnumWbemClassObject::Next": "0x80041003"}},
                      "Win32_DiskDrive": {"errors": {"IWbemServices::ExecQuery": "0x80041001"}}},
              "errors": {"IEnumWbemClassObject::Reset": "0x80041006"}})");
    ASSERT_EQ(Query(services_, enumerator_, L"Select * from Win32_Processor"), S_OK);
    EXPECT_EQ(enumerator_->Reset(), static_cast<HRESULT>(0x80041006));
    EXPECT_EQ(Fetch(enumerator_, instance_), static_cast<HRESULT>(0x80041003));
    Enumerator other;
    EXPECT_EQ(Query(services_, other, L"Select * from Win32_DiskDrive"), static_cast<HRESULT>(0x80041001));
}

TEST_F(Wmi, FaultPlan_ReachesEveryStepOfAConnection) {
    Start("{}");
    services_ = nullptr;
    for (const char* step :
         {"IClassFactory::CreateInstance", "IWbemLocator::ConnectServer", "IWbemServices::ExecQuery"}) {
        simulation().faults().Clear();
        simulation().faults().Fail(step, 0x80070005);
        Services services;
        HRESULT result = Connect(services);
        if (SUCCEEDED(result)) {
            Enumerator enumerator;
            result = Query(services, enumerator, L"Select * from Win32_Processor");
        }
        EXPECT_EQ(result, E_ACCESSDENIED) << step;
    }
    EXPECT_EQ(simulation().live_objects(), 0u);
}

TEST_F(Wmi, AlteredValue_IsHandedOut) {
    Start("{}");
    First(L"Win32_Processor");
    simulation().faults().Alter(
        "IWbemClassObject::Get",
        [](machine::Answer& answer) {
            answer.variant->vt = VT_I4;
            answer.variant->lVal = 12;
        },
        L"Win32_Processor.Architecture");
    EXPECT_EQ(Value(L"Architecture").lVal, 12);
}

TEST_F(Wmi, ObjectsAlive_AreCounted) {
    Start("{}");
    EXPECT_EQ(simulation().live_objects(), 1u);
    First(L"Win32_Processor");
    EXPECT_EQ(simulation().live_objects(), 3u);
}

}  // namespace
}  // namespace machine_test
