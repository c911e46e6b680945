// SPDX-License-Identifier: MIT
#pragma once

#include "LibCore/Timer.h"

#include <memory>

namespace dvn {

/// Seconds as double since its start and since its last lap. Copies share one clock. No lock.
class Timer
{
public:
    /// Starts at once.
    Timer();

    /// Starts anew, the lap too.
    void restart();
    /// Seconds since the start; changes nothing.
    double time() const;
    /// Seconds since the last lap, which ends here.
    double lapTime();

private:
    std::shared_ptr<dvf::Timer> m_timer;
};

} // namespace dvn
