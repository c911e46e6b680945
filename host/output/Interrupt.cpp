// SPDX-License-Identifier: MIT
#include "output/Interrupt.h"

#include "border/HostError.h"

#include <chrono>
#include <condition_variable>
#include <map>
#include <mutex>
#include <thread>
#include <utility>

#include <signal.h>
#include <unistd.h>

namespace {

/// What the thread of the signals shares with the others.
struct InterruptState
{
    std::mutex mutex;
    std::condition_variable arrived;
    std::map<int, std::function<void()>> cleanUps;
    int nextKey = 0;
    int waits = 0;     ///< living objects of `InterruptWait`
    int signal = 0;    ///< the one that was noted for them
    int doneCode = -1; ///< the exit code once the work is done; -1 before
};

/// Never destroyed: its thread outlives `main`.
InterruptState& state()
{
    static auto* const shared = new InterruptState;
    return *shared;
}

/// @return true if the signal is left to a waiting command
bool noteForWaits(int signal)
{
    const std::lock_guard lock(state().mutex);
    if (state().waits == 0 || state().signal != 0) {
        return false;
    }
    state().signal = signal;
    state().arrived.notify_all();
    return true;
}

[[noreturn]] void endProcess(int signal, const std::function<void(int)>& report)
{
    // Held to the end, so that nothing that a clean-up removes is made anew.
    const std::lock_guard lock(state().mutex);
    for (const auto& [key, cleanUp] : state().cleanUps) {
        cleanUp();
    }
    if (state().doneCode >= 0) {
        _exit(state().doneCode);
    }
    report(signal);
    _exit(128 + signal);
}

/// Adds a signal unless the caller of the process ignores it.
void addUnlessIgnored(int signal, sigset_t* signals)
{
    struct sigaction present = {};
    if (sigaction(signal, nullptr, &present) == 0 && present.sa_handler != SIG_IGN) {
        sigaddset(signals, signal);
    }
}

} // namespace

void endOnInterrupts(std::function<void(int signal)> report)
{
    sigset_t signals = {};
    sigemptyset(&signals);
    addUnlessIgnored(SIGINT, &signals);
    addUnlessIgnored(SIGTERM, &signals);
    addUnlessIgnored(SIGHUP, &signals);
    static_cast<void>(::signal(SIGPIPE, SIG_IGN));
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    std::thread([signals, report = std::move(report)] {
        while (true) {
            int signal = 0;
            if (sigwait(&signals, &signal) == 0 && !noteForWaits(signal)) {
                endProcess(signal, report);
            }
        }
    }).detach();
}

void interruptsEndWith(int code)
{
    const std::lock_guard lock(state().mutex);
    state().doneCode = code;
}

OnInterrupt::OnInterrupt(std::function<void()> cleanUp)
{
    const std::lock_guard lock(state().mutex);
    m_key = state().nextKey++;
    state().cleanUps.emplace(m_key, std::move(cleanUp));
}

OnInterrupt::~OnInterrupt()
{
    const std::lock_guard lock(state().mutex);
    state().cleanUps.erase(m_key);
}

InterruptWait::InterruptWait()
{
    const std::lock_guard lock(state().mutex);
    ++state().waits;
}

InterruptWait::~InterruptWait()
{
    const std::lock_guard lock(state().mutex);
    --state().waits;
}

bool InterruptWait::waitFor(double seconds) const
{
    std::unique_lock lock(state().mutex);
    return state().arrived.wait_for(lock, std::chrono::duration<double>(seconds), [] { return state().signal != 0; });
}

void InterruptWait::throwInterrupted() const
{
    const std::lock_guard lock(state().mutex);
    throw HostError(static_cast<ExitCode>(128 + state().signal), "interrupted");
}
