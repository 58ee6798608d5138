#include "documents/plan/target.h"

#include "documents/plan/planned_machine.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>

#ifdef __linux__
#include <sys/stat.h>
#include <sys/sysmacros.h>
#endif

namespace {

using namespace documents;
using namespace planned;
using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> Refusals(const Machine& machine, const TargetRequest& target) {
    const Plan plan = PlanOf(machine, {{}, {{0, target}}});
    EXPECT_TRUE(plan.refusals.empty() || plan.files.empty());
    return Lines(plan.refusals);
}

TEST(PlanTargets, SizeAndSectors_AreCompared) {
    const Machine machine = MachineOf({UsualDisk()});
    EXPECT_THAT(Refusals(machine, {{}, 10 * kMiB, 512}), IsEmpty());
    EXPECT_THAT(Refusals(machine, {{}, 10 * kMiB - 1, {}}), ElementsAre("P020 error disk 0"));
    EXPECT_THAT(Refusals(machine, {{}, 10 * kMiB, 4096}), ElementsAre("P021 error disk 0"));
}

TEST(PlanTargets, MissingTarget_CannotBeLookedAt) {
    EXPECT_THROW(PlanOf(MachineOf({UsualDisk()}), {{}, {{0, {ORVANE_BINARY_DIR "/no such target", {}, {}}}}}),
                 TargetError);
    EXPECT_THROW(PlanOf(MachineOf({UsualDisk()}), {{}, {{0, {ORVANE_BINARY_DIR, {}, {}}}}}), TargetError);
}

// An image that is not blank: its first byte is 1.
std::string UsedImage(const std::string& name) {
    const std::string path = ORVANE_BINARY_DIR "/" + name;
    std::ofstream(path, std::ios::binary) << '\x01';
    std::filesystem::resize_file(path, 20 * kMiB);
    return path;
}

TEST(PlanTargets, TargetOfADiskWithoutAScript_IsLookedAtToo) {
    const std::string image = UsedImage("used.img");
    const Machine machine = MachineOf({EmptyDisk(0, Style::kRaw), UsualDisk(1)});
    const Plan one = PlanOf(machine, {{}, {{0, {image, {}, {}}}}});
    EXPECT_THAT(Lines(one.refusals), ElementsAre("P023 error disk 0"));
    const Plan both = PlanOf(machine, {{}, {{0, {image, {}, {}}}, {1, {image, {}, {}}}}});
    EXPECT_THAT(Lines(both.refusals),
                ElementsAre("P023 error disk 0", "P023 error disk 1", "P022 error disk 1"));
    std::filesystem::remove(image);
}

TEST(PlanTargets, DeviceWithOtherSectorsThanTheUserSays_IsRefused) {
    Target target{"/dev/sdb", {}, 4096};
    EXPECT_THROW(SetDeviceFacts(target, 20 * kMiB, 512), TargetError);
    SetDeviceFacts(target, 20 * kMiB, 4096);
    EXPECT_EQ(target.size, 20 * kMiB);
    Target unknown{"/dev/sdb", {}, {}};
    SetDeviceFacts(unknown, 20 * kMiB, 512);
    EXPECT_EQ(unknown.sector_size, 512U);
}

#ifdef __linux__
TEST(PlanTargets, NodesOfOneDevice_AreTheSameTarget) {
    const auto node = [](const std::string& name, unsigned minor) {
        std::string path = ORVANE_BINARY_DIR "/" + name;
        std::filesystem::remove(path);
        return mknod(path.c_str(), S_IFBLK | S_IRUSR, makedev(7, minor)) == 0 ? path : "";
    };
    const std::string one = node("node-one", 0);
    if (one.empty()) {
        GTEST_SKIP() << "no right to make a node";
    }
    const std::string same = node("node-same", 0);
    const std::string other = node("node-other", 1);
    EXPECT_TRUE(SameTarget({one, {}, {}, true}, {same, {}, {}, true}));
    EXPECT_FALSE(SameTarget({one, {}, {}, true}, {other, {}, {}, true}));
    for (const std::string& path : {one, same, other}) {
        std::filesystem::remove(path);
    }
}
#endif

#ifdef _WIN32
TEST(PlanTargets, DeviceOfWindows_CannotBeLookedAt) {
    for (const char* const path : {R"(\\.\PhysicalDrive0)", "//./PhysicalDrive0"}) {
        try {
            LookAt({path, {}, {}});
            ADD_FAILURE() << path;
        } catch (const TargetError& error) {
            EXPECT_THAT(error.what(), testing::HasSubstr("only images can be looked at"));
        }
    }
}
#endif

}  // namespace
