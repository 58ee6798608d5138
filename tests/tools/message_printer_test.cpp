#include "tools/orvane/message_printer.h"

#include <gtest/gtest.h>

#include <sstream>

namespace {

using host::LogMessage;
using host::MessagePrinter;

const LogMessage kAllLevels[] = {{ORVANE_LEVEL_TRACE, "a"},
                                 {ORVANE_LEVEL_INFORMATION, "b"},
                                 {ORVANE_LEVEL_WARNING, "c"},
                                 {ORVANE_LEVEL_ERROR, "d"},
                                 {4, "e"}};

TEST(MessagePrinter, Quiet_ShowsErrorsAlone) {
    std::ostringstream out;
    MessagePrinter printer(out, false);
    for (const LogMessage& message : kAllLevels) {
        printer.Print(message);
    }
    EXPECT_EQ(out.str(), "error: d\nerror: e\n");
}

TEST(MessagePrinter, Verbose_ShowsEverything) {
    std::ostringstream out;
    MessagePrinter printer(out, true);
    for (const LogMessage& message : kAllLevels) {
        printer.Print(message);
    }
    EXPECT_EQ(out.str(), "trace: a\ninformation: b\nwarning: c\nerror: d\nerror: e\n");
}

TEST(MessagePrinter, PrintOnce_ShowsTheSameErrorOnce) {
    std::ostringstream out;
    MessagePrinter printer(out, false);
    printer.PrintOnce({ORVANE_LEVEL_WARNING, "twice"});
    printer.PrintOnce({ORVANE_LEVEL_ERROR, "twice"});
    printer.PrintOnce({ORVANE_LEVEL_ERROR, "once"});
    printer.PrintOnce({ORVANE_LEVEL_ERROR, "twice"});
    EXPECT_EQ(out.str(), "error: twice\nerror: once\n");
}

TEST(MessagePrinter, PrintOnceVerbose_ShowsEverythingAsItComes) {
    std::ostringstream out;
    MessagePrinter printer(out, true);
    printer.PrintOnce({ORVANE_LEVEL_ERROR, "d"});
    printer.PrintOnce({ORVANE_LEVEL_ERROR, "d"});
    EXPECT_EQ(out.str(), "error: d\nerror: d\n");
}

TEST(MessagePrinter, Print_ShowsTheSameErrorAgain) {
    std::ostringstream out;
    MessagePrinter printer(out, false);
    printer.Print({ORVANE_LEVEL_ERROR, "d"});
    printer.Print({ORVANE_LEVEL_ERROR, "d"});
    EXPECT_EQ(out.str(), "error: d\nerror: d\n");
}

}  // namespace
