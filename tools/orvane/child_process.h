#pragma once

#include "tools/orvane/unique_handle.h"

#include <string>
#include <vector>

namespace host {

// A child process. It reads lines from its standard input and answers
// each by a line on its standard output. Standard error is shared. Not thread-safe.
class ChildProcess {
public:
    // Throws std::runtime_error if it cannot be started.
    // `command` is the program and its arguments.
    explicit ChildProcess(const std::vector<std::wstring>& command);
    // Closes its input, which ends a process that waits for a line.
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    enum class Outcome { kAnswered, kTimedOut, kEnded };

    // Sends a line, and waits for the answer for `limit` milliseconds. After anything but kAnswered, no
    // further line can be sent.
    Outcome Exchange(const std::string& line, std::string& answer, DWORD limit);

    // Ends the process without waiting: a call that blocks in a driver can delay its end.
    void End();

    // The exit code of a process that ended.
    DWORD ExitCode() const;

private:
    Outcome ReadLine(std::string& line, DWORD limit);

    Handle process_;
    Handle input_;   // the writing end
    Handle output_;  // the reading end, overlapped
    Handle read_;    // signalled when a read has ended
    std::string unread_;
};

}  // namespace host
