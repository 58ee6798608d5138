// Makes each call of a capture fail in turn, on a machine with volumes that cannot be backed up. The result
// must be a valid status and, on failure, an error line. tests/faults does more of this, on the example
// machines.

#include "export/capture_fixture.h"
#include "support/xml_tree.h"
#include "unit/capture/grabber/mixed_machine.h"

namespace {

class FaultSweep : public CaptureTest {
protected:
    FaultSweep() : CaptureTest(MixedMachine()) { library_.Select({kGoodVolume}); }

    // Checks that the status is one of the documented ones and that nothing leaked.
    void ExpectOrder(const Captured& captured, const std::string& what) {
        EXPECT_EQ(simulation().open_handles(), 0U) << what;
        EXPECT_EQ(simulation().live_objects(), 0U) << what;
        EXPECT_EQ(simulation().stale_handle_uses(), 0U) << what;
        if (captured.status == ORVANE_SUCCESS) {
            EXPECT_NO_THROW(XmlTree::Of(captured.buffer.substr(0, captured.required_size))) << what;
        } else {
            EXPECT_EQ(captured.status, ORVANE_FAILED) << what;
            EXPECT_EQ(captured.required_size, Captured::kUntouched) << what;
            EXPECT_FALSE(log_.Lines(support::kHostError).empty()) << what;
        }
    }
};

TEST_F(FaultSweep, EachCallFailing_LeavesOrder) {
    constexpr std::size_t kMostCalls = 5000;
    std::size_t step = 1;
    for (; step < kMostCalls; ++step) {
        simulation().calls().Clear();
        simulation().faults().Clear();
        simulation().faults().FailOrdinal(step, false);
        const std::size_t hits = simulation().faults().hits();
        log_.Clear();
        const Captured captured = Capture(100000);
        if (simulation().faults().hits() == hits) {
            break;
        }
        const auto& records = simulation().calls().records();
        const std::string what = step <= records.size() ? records[step - 1].name : "?";
        ExpectOrder(captured, "call " + std::to_string(step) + ", " + what);
    }
    EXPECT_GT(step, 50U);
    EXPECT_LT(step, kMostCalls);
}

}  // namespace
