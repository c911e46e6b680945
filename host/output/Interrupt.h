// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

/// Lets SIGINT, SIGTERM and SIGHUP end the process in order: the clean-ups run, then `report`, and the process exits
/// with 128 plus the signal, as shells do. SIGPIPE is ignored, so that a reader that goes away is an ordinary failure
/// to write.
///
/// A signal that the caller ignores, such as SIGINT in a background job of a script, stays ignored. Call once, before
/// any other thread starts: the signals are blocked for all threads and taken by one of their own, so that a long call
/// of the library cannot delay the end and a clean-up may use locks.
/// @param report called with the signal on that thread
void endOnInterrupts(std::function<void(int signal)> report);

/// From now on an interrupt ends the process with this code and without a word: the work is done, and what it has left
/// to do is only to say so or to free memory.
void interruptsEndWith(int code);

/// A clean-up that runs if the process is interrupted while the object lives.
///
/// It runs on the signals' thread, concurrently with whatever the process is doing, and only once.
class OnInterrupt
{
public:
    explicit OnInterrupt(std::function<void()> cleanUp);
    /// Waits for a clean-up that is running: the process ends after it.
    ~OnInterrupt();

    OnInterrupt(const OnInterrupt&) = delete;
    OnInterrupt& operator=(const OnInterrupt&) = delete;

private:
    int m_key;
};

/// Makes a first interrupt the caller's business: while the object lives, it is only noted. A second one ends the
/// process all the same, should the caller hang.
class InterruptWait
{
public:
    InterruptWait();
    ~InterruptWait();

    InterruptWait(const InterruptWait&) = delete;
    InterruptWait& operator=(const InterruptWait&) = delete;

    /// Waits until the time is over or an interrupt arrives.
    /// @return true if an interrupt has arrived, now or before
    bool waitFor(double seconds) const;

    /// Ends the command after an interrupt.
    /// @throws HostError with the exit code of the signal
    [[noreturn]] void throwInterrupted() const;
};
