#include "machine/session/session.h"

#include "machine/test_machine.h"

#include <gtest/gtest.h>
#include <ole2.h>

#include <stdexcept>
#include <string>

namespace machine_test {
namespace {

constexpr CLSID kDomDocument = {0xF5078F32, 0xC551, 0x11D3, {0x89, 0xB9, 0x00, 0x00, 0xF8, 0x1F, 0xE2, 0x21}};

std::wstring ScratchKey() {
    return L"Software\\DescribedMachine-" + std::to_wstring(GetCurrentProcessId());
}

bool CanMakeDom() {
    IUnknown* dom = nullptr;
    const HRESULT result = CoCreateInstance(kDomDocument, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown,
                                            reinterpret_cast<void**>(&dom));
    if (SUCCEEDED(result)) {
        dom->Release();
    }
    return SUCCEEDED(result);
}

struct Value {
    LSTATUS status = 0;
    DWORD type = 0;
    std::vector<unsigned char> data;
};

Value Read(const wchar_t* key_path, const wchar_t* name) {
    Value value;
    HKEY key = nullptr;
    value.status = RegOpenKeyExW(HKEY_LOCAL_MACHINE, key_path, 0, KEY_READ, &key);
    if (value.status == ERROR_SUCCESS) {
        DWORD size = 1024;
        value.data.resize(size);
        value.status = RegQueryValueExW(key, name, nullptr, &value.type, value.data.data(), &size);
        value.data.resize(size);
        RegCloseKey(key);
    }
    return value;
}

TEST(Session, LocalMachine_HoldsTheDescribedValuesOnly) {
    {
        machine::Session session(Parse(R"({"registry": {"SYSTEM\\CurrentControlSet\\Control": {
            "SystemStartOptions": " NOEXECUTE=OPTIN", "Number": 258, "List": ["a", "bc"],
            "Bytes": {"type": "REG_BINARY", "value": "01 02ff"},
            "Odd": {"type": "REG_SZ", "bytes": "4100"}, "Strange": {"type": 77, "value": "09"}}}})"));
        const wchar_t* path = L"SYSTEM\\CurrentControlSet\\Control";
        Value value = Read(path, L"SystemStartOptions");
        EXPECT_EQ(value.type, DWORD{REG_SZ});
        EXPECT_EQ(value.data.size(), 17u * 2);  // includes the terminator
        EXPECT_STREQ(reinterpret_cast<const wchar_t*>(value.data.data()), L" NOEXECUTE=OPTIN");
        value = Read(path, L"Number");
        EXPECT_EQ(value.type, DWORD{REG_DWORD});
        EXPECT_EQ(value.data, (std::vector<unsigned char>{2, 1, 0, 0}));
        value = Read(path, L"List");
        EXPECT_EQ(value.type, DWORD{REG_MULTI_SZ});
        EXPECT_EQ(value.data, (std::vector<unsigned char>{'a', 0, 0, 0, 'b', 0, 'c', 0, 0, 0, 0, 0}));
        value = Read(path, L"Bytes");
        EXPECT_EQ(value.type, DWORD{REG_BINARY});
        EXPECT_EQ(value.data, (std::vector<unsigned char>{1, 2, 255}));
        value = Read(path, L"Odd");
        EXPECT_EQ(value.type, DWORD{REG_SZ});
        EXPECT_EQ(value.data, (std::vector<unsigned char>{'A', 0}));
        value = Read(path, L"Strange");
        EXPECT_EQ(value.type, 77u);
        EXPECT_EQ(Read(L"SOFTWARE\\Microsoft", L"").status, ERROR_FILE_NOT_FOUND);
    }
    HKEY key = nullptr;
    EXPECT_EQ(RegOpenKeyExW(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Microsoft", 0, KEY_READ, &key), ERROR_SUCCESS);
    RegCloseKey(key);
    EXPECT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, ScratchKey().c_str(), 0, KEY_READ, &key),
              ERROR_FILE_NOT_FOUND);
}

TEST(Session, WithoutDescribedRegistry_HasTheUsualStartOptions) {
    machine::Session session(Parse("{}"));
    EXPECT_EQ(Read(L"SYSTEM\\CurrentControlSet\\Control", L"SystemStartOptions").status, ERROR_SUCCESS);
}

TEST(Session, EmptyRegistry_HasNoKey) {
    machine::Session session(Parse(R"({"registry": {}})"));
    EXPECT_EQ(Read(L"SYSTEM\\CurrentControlSet\\Control", L"SystemStartOptions").status,
              ERROR_FILE_NOT_FOUND);
}

TEST(Session, DomComponent_CanBeMadeWhileItLasts) {
    machine::Session session(Parse("{}"));
    EXPECT_TRUE(CanMakeDom());
}

TEST(Session, Multithreaded_HasComInThatApartment) {
    machine::Session session(Parse("{}"), machine::SessionCom::kMultithreaded);
    EXPECT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), RPC_E_CHANGED_MODE);
    EXPECT_TRUE(CanMakeDom());
}

TEST(Session, XmlComponentFalse_HidesTheComponentForItsLifetime) {
    ASSERT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_OK);
    {
        machine::Session session(Parse(R"({"xmlComponent": false})"), machine::SessionCom::kCallers);
        IUnknown* dom = nullptr;
        EXPECT_EQ(CoCreateInstance(kDomDocument, nullptr, CLSCTX_SERVER, IID_IUnknown,
                                   reinterpret_cast<void**>(&dom)),
                  REGDB_E_CLASSNOTREG);
        EXPECT_EQ(dom, nullptr);
    }
    EXPECT_TRUE(CanMakeDom());
    CoUninitialize();
}

TEST(Session, CallersWithoutCom_IsRefused) {
    EXPECT_THROW(machine::Session session(Parse("{}"), machine::SessionCom::kCallers), std::runtime_error);
    EXPECT_EQ(machine::Simulation::Current(), nullptr);
}

TEST(Session, CallersCom_IsUsedAndLeftAlone) {
    ASSERT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_OK);
    {
        machine::Session session(Parse("{}"), machine::SessionCom::kCallers);
        EXPECT_TRUE(CanMakeDom());
    }
    EXPECT_TRUE(CanMakeDom());
    CoUninitialize();
}

}  // namespace
}  // namespace machine_test
