#include "common/disk/operation_status.h"

#include "support/logger_capture.h"

#include <gmock/gmock.h>

#include <exception>
#include <functional>
#include <string>
#include <vector>

namespace bmr_common {
namespace {

using support::Error;
using support::Info;
using testing::ElementsAre;
using testing::IsEmpty;

const std::wstring kFirst = L"Getting Drive Layout Ex";
const std::wstring kSecond = L"Verifying partition type";

class OperationStatusTest : public testing::Test {
protected:
    std::vector<std::wstring> Errors() const {
        std::vector<std::wstring> errors;
        status_.GetErrors(errors);
        return errors;
    }

    // The message of the exception that `misuse` throws; empty if it does not throw.
    template <class Misuse>
    static std::string Thrown(Misuse&& misuse) {
        try {
            misuse();
        } catch (const std::exception& error) {
            return error.what();
        }
        return {};
    }

    OperationStatus status_{kFirst, kSecond};
    support::LoggerCapture log_;
};

TEST_F(OperationStatusTest, SetSuccess_Initial_MarksThisRecordOnly) {
    const OperationStatus::Operation& record = status_.SetSuccess(kFirst);

    EXPECT_EQ(&status_.FindOperation(kFirst), &record);
    EXPECT_EQ(OperationStatus::kSuccess, record.state);
    EXPECT_TRUE(status_.IsSucceeded(kFirst));
    EXPECT_FALSE(status_.IsFailed(kFirst));
    EXPECT_FALSE(status_.IsSucceeded(kSecond));
    EXPECT_FALSE(status_.HasErrors());
}

TEST_F(OperationStatusTest, SetError_Initial_StoresTheText) {
    status_.SetError(kSecond, L"why");

    EXPECT_TRUE(status_.IsFailed(kSecond));
    EXPECT_FALSE(status_.IsSucceeded(kSecond));
    EXPECT_EQ(L"why", status_.FindOperation(kSecond).error);
    EXPECT_TRUE(status_.HasErrors());
    EXPECT_EQ(1U, status_.ErrorCount());
}

TEST_F(OperationStatusTest, GetErrors_SetInAnotherOrder_FollowsTheNames) {
    status_.SetError(kSecond, L"second");
    status_.SetError(kFirst, L"first");

    EXPECT_THAT(Errors(), ElementsAre(L"first", L"second"));
}

TEST_F(OperationStatusTest, SetSuccess_AfterSetError_ThrowsAndKeepsError) {
    status_.SetError(kFirst, L"why");

    EXPECT_EQ("OperationStatus::SetSuccess - operation not in kInitial state.",
              Thrown([&] { status_.SetSuccess(kFirst); }));
    EXPECT_TRUE(status_.IsFailed(kFirst));
    EXPECT_EQ(L"why", status_.FindOperation(kFirst).error);
    EXPECT_THAT(log_.Messages(),
                ElementsAre(Error("OperationStatus::SetSuccess - operation not in kInitial state. "
                                  "Code will throw exception.")));
}

TEST_F(OperationStatusTest, SetError_AfterSetSuccess_ThrowsAndKeepsSuccess) {
    status_.SetSuccess(kFirst);

    EXPECT_EQ("OperationStatus::SetError - operation not in kInitial state.",
              Thrown([&] { status_.SetError(kFirst, L"why"); }));
    EXPECT_TRUE(status_.IsSucceeded(kFirst));
    EXPECT_EQ(L"", status_.FindOperation(kFirst).error);
    EXPECT_THAT(log_.Messages(),
                ElementsAre(Error("OperationStatus::SetError - operation not in kInitial state. "
                                  "Code will throw exception.")));
}

TEST_F(OperationStatusTest, SetError_AfterSetError_ThrowsAndKeepsTheFirstText) {
    status_.SetError(kFirst, L"first");

    EXPECT_EQ("OperationStatus::SetError - operation not in kInitial state.",
              Thrown([&] { status_.SetError(kFirst, L"second"); }));
    EXPECT_EQ(L"first", status_.FindOperation(kFirst).error);
}

TEST_F(OperationStatusTest, UnknownName_EveryLookup_LogsAndThrows) {
    const std::wstring unknown = L"Unknown";
    const std::function<void()> lookups[] = {
        [&] { status_.FindOperation(unknown); },    [&] { status_.SetSuccess(unknown); },
        [&] { status_.SetError(unknown, L"why"); }, [&] { status_.IsFailed(unknown); },
        [&] { status_.IsSucceeded(unknown); },
    };
    for (const auto& lookup : lookups) {
        log_.Clear();
        EXPECT_EQ("OperationStatus::FindOperation - no such operation.", Thrown(lookup));
        EXPECT_THAT(log_.Messages(),
                    ElementsAre(Error("OperationStatus::FindOperation - no operation 'Unknown'. "
                                      "Code will throw exception.")));
    }
    EXPECT_FALSE(status_.HasErrors());
}

TEST_F(OperationStatusTest, DumpAll_EachState_WritesItsLine) {
    const std::vector<std::wstring> names = {L"a initial", L"b error", L"c success", L"d odd"};
    OperationStatus status{names[0], names[1], names[2], names[3]};
    status.SetError(L"b error", L"why");
    status.SetSuccess(L"c success");
    status.FindOperation(L"d odd").state = 3;

    status.DumpAll();

    EXPECT_THAT(log_.Messages(), ElementsAre(Info("operation a initial has not attempted"),
                                             Error("operation b error failed - why"),
                                             Error("operation d odd status unknown")));
}

TEST_F(OperationStatusTest, OddState_CountsAsNeither) {
    status_.FindOperation(kFirst).state = 3;

    EXPECT_FALSE(status_.IsFailed(kFirst));
    EXPECT_FALSE(status_.IsSucceeded(kFirst));
    EXPECT_FALSE(status_.HasErrors());
}

TEST_F(OperationStatusTest, DumpAll_EveryQuerySucceeded_WritesNothing) {
    status_.SetSuccess(kFirst);
    status_.SetSuccess(kSecond);

    status_.DumpAll();

    EXPECT_THAT(log_.all(), IsEmpty());
}

TEST_F(OperationStatusTest, DumpAll_NamesOfBothCases_UpperCaseComesFirst) {
    const std::vector<std::wstring> names = {L"Getting mount points", L"Opening volume",
                                             L"Getting Device Name", L"Getting disk extents"};
    const OperationStatus status{names[0], names[1], names[2], names[3]};

    status.DumpAll();

    EXPECT_THAT(log_.Messages(), ElementsAre(Info("operation Getting Device Name has not attempted"),
                                             Info("operation Getting disk extents has not attempted"),
                                             Info("operation Getting mount points has not attempted"),
                                             Info("operation Opening volume has not attempted")));
}

}  // namespace
}  // namespace bmr_common
