// SPDX-License-Identifier: MIT
#pragma once

#include <cmath>
#include <ctime>

#include <signal.h>

/// Waits for an interrupt without a handler: the signals are blocked and fetched.
///
/// A signal that comes during other work stays pending until it is asked for, so nothing is cut off. Made before the
/// library is loaded, so that its threads leave the signals to this one.
class InterruptWait
{
public:
    /// Blocks the signals for this thread and all that it makes from now on.
    InterruptWait()
    {
        sigemptyset(&m_signals);
        sigaddset(&m_signals, SIGINT);
        sigaddset(&m_signals, SIGTERM);
        pthread_sigmask(SIG_BLOCK, &m_signals, &m_before);
    }

    ~InterruptWait() { pthread_sigmask(SIG_SETMASK, &m_before, nullptr); }

    InterruptWait(const InterruptWait&) = delete;
    InterruptWait& operator=(const InterruptWait&) = delete;

    /// @return true if an interrupt came within the time
    bool waitFor(double seconds) const
    {
        timespec time = {};
        time.tv_sec = static_cast<time_t>(seconds);
        time.tv_nsec = static_cast<long>((seconds - std::floor(seconds)) * 1e9);
        return sigtimedwait(&m_signals, nullptr, &time) > 0;
    }

private:
    sigset_t m_signals = {};
    sigset_t m_before = {};
};
