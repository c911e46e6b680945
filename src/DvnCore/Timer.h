// SPDX-License-Identifier: MIT
#pragma once

#include "LibCore/Timer.h"

#include <memory>

namespace dvn {

/// Measures seconds since its start and since its last lap. Copies share one clock. It has no lock.
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
    std::shared_ptr<dvf::Timer> m_timer;
};

} // namespace dvn
