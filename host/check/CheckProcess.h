// SPDX-License-Identifier: MIT
#pragma once

#include "check/CheckOutcome.h"

#include <array>
#include <chrono>
#include <string>
#include <vector>

#include <sys/types.h>

/// A process of this program that runs one check.
///
/// A new program rather than just a fork, because threads do not survive a fork. It has its own process group, which is
/// killed as a whole with the object, so no process is left running.
class CheckProcess
{
public:
    /// Starts the program with these arguments.
    /// @throws HostError of `Misbehaved` when the system cannot start a process
    explicit CheckProcess(const std::vector<std::string>& arguments);
    ~CheckProcess();

    CheckProcess(const CheckProcess&) = delete;
    CheckProcess& operator=(const CheckProcess&) = delete;

    /// The descriptors to wait for, each until there is something to read or it ends; -1 after its end.
    std::array<int, 2> descriptors() const { return {m_result.descriptor, m_output.descriptor}; }

    /// Reads what has arrived, without waiting.
    /// @return true if the process has ended, by itself or at the time limit, and all its output has been read
    bool advance(std::chrono::duration<double> limit);

    /// The result of the check; valid only after the process has ended.
    CheckOutcome outcome() const;

    /// What it wrote to stdout and stderr.
    const std::string& output() const { return m_output.text; }

private:
    using Clock = std::chrono::steady_clock;

    /// One pipe and what has been read from it.
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
