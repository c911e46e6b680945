// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstdint>

/// The cost of one piece of work to this process.
struct ProcessCost
{
    double seconds = 0;           ///< wall-clock time, not processor time
    std::uint64_t bytesRead = 0;  ///< by read calls, whether from disk or the system's cache
    std::uint64_t peakMemory = 0; ///< highest resident size while it ran, in bytes
};

/// Measures the time from construction to `stop`, and the system's figures for the process.
///
/// The peak is that of the whole process, so memory still held from earlier work is included. Figures that the system
/// does not provide are 0.
class ProcessMeter
{
public:
    ProcessMeter();

    /// The cost since construction; may be called more than once.
    ProcessCost stop() const;

private:
    std::uint64_t m_bytesBefore;
    std::chrono::steady_clock::time_point m_start;
};
