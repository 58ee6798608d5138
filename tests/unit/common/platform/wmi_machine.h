#pragma once

#include "common/platform/wmi.h"
#include "machine/session/session.h"
#include "support/logger_capture.h"

#include <gmock/gmock.h>

#include <string>

// A session with a machine whose class Test_Class has these instances (JSON). Checks at the end that all
// objects were released.
class WmiMachine : public testing::Test {
protected:
    explicit WmiMachine(const std::string& instances)
        : session_(
              machine::ParseDescription(R"({"wmi": {"Test_Class": [)" + instances + "]}}", "the machine")) {}
    ~WmiMachine() override { EXPECT_EQ(session_.simulation().live_objects(), 0U); }

    machine::Simulation& simulation() { return session_.simulation(); }

    static constexpr const wchar_t* kQuery = L"Select * from Test_Class";

    machine::Session session_;
    support::LoggerCapture log_;
};
