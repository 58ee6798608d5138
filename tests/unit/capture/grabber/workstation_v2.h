#pragma once

#include "capture/grabber/info_grabber_v2.h"
#include "machine/description/wmi_defaults.h"
#include "support/logger_capture.h"
#include "unit/capture/grabber/example_machine.h"

#include <gtest/gtest.h>

#include <optional>

// A format 2 grabber on the example workstation. A test may change the machine before it collects.
class InfoGrabberV2Test : public testing::Test {
protected:
    InfoGrabberV2Test() { Describe(ExampleMachine("uefi-workstation")); }

    void Describe(machine::Description description) {
        session_.reset();
        session_.emplace(std::move(description));
    }
    machine::Simulation& simulation() { return session_->simulation(); }
    machine::Description& description() { return simulation().description(); }
    machine::Volume& DataVolume() { return description().volumes.at(5); }
    std::vector<machine::WmiInstance>& Instances(const wchar_t* class_name) {
        return description().wmi[machine::WmiClassKey(class_name)].instances;
    }
    const EnvInfo& record() { return *grabber_.GetEnvInfo(); }

    support::LoggerCapture log_;
    std::optional<machine::Session> session_;
    orvane::InfoGrabberV2 grabber_;
};
