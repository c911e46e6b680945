// SPDX-License-Identifier: MIT
#include "LibCore/Timer.h"

#ifdef __APPLE__
#include <mach/mach_time.h>
#else
#include <ctime>
#endif

namespace dvf {
namespace {

#ifdef __APPLE__
std::uint64_t currentTicks()
{
    return mach_absolute_time();
}

void readRatio(std::uint32_t* numerator, std::uint32_t* denominator)
{
    mach_timebase_info_data_t info = {1, 1};
    mach_timebase_info(&info);
    *numerator = info.numer;
    *denominator = info.denom;
}
#else
std::uint64_t currentTicks()
{
    timespec now = {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<std::uint64_t>(now.tv_sec) * 1000000000U + static_cast<std::uint64_t>(now.tv_nsec);
}

void readRatio(std::uint32_t* numerator, std::uint32_t* denominator)
{
    *numerator = 1;
    *denominator = 1;
}
#endif

} // namespace

Timer::Timer()
{
    readRatio(&m_numerator, &m_denominator);
    restart();
}

void Timer::restart()
{
    m_startTime = currentTicks();
    m_lapTime = m_startTime;
}

double Timer::time() const
{
    return secondsSince(m_startTime, currentTicks());
}

double Timer::lapTime()
{
    const std::uint64_t now = currentTicks();
    const double seconds = secondsSince(m_lapTime, now);
    m_lapTime = now;
    return seconds;
}

double Timer::secondsSince(std::uint64_t ticks, std::uint64_t now) const
{
    const std::uint64_t nanoseconds = (now - ticks) * m_numerator / m_denominator;
    return static_cast<double>(nanoseconds) / 1000000000.0;
}

} // namespace dvf
