#pragma once

#include "common/disk/device_manager.h"
#include "support/each_of.h"

#include <initializer_list>
#include <string>
#include <vector>

// Device managers whose list of disks the test sets.
namespace listed {

class Disks : public bmr_common::DeviceManager {
public:
    explicit Disks(std::initializer_list<const wchar_t*> keys = {}, bool listing_succeeds = true)
        : keys_(keys), listing_succeeds_(listing_succeeds) {}

    bool ObtainPhysicalDrivesIndexes() override {
        for (const wchar_t* key : keys_) {
            disks_.try_emplace(key);
        }
        return listing_succeeds_;
    }

    void Put(const bmr_common::DiskDriveManagerPtr& disk) {
        disks_[std::to_wstring(disk->disk_index())] = disk;
    }
    void PutNothing(const wchar_t* key) { disks_[key] = nullptr; }
    void SetFactory(const boost::shared_ptr<bmr_common::DiskDriveManagerFactory>& factory) {
        factory_ = factory;
    }

private:
    std::vector<const wchar_t*> keys_;
    bool listing_succeeds_;
};

// The numbers of the disks, as the manager orders them.
inline std::vector<std::wstring> Keys(const bmr_common::DeviceManager& manager) {
    return support::EachOf(manager.disks(), [](const auto& entry) { return entry.first; });
}

}  // namespace listed
