// SPDX-License-Identifier: MIT
#pragma once

#include <cmath>
#include <ctime>

#include <signal.h>

/// Waits for an interrupt without a signal handler: the signals are blocked and polled.
///
/// A signal that arrives during other work stays pending until the next wait, so nothing is cut off. Create it before
/// the library is loaded, so that the library's threads leave the signals to this one.
class InterruptWait
{
public:
    /// Blocks the signals for this thread and all threads that it starts from now on.
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

    /// @return true if an interrupt arrived in time
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
