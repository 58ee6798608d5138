#include "common/volume/volume_manager.h"
#include "support/logger_capture.h"
#include "unit/common/volume/described_volumes.h"

#include <gtest/gtest.h>

#include <cstddef>

// Makes each call of a discovery fail, once alone and once with all later calls.
namespace bmr_common {
namespace {

// Returns true if a call with this number was made and failed. The Machine checks for leaked handles.
bool DiscoverWithFault(std::size_t ordinal, bool from_there_on) {
    const support::LoggerCapture log;
    described::Machine machine;
    machine.volume(0).guid.clear();
    machine::FaultPlan& faults = machine.simulation().faults();
    faults.FailOrdinal(ordinal, from_there_on);
    VolumeManager manager;

    bool discovered = false;
    EXPECT_NO_THROW(discovered = manager.InitializeWithCurrentVolumes(machine.disks(), L"", L"")) << ordinal;

    EXPECT_EQ(discovered, manager.IsSucceeded(L"Find Volume")) << ordinal;
    EXPECT_EQ(!discovered, manager.IsFailed(L"Find Volume")) << ordinal;
    EXPECT_TRUE(discovered || manager.volumes().empty()) << ordinal;
    EXPECT_NO_THROW(manager.DumpInfo()) << ordinal;
    return faults.hits() != 0;
}

TEST(VolumeFaultSweepTest, EachCallFails_DiscoveryEndsOrderly) {
    for (const bool from_there_on : {false, true}) {
        std::size_t ordinal = 1;
        while (DiscoverWithFault(ordinal, from_there_on)) {
            ++ordinal;
        }
        EXPECT_GT(ordinal, 40U)
            << "the directories, the enumeration, the links and two volumes are more calls";
    }
}

}  // namespace
}  // namespace bmr_common
