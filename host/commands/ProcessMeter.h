// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstdint>

/// What one piece of work cost this process.
struct ProcessCost
{
    double seconds = 0;           ///< by the clock on the wall, not of the processor
    std::uint64_t bytesRead = 0;  ///< by read calls, whether from disk or from the system's cache
    std::uint64_t peakMemory = 0; ///< highest resident size while it ran, in bytes
};

/// Measures the time from its construction to `stop`, with the figures that the system keeps of the process.
///
/// The peak is that of the whole process, so what is held from earlier work counts in. Figures that the system does not
/// give are 0.
class ProcessMeter
{
public:
    ProcessMeter();

    /// The cost since construction; may be asked for more than once.
    ProcessCost stop() const;

private:
    std::uint64_t m_bytesBefore;
    std::chrono::steady_clock::time_point m_start;
};
