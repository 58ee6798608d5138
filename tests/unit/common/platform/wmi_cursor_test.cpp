#include "support/stub.h"
#include "wmi_machine.h"

#include <string>
#include <vector>

namespace {

using support::Error;
using support::StubImport;
using testing::ElementsAre;
using testing::IsEmpty;

class WmiCursor : public WmiMachine {
protected:
    WmiCursor() : WmiMachine(R"({"Name": "first"}, {"Name": "second"}, {"Name": "third"})") {}

    static std::wstring NameOf(CWmi& wmi) {
        std::wstring name = L"(none)";
        wmi.Get(L"Name", name);
        return name;
    }
    // Expects that construction fails with this log line, and that every later call fails.
    void ExpectFailed(const std::string& line, std::size_t queries) {
        {
            CWmi wmi(kQuery);
            EXPECT_FALSE(wmi.initialized());
            EXPECT_FALSE(wmi.FindFirstObject());
            EXPECT_FALSE(wmi.FindNextObject());
            EXPECT_EQ(NameOf(wmi), L"(none)");
        }
        EXPECT_THAT(log_.all(), ElementsAre(Error(line))) << log_;
        EXPECT_EQ(simulation().calls().Count("IWbemServices::ExecQuery"), queries);
        EXPECT_EQ(simulation().live_objects(), 0U);
    }
};

TEST_F(WmiCursor, Walk_ThreeObjects_GivesThemInTheirOrder) {
    CWmi wmi(kQuery);
    std::vector<std::wstring> names;

    for (bool found = wmi.FindFirstObject(); found; found = wmi.FindNextObject()) {
        names.push_back(NameOf(wmi));
    }

    EXPECT_THAT(names, ElementsAre(L"first", L"second", L"third"));
}

TEST_F(WmiCursor, FindFirstObject_Twice_StartsAnew) {
    CWmi wmi(kQuery);
    ASSERT_TRUE(wmi.FindFirstObject());
    ASSERT_TRUE(wmi.FindNextObject());

    EXPECT_TRUE(wmi.FindFirstObject());

    EXPECT_EQ(NameOf(wmi), L"first");
}

TEST_F(WmiCursor, FindNextObject_PastTheEnd_LeavesNoCurrentObject) {
    CWmi wmi(kQuery);
    ASSERT_TRUE(wmi.FindFirstObject());
    ASSERT_TRUE(wmi.FindNextObject());
    ASSERT_TRUE(wmi.FindNextObject());

    EXPECT_FALSE(wmi.FindNextObject());

    std::wstring text = L"kept";
    int number = 5;
    std::vector<std::wstring> list = {L"kept"};
    EXPECT_FALSE(wmi.Get(L"Name", text));
    EXPECT_FALSE(wmi.Get(L"Name", number));
    EXPECT_FALSE(wmi.Get(L"Name", list));
    EXPECT_EQ(text, L"kept");
    EXPECT_THAT(list, ElementsAre(L"kept"));
    EXPECT_FALSE(wmi.FindNextObject());
}

TEST_F(WmiCursor, Get_BeforeTheFirstObject_IsFalse) {
    CWmi wmi(kQuery);
    std::wstring text = L"kept";
    EXPECT_FALSE(wmi.Get(L"Name", text));
    EXPECT_EQ(text, L"kept");
}

TEST_F(WmiCursor, FindNextObject_Always_ReleasesTheObjectBefore) {
    CWmi wmi(kQuery);
    ASSERT_TRUE(wmi.FindFirstObject());
    const std::size_t with_one = simulation().live_objects();

    ASSERT_TRUE(wmi.FindNextObject());
    EXPECT_EQ(simulation().live_objects(), with_one);
    ASSERT_TRUE(wmi.FindNextObject());
    ASSERT_FALSE(wmi.FindNextObject());

    EXPECT_EQ(simulation().live_objects(), with_one - 1);
}

TEST_F(WmiCursor, FindFirstObject_ResetFails_IsFalse) {
    simulation().faults().Fail("IEnumWbemClassObject::Reset", 0x80041016);
    CWmi wmi(kQuery);
    EXPECT_FALSE(wmi.FindFirstObject());
    EXPECT_EQ(simulation().calls().Count("IEnumWbemClassObject::Next"), 0U);
}

TEST_F(WmiCursor, FindFirstObject_ResetGivesASuccessBesideZero_IsFalse) {
    simulation().faults().Alter("IEnumWbemClassObject::Reset",
                                [](machine::Answer& answer) { answer.error = 1; });
    CWmi wmi(kQuery);
    EXPECT_FALSE(wmi.FindFirstObject());
}

TEST_F(WmiCursor, FindNextObject_SystemFails_ClearsTheCurrentObject) {
    CWmi wmi(kQuery);
    ASSERT_TRUE(wmi.FindFirstObject());
    ASSERT_EQ(NameOf(wmi), L"first");
    simulation().faults().Fail("IEnumWbemClassObject::Next", 0x80041003);

    EXPECT_FALSE(wmi.FindNextObject());

    EXPECT_EQ(NameOf(wmi), L"(none)");
}

TEST_F(WmiCursor, FindNextObject_ObjectWithASuccessBesideZero_IsReleasedAndNotTaken) {
    CWmi wmi(kQuery);
    ASSERT_TRUE(wmi.FindFirstObject());
    const std::size_t with_one = simulation().live_objects();
    simulation().faults().Alter("IEnumWbemClassObject::Next",
                                [](machine::Answer& answer) { answer.error = 1; });

    EXPECT_FALSE(wmi.FindNextObject());

    EXPECT_EQ(NameOf(wmi), L"(none)");
    EXPECT_EQ(simulation().live_objects(), with_one - 1);
}

TEST_F(WmiCursor, FindNextObject_ClassWithoutAnEnd_IsGivenUp) {
    simulation().calls().SetKept(false);
    simulation().description().wmi.begin()->second.instances.resize(100'001);
    CWmi wmi(kQuery);
    int found = 0;

    for (bool more = wmi.FindFirstObject(); more; more = wmi.FindNextObject()) {
        ++found;
    }

    EXPECT_EQ(found, 100'000);
    EXPECT_THAT(log_.all(), ElementsAre(Error("CWmi::Fetch gave up after 100000 objects")));
}

struct FailingStep {
    const char* call;
    std::uint32_t code;
    const char* line;
    std::size_t queries;
};

class FailingWmiCursor : public WmiCursor, public testing::WithParamInterface<FailingStep> {};

TEST_P(FailingWmiCursor, Construction_StepFails_NamesIt) {
    simulation().faults().Fail(GetParam().call, GetParam().code);
    ExpectFailed(GetParam().line, GetParam().queries);
}

INSTANTIATE_TEST_SUITE_P(
    Steps, FailingWmiCursor,
    testing::Values(FailingStep{"IClassFactory::CreateInstance", 0x80040154,
                                "CWmi::CWmi CoCreateInstance failed error 0x80040154", 0},
                    FailingStep{"IWbemLocator::ConnectServer", 0x8004100E,
                                "CWmi::CWmi ConnectServer failed error 0x8004100e", 0},
                    FailingStep{"IClientSecurity::SetBlanket", 0x80070005,
                                "CWmi::CWmi CoSetProxyBlanket failed error 0x80070005", 0},
                    FailingStep{"IWbemServices::ExecQuery", 0x80041017,
                                "CWmi::CWmi ExecQuery failed error 0x80041017", 1}));

TEST_F(WmiCursor, Construction_Locator_IsCreatedAsAnUnknown) {
    GUID clsid{};
    GUID iid{};
    DWORD context = 0;
    bool outer = true;
    const StubImport create("CoCreateInstance", &::CoCreateInstance,
                            [&](REFCLSID asked_clsid, IUnknown* asked_outer, DWORD asked_context,
                                REFIID asked_iid, void** object) -> HRESULT {
                                clsid = asked_clsid;
                                iid = asked_iid;
                                context = asked_context;
                                outer = asked_outer != nullptr;
                                *object = nullptr;
                                return E_FAIL;
                            });

    const CWmi wmi(kQuery);

    constexpr GUID kLocator = {0xcb8555cc, 0x9128, 0x11d1, {0xad, 0x9b, 0x00, 0xc0, 0x4f, 0xd8, 0xfd, 0xff}};
    EXPECT_FALSE(wmi.initialized());
    EXPECT_TRUE(IsEqualGUID(clsid, kLocator));
    EXPECT_TRUE(IsEqualGUID(iid, IID_IUnknown));
    EXPECT_EQ(context, 5U);
    EXPECT_FALSE(outer);
}

// Records the arguments of ConnectServer and fails.
class ListeningLocator final : public IWbemLocator {
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID /*iid*/, void** /*object*/) override {
        return E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references; }
    ULONG STDMETHODCALLTYPE Release() override { return --references; }
    HRESULT STDMETHODCALLTYPE ConnectServer(const BSTR asked_resource, const BSTR user, const BSTR password,
                                            const BSTR locale, LONG asked_flags, const BSTR authority,
                                            IWbemContext* context, IWbemServices** /*services*/) override {
        resource = asked_resource;
        flags = asked_flags;
        nothing_else = user == nullptr && password == nullptr && locale == nullptr && authority == nullptr &&
                       context == nullptr;
        return E_FAIL;
    }

    std::wstring resource;
    LONG flags = -1;
    bool nothing_else = false;
    ULONG references = 1;
};

TEST_F(WmiCursor, Construction_Connection_IsToTheNamespaceAndNothingElse) {
    ListeningLocator locator;
    const StubImport create("CoCreateInstance", &::CoCreateInstance,
                            [&](REFCLSID, IUnknown*, DWORD, REFIID, void** object) -> HRESULT {
                                *object = static_cast<IWbemLocator*>(&locator);
                                return S_OK;
                            });

    EXPECT_FALSE(CWmi(kQuery).initialized());

    EXPECT_EQ(locator.resource, L"root\\cimv2");
    EXPECT_EQ(locator.flags, 0);
    EXPECT_TRUE(locator.nothing_else);
    EXPECT_EQ(locator.references, 0U);
}

// Both proxies: that of the services, then that of the enumerator.
TEST_F(WmiCursor, Construction_Blankets_HaveTheAgreedLevels) {
    std::vector<DWORD> numbers;
    bool pointers = false;
    std::vector<bool> enumerators;
    const StubImport blanket(
        "CoSetProxyBlanket", &::CoSetProxyBlanket,
        [&](IUnknown* proxy, DWORD authentication, DWORD authorisation, OLECHAR* principal, DWORD level,
            DWORD impersonation, RPC_AUTH_IDENTITY_HANDLE identity, DWORD capabilities) -> HRESULT {
            numbers.insert(numbers.end(),
                           {authentication, authorisation, level, impersonation, capabilities});
            pointers = pointers || principal != nullptr || identity != nullptr;
            enumerators.push_back(WbemEnumeratorPtr(proxy) != nullptr);
            return S_OK;
        });

    const CWmi wmi(kQuery);

    EXPECT_TRUE(wmi.initialized());
    EXPECT_THAT(numbers, ElementsAre(10U, 0U, 3U, 3U, 0U, 10U, 0U, 3U, 3U, 0U));
    EXPECT_FALSE(pointers);
    EXPECT_THAT(enumerators, ElementsAre(false, true));
}

TEST_F(WmiCursor, Construction_EnumeratorsBlanketFails_IsIgnoredWithoutALine) {
    machine::FaultRule second;
    second.name = "IClientSecurity::SetBlanket";
    second.ordinal = 2;
    second.codes.com = 0x80004002;
    simulation().faults().Add(second);

    CWmi wmi(kQuery);

    EXPECT_EQ(simulation().faults().hits(), 1U);
    EXPECT_TRUE(wmi.initialized());
    EXPECT_TRUE(wmi.FindFirstObject());
    EXPECT_THAT(log_.all(), IsEmpty());
}

TEST_F(WmiCursor, Construction_CreationGivesNoPointer_FailsWithoutACrash) {
    const StubImport create("CoCreateInstance", &::CoCreateInstance,
                            [](REFCLSID, IUnknown*, DWORD, REFIID, void** object) -> HRESULT {
                                *object = nullptr;
                                return S_OK;
                            });

    CWmi wmi(kQuery);

    EXPECT_FALSE(wmi.initialized());
    EXPECT_FALSE(wmi.FindFirstObject());
}

}  // namespace
