#pragma once

#include "machine/description.h"

#include <string>
#include <vector>

namespace machine {

// HKEY_LOCAL_MACHINE of this process is a scratch key with the described values while this lives. One at a
// time.
class RegistryOverride {
public:
    // Throws std::runtime_error, with nothing left behind.
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
