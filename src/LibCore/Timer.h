// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

namespace dvf {

/// A running clock: seconds since its start and since its last lap.
///
/// It uses a monotonic tick count with a ratio to nanoseconds: the Mach clock where there is one, otherwise the
/// system's monotonic clock, which counts nanoseconds, with the ratio 1/1. It has no lock: use one per thread.
class Timer
{
public:
    /// Starts at once.
    Timer();

    /// Restarts both the clock and the lap.
    void restart();
    /// Seconds since the start; changes nothing.
    double time() const;
    /// Seconds since the last lap, which ends here.
    double lapTime();

private:
    double secondsSince(std::uint64_t ticks, std::uint64_t now) const;

    std::uint32_t m_numerator = 1;
    std::uint32_t m_denominator = 1;
    std::uint64_t m_startTime = 0;
    std::uint64_t m_lapTime = 0;
};

} // namespace dvf
