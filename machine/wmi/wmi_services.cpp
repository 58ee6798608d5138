#include "machine/wmi/wmi_services.h"

#include "machine/description/text.h"
#include "machine/description/wmi_defaults.h"
#include "machine/wmi/wmi_enumerator.h"

#include <algorithm>
#include <cwctype>
#include <memory>
#include <vector>

namespace machine {
namespace {

constexpr std::uint32_t kInvalidParameter = 0x80041008;  // WBEM_E_INVALID_PARAMETER
constexpr std::uint32_t kInvalidClass = 0x80041010;      // WBEM_E_INVALID_CLASS
constexpr std::uint32_t kInvalidQuery = 0x80041017;      // WBEM_E_INVALID_QUERY
constexpr std::uint32_t kInvalidQueryType = 0x80041018;  // WBEM_E_INVALID_QUERY_TYPE
constexpr LONG kReturnImmediately = 0x10;
constexpr LONG kForwardOnly = 0x20;

std::vector<std::wstring> Words(const std::wstring& text) {
    std::vector<std::wstring> words;
    std::wstring word;
    for (const wchar_t c : text + L" ") {
        if (std::iswspace(c) == 0) {
            word += c;
        } else if (!word.empty()) {
            words.push_back(word);
            word.clear();
        }
    }
    return words;
}

const WmiClass* KnownClass(const std::wstring& name) {
    const Simulation* simulation = Simulation::Current();
    if (simulation == nullptr) {
        return nullptr;
    }
    const auto found = simulation->machine().wmi.find(WmiClassKey(name));
    return found == simulation->machine().wmi.end() ? nullptr : &found->second;
}

// The error of a query; 0 if there is none. An unknown class is an error here only if the caller waits for
// the query; otherwise the enumerator reports it.
std::uint32_t Objection(const wchar_t* language, const std::wstring& class_name, const WmiClass* known,
                        LONG flags) {
    if (language == nullptr) {
        return kInvalidParameter;
    }
    if (!EqualNames(language, L"WQL")) {
        return kInvalidQueryType;
    }
    if (class_name.empty()) {
        return kInvalidQuery;
    }
    return known == nullptr && (flags & kReturnImmediately) == 0 ? kInvalidClass : 0;
}

}  // namespace

std::wstring QueriedClass(const std::wstring& query) {
    const std::vector<std::wstring> words = Words(query);
    if (words.size() < 4 || !EqualNames(words.front(), L"select") ||
        !EqualNames(words[words.size() - 2], L"from")) {
        return {};
    }
    return words.back();
}

WmiServices::WmiServices() : ComObject(IID_IWbemServices) {}

void* WmiServices::Offer(REFIID iid) {
    if (IsEqualIID(iid, IID_IClientSecurity)) {
        return static_cast<IClientSecurity*>(&security_);
    }
    return ComObject::Offer(iid);
}

HRESULT STDMETHODCALLTYPE WmiServices::ExecQuery(const BSTR language, const BSTR query, LONG flags,
                                                 IWbemContext* /*context*/,
                                                 IEnumWbemClassObject** enumerator) {
    if (enumerator == nullptr) {
        return AsHresult(kInvalidParameter);
    }
    *enumerator = nullptr;
    return GuardedCom([&] {
        const std::wstring class_name = query == nullptr ? std::wstring() : QueriedClass(query);
        const WmiClass* known = KnownClass(class_name);
        IEnumWbemClassObject* made = nullptr;
        const HRESULT result = PerformCom(
            "IWbemServices::ExecQuery", class_name, known == nullptr ? nullptr : &known->errors, [&] {
                const std::uint32_t error = Objection(language, class_name, known, flags);
                if (error != 0) {
                    return Answer::Failure(error);
                }
                auto found = std::make_shared<WmiResult>();
                found->class_name = class_name;
                if (known != nullptr) {
                    found->found = *known;
                }
                made = new WmiEnumerator(found, known == nullptr ? kInvalidClass : 0,
                                         (flags & kForwardOnly) != 0);
                return Answer{};
            });
        if (FAILED(result) && made != nullptr) {
            made->Release();
            made = nullptr;
        }
        *enumerator = made;
        return result;
    });
}

}  // namespace machine
