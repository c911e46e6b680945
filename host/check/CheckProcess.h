// SPDX-License-Identifier: MIT
#pragma once

#include "check/CheckOutcome.h"

#include <array>
#include <chrono>
#include <string>
#include <vector>

#include <sys/types.h>

/// A process of this program that makes one check.
///
/// A new program and not only a fork, because threads do not survive a fork. It has a process group of its own, which
/// ends as a whole when the object goes, so nothing of it is left behind.
class CheckProcess
{
public:
    /// Starts the program with these arguments.
    /// @throws HostError of `Misbehaved` when the system makes no process
    explicit CheckProcess(const std::vector<std::string>& arguments);
    ~CheckProcess();

    CheckProcess(const CheckProcess&) = delete;
    CheckProcess& operator=(const CheckProcess&) = delete;

    /// The descriptors to wait for, each until something is to read or until its end; -1 behind that.
    std::array<int, 2> descriptors() const { return {m_result.descriptor, m_output.descriptor}; }

    /// Takes what has come, without waiting.
    /// @return true if the process has ended, in time or because it is past the limit, and all of it is read
    bool advance(std::chrono::duration<double> limit);

    /// What came of the check; only behind the end.
    CheckOutcome outcome() const;

    /// What it wrote to stdout and stderr.
    const std::string& output() const { return m_output.text; }

private:
    using Clock = std::chrono::steady_clock;

    /// One pipe and what has come through it.
    struct Channel
    {
        int descriptor = -1;
        std::string text;

        void drain();
        void close();
    };

    void kill() const;

    pid_t m_process = -1;
    int m_status = 0;
    bool m_ended = false;
    bool m_timedOut = false;
    Clock::time_point m_start = Clock::now();
    double m_seconds = 0;
    double m_limit = 0;
    Channel m_result;
    Channel m_output;
};
