#include "machine/wmi_support.h"

#include <gtest/gtest.h>

#include <string>

namespace machine_test {
namespace {

TEST_F(Wmi, Locator_IsItsOwnUnknown) {
    Start("{}");
    IUnknown* unknown = nullptr;
    ASSERT_EQ(CoCreateInstance(kAdministrativeLocator, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown,
                               reinterpret_cast<void**>(&unknown)),
              S_OK);
    IWbemLocator* locator = nullptr;
    ASSERT_EQ(unknown->QueryInterface(IID_IWbemLocator, reinterpret_cast<void**>(&locator)), S_OK);
    EXPECT_EQ(static_cast<void*>(locator), static_cast<void*>(unknown));
    locator->Release();
    EXPECT_EQ(unknown->Release(), 0u);
}

TEST_F(Wmi, ProxyBlanket_IsAccepted) {
    Start("{}");
    EXPECT_EQ(CoSetProxyBlanket(services_, RPC_C_AUTHN_WINNT, RPC_C_AUTHZ_NONE, nullptr,
                                RPC_C_AUTHN_LEVEL_CALL, RPC_C_IMP_LEVEL_IMPERSONATE, nullptr, EOAC_NONE),
              S_OK);
    EXPECT_EQ(simulation().calls().Count("IClientSecurity::SetBlanket"), 1u);
}

TEST_F(Wmi, ProxyBlanketOfTheEnumerator_IsAccepted) {
    Start("{}");
    ASSERT_EQ(Query(services_, enumerator_, L"Select * from Win32_Processor"), S_OK);
    EXPECT_EQ(CoSetProxyBlanket(enumerator_, RPC_C_AUTHN_WINNT, RPC_C_AUTHZ_NONE, nullptr,
                                RPC_C_AUTHN_LEVEL_CALL, RPC_C_IMP_LEVEL_IMPERSONATE, nullptr, EOAC_NONE),
              S_OK);
    EXPECT_EQ(simulation().calls().Count("IClientSecurity::SetBlanket"), 1u);
}

TEST_F(Wmi, Security_HasTheIdentityOfTheServices) {
    Start("{}");
    IClientSecurity* security = nullptr;
    ASSERT_EQ(services_->QueryInterface(IID_IClientSecurity, reinterpret_cast<void**>(&security)), S_OK);
    IUnknown* of_security = nullptr;
    IUnknown* of_services = nullptr;
    security->QueryInterface(IID_IUnknown, reinterpret_cast<void**>(&of_security));
    services_->QueryInterface(IID_IUnknown, reinterpret_cast<void**>(&of_services));
    EXPECT_EQ(of_security, of_services);
    of_security->Release();
    of_services->Release();
    security->Release();
}

HRESULT SetSecurity(Enumerator& enumerator) {
    return CoSetProxyBlanket(enumerator, RPC_C_AUTHN_WINNT, RPC_C_AUTHZ_NONE, nullptr, RPC_C_AUTHN_LEVEL_CALL,
                             RPC_C_IMP_LEVEL_IMPERSONATE, nullptr, EOAC_NONE);
}

TEST_F(Wmi, Enumerator_TakesSecurityOfItsOwn) {
    Start("{}");
    ASSERT_EQ(Query(services_, enumerator_, L"Select * from Win32_Processor"), S_OK);
    EXPECT_EQ(SetSecurity(enumerator_), S_OK);
    EXPECT_EQ(simulation().calls().Count("IClientSecurity::SetBlanket"), 1u);
    EXPECT_EQ(Fetch(enumerator_, instance_), S_OK);
}

TEST_F(Wmi, Enumerator_IsNotRefusedByDefault) {
    Start("{}");
    ASSERT_EQ(Query(services_, enumerator_, L"Select * from Win32_Processor"), S_OK);
    EXPECT_EQ(Fetch(enumerator_, instance_), S_OK);
}

TEST_F(Wmi, EnumeratorRefusal_EndsWithItsSecurityNotWithThatOfTheServices) {
    Start(R"({"enumeratorRefusal": "0x80070005"})");
    EXPECT_EQ(CoSetProxyBlanket(services_, RPC_C_AUTHN_WINNT, RPC_C_AUTHZ_NONE, nullptr,
                                RPC_C_AUTHN_LEVEL_CALL, RPC_C_IMP_LEVEL_IMPERSONATE, nullptr, EOAC_NONE),
              S_OK);
    ASSERT_EQ(Query(services_, enumerator_, L"Select * from Win32_Processor"), S_OK);
    EXPECT_EQ(enumerator_->Reset(), S_OK);
    EXPECT_EQ(Fetch(enumerator_, instance_), E_ACCESSDENIED);
    EXPECT_EQ(enumerator_->Skip(-1, 1), E_ACCESSDENIED);
    ASSERT_EQ(SetSecurity(enumerator_), S_OK);
    IEnumWbemClassObject* copy = nullptr;
    ASSERT_EQ(enumerator_->Clone(&copy), S_OK);
    Enumerator cloned(copy, false);
    EXPECT_EQ(Fetch(cloned, instance_), E_ACCESSDENIED) << "a clone is a proxy of its own";
    EXPECT_EQ(Fetch(enumerator_, instance_), S_OK);
}

TEST_F(Wmi, EnumeratorRefusal_StaysIfSettingTheSecurityFails) {
    Start(R"({"enumeratorRefusal": "0x80070005", "errors": {"IClientSecurity::SetBlanket": "0x80070057"}})");
    ASSERT_EQ(Query(services_, enumerator_, L"Select * from Win32_Processor"), S_OK);
    EXPECT_EQ(SetSecurity(enumerator_), E_INVALIDARG);
    EXPECT_EQ(Fetch(enumerator_, instance_), E_ACCESSDENIED);
}

TEST_F(Wmi, BrokenList_FailsBehindItsWholeObjects) {
    Start(R"({"disks": [{"index": 0, "size": "1 GiB"}, {"index": 1, "size": "1 GiB"}],
              "wmi": {"Win32_DiskDrive": {"breaks": {"after": 1, "error": "0x800706BA"}}}})");
    ASSERT_EQ(Query(services_, enumerator_, L"Select * from Win32_DiskDrive"), S_OK);
    EXPECT_EQ(Fetch(enumerator_, instance_), S_OK);
    EXPECT_EQ(Value(L"Index").ulVal, 0ul);
    EXPECT_EQ(Fetch(enumerator_, instance_), kServerUnavailable);
    ASSERT_EQ(enumerator_->Reset(), S_OK);
    EXPECT_EQ(enumerator_->Skip(-1, 2), kServerUnavailable);
    EXPECT_EQ(enumerator_->Skip(-1, 1), S_OK);
    EXPECT_EQ(enumerator_->Skip(-1, 1), kServerUnavailable);
}

TEST_F(Wmi, BrokenList_EndsByTheErrorEvenBehindTheLastObject) {
    Start(R"({"wmi": {"Win32_Processor": {"breaks": {"after": 1, "error": "0x800706BA"}}}})");
    ASSERT_EQ(Query(services_, enumerator_, L"Select * from Win32_Processor"), S_OK);
    EXPECT_EQ(Fetch(enumerator_, instance_), S_OK);
    EXPECT_EQ(Fetch(enumerator_, instance_), kServerUnavailable);
}

TEST_F(Wmi, DriveWithoutNumber_HasTheIndexThatEitherPageNames) {
    Start(R"({"disks": [{"index": 0, "size": "1 GiB"}],
              "wmi": {"Win32_DiskDrive": [{"Index": 0}, {"Index": 255}, {"Index": -1}]}})");
    ASSERT_EQ(Query(services_, enumerator_, L"Select * from Win32_DiskDrive"), S_OK);
    for (const ULONG index : {0ul, 0xFFul, 0xFFFFFFFFul}) {
        ASSERT_EQ(Fetch(enumerator_, instance_), S_OK);
        EXPECT_EQ(Value(L"Index").vt, VT_I4);
        EXPECT_EQ(Value(L"Index").ulVal, index);
    }
}

TEST_F(Wmi, OtherNamespace_IsRefused) {
    Start("{}");
    Services other;
    EXPECT_EQ(Connect(other, L"root\\default"), kInvalidNamespace);
    EXPECT_EQ(Connect(other, L"ROOT\\CIMV2"), S_OK);
}

TEST_F(Wmi, Query_IsReadWithoutRegardToCase) {
    Start("{}");
    EXPECT_EQ(Query(services_, enumerator_, L"SELECT * FROM win32_processor"), S_OK);
    EXPECT_EQ(Query(services_, enumerator_, L"select Name, Caption from Win32_Processor"), S_OK);
    EXPECT_EQ(Query(services_, enumerator_, L"give me all"), kInvalidQuery);
    EXPECT_EQ(Query(services_, enumerator_, L"Select * from Win32_Processor", kReturnImmediately, L"SQL"),
              kInvalidQueryType);
}

TEST_F(Wmi, UnknownClass_FailsAtTheFirstFetchOrAtOnce) {
    Start("{}");
    ASSERT_EQ(Query(services_, enumerator_, L"Select * from Win32_Nothing"), S_OK);
    EXPECT_EQ(enumerator_->Reset(), S_OK);
    EXPECT_EQ(Fetch(enumerator_, instance_), kInvalidClass);
    Enumerator other;
    EXPECT_EQ(Query(services_, other, L"Select * from Win32_Nothing", 0), kInvalidClass);
}

TEST_F(Wmi, ClassThatIsNull_IsUnknown) {
    Start(R"({"wmi": {"Win32_Processor": null, "Win32_DiskDrive": []}})");
    ASSERT_EQ(Query(services_, enumerator_, L"Select * from Win32_Processor"), S_OK);
    EXPECT_EQ(Fetch(enumerator_, instance_), kInvalidClass);
    ASSERT_EQ(Query(services_, enumerator_, L"Select * from Win32_DiskDrive"), S_OK);
    EXPECT_EQ(Fetch(enumerator_, instance_), kEnd);
}

TEST_F(Wmi, Enumerator_EndsStartsAgainAndSkips) {
    Start(R"({"disks": [{"index": 0, "size": "1 GiB"}, {"index": 7, "size": "1 GiB"},
                        {"index": 5, "size": "1 GiB", "wmi": false}]})");
    ASSERT_EQ(Query(services_, enumerator_, L"Select * from Win32_DiskDrive"), S_OK);
    ASSERT_EQ(Fetch(enumerator_, instance_), S_OK);
    EXPECT_EQ(Value(L"Index").lVal, 0);
    ASSERT_EQ(Fetch(enumerator_, instance_), S_OK);
    EXPECT_EQ(Value(L"Index").lVal, 7);
    EXPECT_EQ(Fetch(enumerator_, instance_), kEnd);
    EXPECT_EQ(enumerator_->Reset(), S_OK);
    EXPECT_EQ(enumerator_->Skip(-1, 1), S_OK);
    IEnumWbemClassObject* copy = nullptr;
    ASSERT_EQ(enumerator_->Clone(&copy), S_OK);
    ASSERT_EQ(Fetch(enumerator_, instance_), S_OK);
    EXPECT_EQ(Value(L"Index").lVal, 7);
    Enumerator cloned(copy, false);
    ASSERT_EQ(Fetch(cloned, instance_), S_OK);
    EXPECT_EQ(Value(L"Index").lVal, 7);
}

TEST_F(Wmi, Enumerator_GivesSeveralAtOnce) {
    Start(R"({"disks": [{"index": 0, "size": "1 GiB"}, {"index": 1, "size": "1 GiB"}]})");
    ASSERT_EQ(Query(services_, enumerator_, L"Select * from Win32_DiskDrive"), S_OK);
    IWbemClassObject* objects[3] = {};
    ULONG returned = 0;
    EXPECT_EQ(enumerator_->Next(-1, 3, objects, &returned), kEnd);
    EXPECT_EQ(returned, 2u);
    EXPECT_EQ(objects[2], nullptr);
    objects[0]->Release();
    objects[1]->Release();
}

TEST_F(Wmi, Enumerator_GivesNothingToWhoDoesNotWait) {
    Start("{}");
    ASSERT_EQ(Query(services_, enumerator_, L"Select * from Win32_Processor"), S_OK);
    IWbemClassObject* object = nullptr;
    ULONG returned = 1;
    EXPECT_EQ(enumerator_->Next(0, 1, &object, &returned), kTimedOut);
    EXPECT_EQ(enumerator_->Next(60'000, 1, &object, &returned), kTimedOut);
    EXPECT_EQ(returned, 0u);
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(Fetch(enumerator_, instance_), S_OK);
}

TEST_F(Wmi, ForwardOnly_CannotStartAgain) {
    Start("{}");
    ASSERT_EQ(Query(services_, enumerator_, L"Select * from Win32_Processor", kReturnImmediately | 0x20),
              S_OK);
    EXPECT_EQ(enumerator_->Reset(), kInvalidOperation);
}

}  // namespace
}  // namespace machine_test
