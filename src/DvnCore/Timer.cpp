// SPDX-License-Identifier: MIT
#include "DvnCore/Timer.h"

namespace dvn {

Timer::Timer() : m_timer(std::make_shared<dvf::Timer>()) {}

void Timer::restart()
{
    m_timer->restart();
}

double Timer::time() const
{
    return m_timer->time();
}

double Timer::lapTime()
{
    return m_timer->lapTime();
}

} // namespace dvn
