#pragma once

#include "capture/grabber/info_grabber.h"

// The base class with stub overrides, on a record that the test passes in.
class FakeGrabber : public orvane::InfoGrabber {
public:
    explicit FakeGrabber(boost::shared_ptr<EnvInfo> environment = {})
        : environment_(std::move(environment)) {}

    using InfoGrabber::CanBackup;

    bool ObtainInformation() override { return true; }
    bool CanBackup(const std::vector<std::wstring>& /*volumes*/,
                   const std::vector<orvane::RequestedDisk>& /*disks*/, bool /*all_volumes*/) override {
        return true;
    }
    boost::shared_ptr<EnvInfo> GetEnvInfo() override { return environment_; }
    void DumpVolumeInfo() override {}

private:
    boost::shared_ptr<EnvInfo> environment_;
};
