#pragma once

#include "machine/description/description.h"

#include <string>
#include <vector>

namespace machine {

// Redirects HKEY_LOCAL_MACHINE of this process to a scratch key with the described values for the lifetime
// of the object. Only one may exist at a time.
class RegistryOverride {
public:
    // Throws std::runtime_error; the registry is then left as it was.
    explicit RegistryOverride(const std::vector<RegistryKey>& keys);
    ~RegistryOverride();

    RegistryOverride(const RegistryOverride&) = delete;
    RegistryOverride& operator=(const RegistryOverride&) = delete;

private:
    void Fill(const std::vector<RegistryKey>& keys);
    void Remove() noexcept;

    std::wstring path_;  // below HKEY_CURRENT_USER
    HKEY key_ = nullptr;
};

}  // namespace machine
