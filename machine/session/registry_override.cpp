#include "machine/session/registry_override.h"

#include "machine/description/text.h"

#include <stdexcept>

namespace machine {
namespace {

void Check(LSTATUS status, const std::wstring& what) {
    if (status != ERROR_SUCCESS) {
        throw std::runtime_error("the registry refuses " + Narrow(what) + ", error " +
                                 std::to_string(status));
    }
}

class Key {
public:
    Key() = default;
    ~Key() {
        if (key_ != nullptr) {
            RegCloseKey(key_);
        }
    }
    Key(const Key&) = delete;
    Key& operator=(const Key&) = delete;

    HKEY get() const noexcept { return key_; }
    HKEY* put() noexcept { return &key_; }

private:
    HKEY key_ = nullptr;
};

// Volatile, so that keys left behind by a crashed run do not outlive the logon session.
LSTATUS Create(HKEY parent, const std::wstring& path, HKEY* key) {
    return RegCreateKeyExW(parent, path.c_str(), 0, nullptr, REG_OPTION_VOLATILE, KEY_ALL_ACCESS, nullptr,
                           key, nullptr);
}

}  // namespace

RegistryOverride::RegistryOverride(const std::vector<RegistryKey>& keys)
    : path_(L"Software\\DescribedMachine-" + std::to_wstring(GetCurrentProcessId())) {
    Check(Create(HKEY_CURRENT_USER, path_, &key_), path_);
    try {
        Fill(keys);
        Check(RegOverridePredefKey(HKEY_LOCAL_MACHINE, key_), L"the override of HKEY_LOCAL_MACHINE");
    } catch (...) {
        Remove();
        throw;
    }
}

RegistryOverride::~RegistryOverride() {
    RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr);
    Remove();
}

void RegistryOverride::Fill(const std::vector<RegistryKey>& keys) {
    for (const RegistryKey& described : keys) {
        Key key;
        Check(Create(key_, described.path, key.put()), described.path);
        for (const RegistryValue& value : described.values) {
            Check(RegSetValueExW(key.get(), value.name.c_str(), 0, value.type, value.data.data(),
                                 static_cast<DWORD>(value.data.size())),
                  described.path + L"\\" + value.name);
        }
    }
}

void RegistryOverride::Remove() noexcept {
    RegCloseKey(key_);
    RegDeleteTreeW(HKEY_CURRENT_USER, path_.c_str());
}

}  // namespace machine
